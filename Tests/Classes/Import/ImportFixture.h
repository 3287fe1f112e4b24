#pragma once

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportOperation.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Tests/Support/ScriptedUser.h"

#include <QColor>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>

// A whole application without a window on a library of its own, below the folder of the test program: what lies below
// "/tmp" counts as temporary and would be moved by every import.
class ImportFixture : public testing::Test
{
protected:
    ImportFixture();
    ~ImportFixture() override;
    void SetUp() override;

    QString path(const QString &relative) const { return m_folder.filePath(relative); }
    // A picture of one colour; no two files are the same. Folders are made as needed.
    QString writeImage(const QString &relative, QSize size, const QColor &color = Qt::red) const;
    QString writeFile(const QString &relative, const QByteArray &contents) const;

    // A store that cannot be read for a while.
    void renameTable(const char *from, const char *to) const
    {
        sqlite3 *store = nullptr;
        ASSERT_EQ(sqlite3_open(path(QStringLiteral("Zelto.ztlibrary/storedata")).toUtf8().constData(), &store),
                  SQLITE_OK);
        sqlite3_exec(store, (QByteArray("ALTER TABLE ") + from + " RENAME TO " + to).constData(), nullptr, nullptr,
                     nullptr);
        sqlite3_close(store);
    }

    // Imports and waits for the end.
    std::shared_ptr<ImportOperation> import(const QStringList &paths, const ZQSidebarBaseItem *into = nullptr,
                                            quint32 atIndex = ZQSidebarBaseItem::appendIndex,
                                            const QVariantMap &metadata = {});

    ZQManagedObjectContext &context() const { return *delegate->managedObjectContext(); }
    QList<ZQRef<ZQLibraryBaseItem>> items() const; // by title
    ZQRef<ZQLibraryBaseItem> item(const QString &title) const;
    static QStringList tagTitles(const ZQLibraryBaseItem &item); // sorted
    static QStringList titles(const QList<ZQRef<ZQLibraryBaseItem>> &items);
    ZQRef<ZQSidebarProject> addProject(const QString &title) const;
    ZQRef<ZQSidebarTag> addTag(const QString &title) const;
    ZQRef<ZQSidebarBaseItem> projectsLabel() const;
    QStringList itemDirectories() const; // names on disk
    static QStringList droppedPaths(const ImportReport &report);

    ScriptedUser user;
    std::unique_ptr<tamberin_AppDelegate> delegate;

private:
    QTemporaryDir m_folder;
};
