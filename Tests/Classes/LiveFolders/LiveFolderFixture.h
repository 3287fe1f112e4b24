#pragma once

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/LiveFolders/LiveFolderManager.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Support/ScriptedUser.h"
#include "Tests/Support/UserWorld.h"

#include <QMap>

#include <gtest/gtest.h>

// A library with live folders, without a window, and the disk they mirror.
class LiveFolderTest : public testing::Test
{
protected:
    ~LiveFolderTest() override;
    void SetUp() override { open(); }
    void open();
    void close();
    void reopen()
    {
        close();
        open();
    }

    QString path(const QString &relative) const { return world.filePath(relative); }
    // A picture like no other; folders are made as needed.
    QString writePicture(const QString &relative) const;
    static QByteArray pictureBytes();
    static void makeFolder(const QString &path);
    static void move(const QString &from, const QString &to); // as `mv` does on one file system
    static QByteArray bytesOf(const QString &path);

    ZQObjectID add(const QString &path); // and waits for the first run
    void sync(bool isForced = false);    // all roots
    void sync(const ZQObjectID &folder);
    void wait();
    ZQRef<ZQSidebarWatchedFolder> folder(const ZQObjectID &id) const;
    ZQRef<ZQSidebarWatchedFolder> folderAt(const QString &path) const;

    // Active items by the paths of their files.
    QMap<QString, ZQRef<ZQLibraryBaseItem>> items() const;
    ZQRef<ZQLibraryBaseItem> itemAt(const QString &path) const { return items().value(path); }
    QStringList itemPaths(const QString &below) const; // relative to it
    // What tree, items and disk have to agree on.
    void expectInStep(const QString &root) const;
    // What a person and a library have of an item besides its file.
    static void adorn(ZQManagedObjectContext &context, const ZQRef<ZQLibraryBaseItem> &item,
                      const QString &projectTitle);
    static void expectAdorned(const ZQRef<ZQLibraryBaseItem> &item, const QString &projectTitle);
    ZQManagedObjectContext &context() const { return *delegate->managedObjectContext(); }

    UserWorld world{"live"};
    ScriptedUser user;
    std::unique_ptr<LiveFolderManager> manager;
    std::unique_ptr<tamberin_AppDelegate> delegate;
};
