#include "Classes/Application/ModelEnvironment.h"

#include "Classes/Application/ItemTagSync.h"
#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/RunningParts.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

ModelEnvironment::ModelEnvironment(RunningParts &running, LibraryPlaces &places, ItemTagSync &tags)
    : m_running(running), m_places(places), m_tags(tags)
{
    ZQLibraryEnvironment::setCurrent(this);
    TagFileWriter::sharedTagFileWriter().setProblemHandler(
        [](const ZQError &error) { zqOnMainThread([error] { current().presentError(error); }); });
}

ModelEnvironment::~ModelEnvironment()
{
    TagFileWriter::sharedTagFileWriter().setProblemHandler({});
    ZQLibraryEnvironment::setCurrent(nullptr);
}

QString ModelEnvironment::libraryDirectory()
{
    return m_places.libraryDirectory();
}

QString ModelEnvironment::libraryPathForFilePath(const QString &path)
{
    return LibraryBundleManager::libraryPathForFilePath(path);
}

void ModelEnvironment::thumbForLibraryItem(ZQLibraryBaseItem *item)
{
    if (ImportManaging *manager = m_running.importManager()) {
        manager->thumbForLibraryItem(item);
    }
}

void ModelEnvironment::presentError(const ZQError &error)
{
    zqOnMainThreadAndWait([&] { m_running.userInteraction().presentError(error); });
}

std::optional<QStringList> ModelEnvironment::userTagsOfFile(const QString &path)
{
    ZQError error;
    const std::optional<QStringList> tags = OpenMeta::getUserTags(path, &error);
    if (!error.isNull()) {
        return std::nullopt;
    }
    return tags.value_or(QStringList());
}

std::optional<QString> ModelEnvironment::commentOfFile(const QString &path)
{
    return OpenMeta::getFinderComment(path);
}

std::optional<int> ModelEnvironment::ratingOfFile(const QString &path)
{
    ZQError error;
    const double rating = OpenMeta::getRating(path, &error);
    if (!error.isNull()) {
        return std::nullopt;
    }
    return OpenMeta::starsForRating(rating);
}

std::optional<ZQFileTags> ModelEnvironment::tagsAfterReadingFile(const QString &path, const ZQFileTags &present)
{
    ZQError error;
    // A file cannot take away what was given just now and is still on its way into it.
    const auto unknown = TagFileWriter::sharedTagFileWriter().isWaiting(path) ? FileTagsMerge::Unknown::KeepsBoth
                                                                              : FileTagsMerge::Unknown::TakesFile;
    const auto file = FileTagsMerge::ofFile(path, ItemTagSync::valuesOf(present), unknown, present.isFirst, &error);
    if (!file) {
        qCInfo(zqLogTags).noquote() << "The tags of" << path << "were not read:" << error.localizedDescription();
        return std::nullopt;
    }
    return ZQFileTags{file->merged.tags, file->merged.comment, file->merged.rating};
}

void ModelEnvironment::didTakeInTagsOfFile(const QString &bundleID, const QString &path, const ZQFileTags &tags)
{
    if (writesTagsToFiles()) {
        m_tags.write(bundleID, path, tags);
    }
}

void ModelEnvironment::takeInTagsOfFiles(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    if (writesTagsToFiles()) {
        m_tags.takeInTagsOfFiles(items);
    }
}

bool ModelEnvironment::fileOfItemDidMove(const ZQObjectID &item, const QByteArray &reference, const QByteArray &renewed)
{
    return m_tags.fileOfItemDidMove(item, reference, renewed);
}

std::shared_ptr<void> ModelEnvironment::willWriteTagsOfItems(const QStringList &bundleIDs)
{
    return m_tags.willWriteTagsOfItems(bundleIDs);
}

void ModelEnvironment::writeTagsToFile(const QString &path, const ZQFileTags &tags)
{
    TagFileWriter::sharedTagFileWriter().writeTagsToFile(
        path, tags.tags, tags.comment.isNull() ? std::nullopt : std::optional(tags.comment), tags.rating);
}

void ModelEnvironment::writeTagsToFileOfItem(const QString &bundleID, const QString &path, const ZQFileTags &tags)
{
    m_tags.write(bundleID, path, tags);
}

void ModelEnvironment::writeTagsToMovedFileOfItem(const QString &bundleID, const QByteArray &reference,
                                                  const ZQFileTags &tags)
{
    m_tags.write(bundleID, {}, tags, [reference] { return zqFindPersistentURL(reference); });
}

bool ModelEnvironment::writesTagsToFiles()
{
    return ZQUserDefaults::standardUserDefaults().boolForKey(QStringLiteral("ImportOpenMetaTags"));
}
