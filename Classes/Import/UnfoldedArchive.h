#pragma once

#include "Classes/Import/TemporaryFolder.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <QString>
#include <QVariantMap>

#include <memory>

// What came out of an archive and is to be imported by a request of its own.
struct UnfoldedArchive
{
    QString archivePath;
    QString root;   // the folder named after the archive
    QString folder; // what is imported: `root`, or the one folder that is all it holds
    ZQObjectID sidebarItem;
    QVariantMap metadata;
    std::shared_ptr<TemporaryFolder> holder; // all of this lies in it
};
