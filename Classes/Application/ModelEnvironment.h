#pragma once

#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <memory>

class ItemTagSync;
class LibraryPlaces;
class RunningParts;

// What the entities ask of the running application, passed on to whoever knows. It holds nothing. Any thread, as said
// where each is declared.
class ModelEnvironment : public ZQLibraryEnvironment
{
public:
    ModelEnvironment(RunningParts &running, LibraryPlaces &places, ItemTagSync &tags);
    ~ModelEnvironment() override;

    QString libraryDirectory() override;
    QString libraryPathForFilePath(const QString &path) override;
    void thumbForLibraryItem(ZQLibraryBaseItem *item) override;
    void presentError(const ZQError &error) override;
    std::optional<QStringList> userTagsOfFile(const QString &path) override;
    std::optional<QString> commentOfFile(const QString &path) override;
    std::optional<int> ratingOfFile(const QString &path) override;
    std::optional<ZQFileTags> tagsAfterReadingFile(const QString &path, const ZQFileTags &present) override;
    void didTakeInTagsOfFile(const QString &bundleID, const QString &path, const ZQFileTags &tags) override;
    void takeInTagsOfFiles(const QList<ZQRef<ZQLibraryBaseItem>> &items) override;
    bool fileOfItemDidMove(const ZQObjectID &item, const QByteArray &reference, const QByteArray &renewed) override;
    std::shared_ptr<void> willWriteTagsOfItems(const QStringList &bundleIDs) override;
    void writeTagsToFile(const QString &path, const ZQFileTags &tags) override;
    void writeTagsToFileOfItem(const QString &bundleID, const QString &path, const ZQFileTags &tags) override;
    void writeTagsToMovedFileOfItem(const QString &bundleID, const QByteArray &reference,
                                    const ZQFileTags &tags) override;
    bool writesTagsToFiles() override;

private:
    RunningParts &m_running;
    LibraryPlaces &m_places;
    ItemTagSync &m_tags;
};
