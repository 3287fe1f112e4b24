#include "Models/DataModel/ZQLibraryEnvironment.h"

#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Foundation/ZQLog.h"

#include <atomic>

namespace {

class NullEnvironment final : public ZQLibraryEnvironment
{
public:
    QString libraryDirectory() override { return {}; }
    QString libraryPathForFilePath(const QString &) override { return {}; }
    void thumbForLibraryItem(ZQLibraryBaseItem *) override {}
    void presentError(const ZQError &error) override
    {
        qCWarning(zqLogApplication, "%s", qUtf8Printable(error.localizedDescription()));
    }
    std::optional<QStringList> userTagsOfFile(const QString &) override { return std::nullopt; }
    std::optional<QString> commentOfFile(const QString &) override { return std::nullopt; }
    std::optional<int> ratingOfFile(const QString &) override { return std::nullopt; }
    void writeTagsToFile(const QString &, const ZQFileTags &) override {}
    bool writesTagsToFiles() override { return false; }
};

std::atomic<ZQLibraryEnvironment *> installed = nullptr;

} // namespace

std::optional<ZQFileTags> ZQLibraryEnvironment::tagsAfterReadingFile(const QString &path, const ZQFileTags &present)
{
    const std::optional<QStringList> tags = userTagsOfFile(path);
    const std::optional<QString> comment = commentOfFile(path);
    const std::optional<int> rating = ratingOfFile(path);
    if (!tags && !comment && !rating) {
        return std::nullopt;
    }
    return ZQFileTags{tags.value_or(present.tags), comment.value_or(present.comment), rating ? rating : present.rating};
}

void ZQLibraryEnvironment::writeTagsToFileOfItem(const QString &, const QString &path, const ZQFileTags &tags)
{
    writeTagsToFile(path, tags);
}

void ZQLibraryEnvironment::writeTagsToMovedFileOfItem(const QString &bundleID, const QByteArray &reference,
                                                      const ZQFileTags &tags)
{
    const QString path = zqFindPersistentURL(reference);
    if (!path.isEmpty()) {
        writeTagsToFileOfItem(bundleID, path, tags);
    }
}

ZQLibraryEnvironment &ZQLibraryEnvironment::current()
{
    static NullEnvironment none;
    ZQLibraryEnvironment *environment = installed.load(std::memory_order_acquire);
    return environment ? *environment : none;
}

void ZQLibraryEnvironment::setCurrent(ZQLibraryEnvironment *environment)
{
    installed.store(environment, std::memory_order_release);
}
