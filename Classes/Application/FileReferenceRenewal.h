#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

class tamberin_AppDelegate;

// Brings into the store where files of unmanaged items were found, many at a save: with a folder all its files move.
// Main thread. Made with `make_shared`.
class FileReferenceRenewal : public std::enable_shared_from_this<FileReferenceRenewal>
{
public:
    struct Found
    {
        ZQObjectID item;
        QByteArray reference; // which led elsewhere
        QString path;
    };

    explicit FileReferenceRenewal(tamberin_AppDelegate &delegate) : m_delegate(delegate) {}
    void add(const Found &found);

private:
    void applyLater();
    void apply();

    tamberin_AppDelegate &m_delegate;
    QList<Found> m_found;
};
