#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Editing/EditFixture.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <utility>

// Makes rows for folders, and remembers what it was told.
class ScriptedLiveFolders : public LiveFolderManaging
{
public:
    explicit ScriptedLiveFolders(ZQManagedObjectContext &context) : m_context(context) {}

    ZQOperationQueue &syncOperationQueue() override { return m_queue; }
    void getLiveFolderPermissionFromSandbox() override {}
    void startObservingWatchedFolders() override {}
    void stopObservingWatchedFolders() override {}
    void syncRootWatchedFolders() override {}
    void syncWatchedFolder(const ZQObjectID &folder, bool force) override
    {
        synced.append(folder);
        wasForced = wasForced || force;
    }
    void syncAndRemoveMissing(const ZQObjectID &folder) override { syncWatchedFolder(folder, true); }
    void stopSyncingWatchedFolders(const QList<ZQObjectID> & /*folders*/) override {}
    AddedLiveFolders addNewWatchFolderFromPaths(const QStringList &paths, quint32 atIndex) override
    {
        AddedLiveFolders result;
        const auto label = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(m_context);
        for (const QString &path : paths) {
            if (!QFileInfo(path).isDir()) {
                result.refused.append({path, QStringLiteral("no folder")});
                continue;
            }
            const auto folder = ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(path, m_context);
            folder->setIs_root(true);
            folder->setActive(true);
            label->addChild(folder.get(), atIndex++);
            m_context.save();
            result.added.append(folder->objectID());
        }
        return result;
    }
    void watchedFoldersDidChange(const QList<ZQObjectID> &folders) override { changed += folders; }
    LiveFolderStatus statusOfWatchedFolder(const ZQObjectID & /*folder*/) const override { return {}; }

    QList<ZQObjectID> synced;
    bool wasForced = false;
    QList<ZQObjectID> changed;

private:
    ZQManagedObjectContext &m_context;
    ZQOperationQueue m_queue{QStringLiteral("Live folders"), 1};
};

// The live folders "one" and "two", side by side on the disk and in the sidebar.
class LiveEditFixture : public EditFixture
{
protected:
    using Folder = ZQRef<ZQSidebarWatchedFolder>;

    LiveEditFixture()
    {
        editing.liveFolderManager = &manager;
        one = liveFolder(QStringLiteral("one"));
        two = liveFolder(QStringLiteral("two"));
    }
    Folder liveFolder(const QString &name, const Folder &father = {})
    {
        const QString path = father ? father->folderPath() + u'/' + name : library.path(name);
        QDir().mkpath(path);
        auto folder = ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(path, library.context());
        folder->setActive(true);
        folder->setIs_root(!father);
        if (father) {
            father->appendChild(folder.get());
        } else {
            ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context())->appendChild(folder.get());
        }
        library.context().save();
        return folder;
    }
    static QString put(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size()) << qPrintable(path);
        return path;
    }
    ZQRef<ZQLibraryImage> liveItem(const Folder &folder, const QString &name)
    {
        auto item = library.addReferencedImage(put(folder->folderPath() + u'/' + name, name.toUtf8()));
        item->setWatchingFolder(folder.get());
        library.context().save();
        return item;
    }
    // Files by their place with what is in them, and active items with their folders: "one/a.jpg=a.jpg".
    QStringList state() const
    {
        QStringList lines;
        for (const Folder &folder : {one, two}) {
            QDirIterator files(folder->folderPath(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
            while (files.hasNext()) {
                const QString path = files.next();
                const QString name = QDir(folder->folderPath()).relativeFilePath(path);
                lines.append(folder->title() + u'/' + (name.startsWith(u'.') ? QStringLiteral(".hidden") : name) +
                             u'=' + QString::fromUtf8(ScratchLibrary::readFile(path)));
            }
        }
        ZQManagedObjectContext context(library.coordinator()); // as the store has it
        const auto items = zqFetch<ZQLibraryBaseItem>(context, QStringLiteral("active == YES")).value();
        for (const auto &item : items) {
            const auto folder = item->watchingFolder();
            lines.append((folder ? folder->title() : QStringLiteral("library")) + u':' + item->title());
        }
        lines.sort();
        return lines;
    }
    void finish()
    {
        zqRunMainLoopUntil([this] { return editQueue.operationCount() == 0; });
        zqRunMainLoopFor(std::chrono::milliseconds(0)); // what it said at its end
    }
    void undo()
    {
        undoStack.undo();
        finish();
    }
    void redo()
    {
        undoStack.redo();
        finish();
    }
    QStringList trash() const
    {
        return QDir(library.path(QStringLiteral("XDG_DATA_HOME/Trash/files")))
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    ScriptedLiveFolders manager{library.context()};
    Folder one;
    Folder two;
};
