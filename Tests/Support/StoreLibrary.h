#pragma once

#include "Kit/Persistence/ZQManagedObjectModel.h"

#include <QString>

#include <memory>

// A store of many items, written by SQL into the tables that the coordinator made of the model: minutes instead of
// hours.
struct StoreLibrary
{
    qint64 items = 0;

    // The keys: items and memberships count from 1. The first project holds a tenth of the items in order, the last one
    // nothing, the others a thousand each.
    static constexpr qint64 firstProject = 1;
    qint64 itemsOfFirstProject() const { return items / 10; }
    qint64 projects() const { return 2 + (items - itemsOfFirstProject() + itemsOfAnother - 1) / itemsOfAnother; }

    // Makes it at `path`, where nothing may be. False after an error, which is printed.
    bool make(const std::shared_ptr<const ZQManagedObjectModel> &model, const QString &path) const;

private:
    static constexpr qint64 itemsOfAnother = 1000;
    QString itemsStatement(const ZQManagedObjectModel &model) const;
    QString projectsStatement(const ZQManagedObjectModel &model) const;
    QString membershipsStatement(const ZQManagedObjectModel &model) const;
};
