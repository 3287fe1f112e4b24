#pragma once

#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Editing/EditFixture.h"
#include "Tests/Support/ScriptedLiveFolders.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <utility>

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

    ScriptedLiveFolders manager{[this]() -> ZQManagedObjectContext & { return library.context(); }};
    Folder one;
    Folder two;
};
