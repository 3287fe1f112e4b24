#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <QHash>
#include <QTemporaryDir>

#include <functional>

class ZQLibraryImage;

// A library of its own in a temporary folder, installed as the current environment while it lives. The user's folders
// (XDG_*) lie in the same place. Main thread.
class ScratchLibrary : public ZQLibraryEnvironment
{
public:
    // What a file carries, by path; and what was asked to be written, in order.
    struct FileTags
    {
        QStringList tags;
        QString comment;
        int rating = 0;
    };
    struct WrittenTags
    {
        QString path;
        QStringList tags;
        QString comment;
        std::optional<int> rating;
    };

    ScratchLibrary();
    ~ScratchLibrary() override;

    ZQManagedObjectContext &context() { return *m_context; }
    std::shared_ptr<ZQPersistentStoreCoordinator> coordinator() const { return m_coordinator; }
    QString path(const QString &relative) const { return m_folder.filePath(relative); }
    // Saves, forgets every object and opens a new context on the same store.
    void reopenContext();

    // Takes a table away from the store, as damage would, or puts it back.
    void renameTable(const char *from, const char *to);

    // Writes a file below the temporary folder, making folders as needed, and answers its path.
    QString writeFile(const QString &relative, const QByteArray &contents);
    static QByteArray readFile(const QString &path);
    // An active managed item with a file of its own in a new item directory.
    ZQRef<ZQLibraryImage> addImage(const QString &title, const QString &extension = QStringLiteral("png"),
                                   const QByteArray &contents = "picture");
    // An active item that references a file where it lies.
    ZQRef<ZQLibraryImage> addReferencedImage(const QString &path);

    QString libraryDirectory() override;
    QString libraryPathForFilePath(const QString &path) override;
    void thumbForLibraryItem(ZQLibraryBaseItem *item) override;
    void presentError(const ZQError &error) override { errors.append(error); }
    std::optional<QStringList> userTagsOfFile(const QString &path) override;
    std::optional<QString> commentOfFile(const QString &path) override;
    std::optional<int> ratingOfFile(const QString &path) override;
    std::shared_ptr<void> willWriteTagsOfItems(const QStringList &bundleIDs) override;
    void writeTagsToFile(const QString &path, const ZQFileTags &tags) override;
    bool writesTagsToFiles() override { return tagsAreWritten; }
    bool fileOfItemDidMove(const ZQObjectID &, const QByteArray &, const QByteArray &renewed) override
    {
        renewedReferences.append(renewed);
        return referencesAreRenewed;
    }
    void takeInTagsOfFiles(const QList<ZQRef<ZQLibraryBaseItem>> &items) override;

    QHash<QString, FileTags> fileTags;
    QList<QByteArray> renewedReferences; // told of, used or not
    bool referencesAreRenewed = false;
    QList<WrittenTags> written;
    std::function<void(const QStringList &bundleIDs)> didAnnounce = [](const QStringList &) {};
    std::function<void()> didEndAnnouncement = [] {};
    QStringList filesToTakeIn; // titles of items, in the order they were asked for
    QList<ZQError> errors;
    QList<ZQLibraryBaseItem *> thumbRequests;
    bool tagsAreWritten = true;

private:
    QTemporaryDir m_folder;
    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    std::unique_ptr<ZQManagedObjectContext> m_context;
};
