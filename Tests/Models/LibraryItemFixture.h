#pragma once

#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Support/ScratchLibrary.h"

#include <QDir>

#include <gtest/gtest.h>

// Items in a scratch library, and those of live folders.
class LibraryItemFixture : public testing::Test
{
protected:
    ScratchLibrary library;
    ZQManagedObjectContext &context = library.context();

    ZQRef<ZQSidebarWatchedFolder> liveFolder(const QString &name)
    {
        QDir().mkpath(library.path(name));
        auto folder = ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(library.path(name), context);
        folder->setIs_root(true);
        folder->setLastSyncDate(QDateTime::currentDateTimeUtc());
        return folder;
    }
    ZQRef<ZQLibraryImage> liveItem(const ZQRef<ZQSidebarWatchedFolder> &folder, const QString &name)
    {
        auto item =
            library.addReferencedImage(library.writeFile(folder->title() + QLatin1Char('/') + name, name.toUtf8()));
        item->setWatchingFolder(folder.get());
        return item;
    }
};
