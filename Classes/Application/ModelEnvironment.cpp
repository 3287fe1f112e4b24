#include "Classes/Application/ModelEnvironment.h"

#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Classes/Tags/TagFileJournal.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

ModelEnvironment::ModelEnvironment(tamberin_AppDelegate &delegate) : m_delegate(delegate)
{
    ZQLibraryEnvironment::setCurrent(this);
    TagFileWriter::sharedTagFileWriter().setProblemHandler([](const ZQError &error) {
        zqOnMainThread([error] {
            if (tamberin_AppDelegate *shared = tamberin_AppDelegate::sharedDelegate()) {
                shared->userInteraction().presentError(error);
            }
        });
    });
}

ModelEnvironment::~ModelEnvironment()
{
    TagFileWriter::sharedTagFileWriter().setProblemHandler({});
    ZQLibraryEnvironment::setCurrent(nullptr);
}

QString ModelEnvironment::libraryDirectory()
{
    return m_delegate.libraryDirectory();
}

QString ModelEnvironment::libraryPathForFilePath(const QString &path)
{
    return LibraryBundleManager::libraryPathForFilePath(path);
}

void ModelEnvironment::thumbForLibraryItem(ZQLibraryBaseItem *item)
{
    if (ImportManaging *manager = m_delegate.importManager()) {
        manager->thumbForLibraryItem(item);
    }
}

void ModelEnvironment::presentError(const ZQError &error)
{
    zqOnMainThreadAndWait([&] { m_delegate.userInteraction().presentError(error); });
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
    return std::clamp(int(std::lround(rating)), 0, 5);
}

void ModelEnvironment::writeTagsToFile(const QString &path, const QStringList &tags, const QString &comment)
{
    // A file of an item directory is an item's own, and asked for by an import that saved it before; any other is a
    // copy that left the library.
    static const QRegularExpression inDirectory(QStringLiteral("/([^/]+)\\.ztlibraryitem/[^/]+$"));
    const QRegularExpressionMatch match = inDirectory.match(path);
    const bool isItems = match.hasMatch() && path.startsWith(m_delegate.libraryDirectory() + u'/');
    queueWriting(isItems ? match.captured(1) : QString(), true, path, tags, comment);
}

void ModelEnvironment::writeTagsToFileOfItem(const QString &bundleID, const QString &path, const QStringList &tags,
                                             const QString &comment)
{
    queueWriting(bundleID, false, path, tags, comment);
}

void ModelEnvironment::queueWriting(const QString &bundleID, bool isSaved, const QString &path, const QStringList &tags,
                                    const QString &comment)
{
    const std::shared_ptr<TagFileJournal> journal = bundleID.isEmpty() ? nullptr : m_journal;
    std::function<void()> done;
    if (journal) {
        journal->willWrite(bundleID, isSaved);
        done = [journal] { journal->didWrite(); };
    }
    TagFileWriter::sharedTagFileWriter().writeTagsToFile(
        path, tags, comment.isNull() ? std::nullopt : std::optional(comment), std::move(done));
}

void ModelEnvironment::finishInterruptedTagWrites()
{
    ZQManagedObjectContext *context = m_delegate.managedObjectContext();
    if (m_journal || !context) {
        return;
    }
    m_journal = std::make_shared<TagFileJournal>(m_delegate.libraryBundleDirectory() + QStringLiteral("/pending-tags"));
    m_saveObserver = context->observeDidSave([journal = m_journal](const ZQContextDidSave &) { journal->didSave(); });
    const QStringList interrupted = m_journal->interrupted();
    constexpr qsizetype atATime = 500;
    for (qsizetype first = 0; first < interrupted.size(); first += atATime) {
        const auto items = context->fetch<ZQLibraryBaseItem>(
            {ZQLibraryBaseItem::entityName(),
             ZQPredicate::predicateWithFormat(QStringLiteral("bundleID in %@"), {interrupted.mid(first, atATime)})});
        if (!items) {
            return; // the journal stays for the next launch
        }
        for (const ZQRef<ZQLibraryBaseItem> &item : *items) {
            item->writeOpenMetaToDisk();
        }
    }
    if (!interrupted.isEmpty()) {
        m_journal->didSave(); // what is written again comes from the saved store
    }
}

void ModelEnvironment::closeTagFiles()
{
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    OpenMetaBackup::waitUntilAllWritten();
    m_saveObserver.reset();
    m_journal.reset(); // what was written and never saved stays in it, and is taken back at the next launch
}

bool ModelEnvironment::writesTagsToFiles()
{
    return ZQUserDefaults::standardUserDefaults().boolForKey(QStringLiteral("ImportOpenMetaTags"));
}
