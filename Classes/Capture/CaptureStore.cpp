#include "Classes/Capture/CaptureStore.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/QuestionWithdrawal.h"
#include "Classes/Application/TemporaryArea.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Capture/PendingCaptures.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQFreeName.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQQuickPNG.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>
#include <QStandardPaths>

#include <utility>

namespace {

enum Answer { TryAgain, Discard, Keep }; // the last also when nobody answers

QString bundle()
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    return delegate && delegate->managedObjectContext() ? delegate->libraryBundleDirectory() : QString();
}

int askWhatToDo(const QString &advice, const QString &reason, const std::shared_ptr<QuestionWithdrawal> &withdrawal)
{
    UserQuestion question;
    question.message = zqLocalized("The captured picture can't be stored");
    question.informativeText = zqFormat(advice, {reason});
    question.buttons = {zqLocalized("Try Again"), zqLocalized("Discard"), zqLocalized("Keep in Pictures")};
    question.withdrawal = withdrawal;
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    if (!delegate) {
        return Keep;
    }
    delegate->reopenMainWindow(); // or nobody sees it who captures another program
    return delegate->userInteraction().ask(question);
}

void showNotice(const QString &text)
{
    constexpr std::chrono::seconds longEnoughToRead(6);
    if (tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate()) {
        delegate->userInteraction().showNotificationWithText(text, NotificationPlace::Browser, longEnoughToRead);
    }
}

bool writeNewPNG(const QImage &image, const QString &path, ZQError *error)
{
    const QString beside = QFile::decodeName(zqTemporaryNameBeside(QFile::encodeName(path)));
    const bool isThere = zqWriteQuickPNG(image, beside, error) && zqMoveNoReplace(beside, path, error);
    if (!isThere) {
        QFile::remove(beside);
    }
    return isThere;
}

QString copyAmongPending(const QString &path)
{
    const QString place = bundle();
    const QString pending = place.isEmpty() ? QString() : PendingCaptures::newPath(place, QFileInfo(path).fileName());
    if (pending.isEmpty() || !zqLinkOrCopyFile(path, pending)) {
        PendingCaptures::remove(place, pending);
        return {};
    }
    return pending;
}

// Of the temporary area only, whatever path it was that came here.
void removeFile(const QString &path)
{
    const QString area = TemporaryArea::folder();
    if (area.isEmpty() || !QDir::cleanPath(path).startsWith(area + u'/')) {
        return;
    }
    QFile::remove(path);
    QDir().rmdir(QFileInfo(path).path()); // only when nothing else is in it
}

} // namespace

CaptureStore::CaptureStore() : m_queue(QStringLiteral("captures"), 1) {}

CaptureStore::~CaptureStore()
{
    finish();
}

QString CaptureStore::fileName(const QString &name, const QDateTime &date)
{
    constexpr qsizetype longestName = 200; // bytes, which leaves room for the date
    const QString safe = zqSafeName(name.simplified(), QStringLiteral("Screenshot"));
    const QString when = QLocale().toString(date, QStringLiteral("MMM dd HH.mm.ss"));
    return zqFormat(QStringLiteral("%@ %@.png"), {zqNumberedName(safe, 0, longestName), when});
}

void CaptureStore::store(const QImage &image, const QString &name, const QVariantMap &metadata, Told told)
{
    write({image, name, QDateTime::currentDateTime(), metadata, std::move(told)});
}

void CaptureStore::takeUpLeft()
{
    for (const QString &path : PendingCaptures::left(bundle())) {
        Picture picture;
        picture.pending = path;
        picture.told.didEnd = [](const QStringList & /*items*/, const ZQError & /*error*/) {}; // nobody waits
        write(std::move(picture));
    }
}

void CaptureStore::write(Picture picture)
{
    picture.error = {};
    if (picture.path.isEmpty()) {
        const bool isLeft = picture.image.isNull();
        const QString name = isLeft ? QFileInfo(picture.pending).fileName() : fileName(picture.name, picture.date);
        if (const QString place = bundle(); picture.pending.isEmpty() && !place.isEmpty()) {
            picture.pending = PendingCaptures::newPath(place, name);
        }
        const QString folder = TemporaryArea::newFolder(&picture.error);
        picture.path = folder.isEmpty() ? QString() : folder + u'/' + name;
    }
    m_queue.addOperationWithBlock([this, taken = std::move(picture)]() mutable {
        writeFile(taken);
        {
            const ZQLockGuard guard(m_mutex);
            m_written.push_back(std::move(taken));
        }
        QMetaObject::invokeMethod(this, &CaptureStore::didWrite, Qt::QueuedConnection);
    });
}

// First where it outlives this process. Where it can't be written there, it may still go the usual way.
void CaptureStore::writeFile(Picture &picture)
{
    if (!picture.pending.isEmpty() && !picture.image.isNull() && !QFileInfo::exists(picture.pending)) {
        ZQError whyNot;
        if (!zqWriteQuickPNG(picture.image, picture.pending, &whyNot)) {
            qCWarning(zqLogImport).noquote() << whyNot.localizedDescription();
            QDir().rmdir(QFileInfo(picture.pending).path());
            picture.pending.clear();
        }
    }
    if (picture.path.isEmpty()) {
        return; // `error` says why
    }
    if (picture.pending.isEmpty()) {
        picture.isWritten = zqWriteQuickPNG(picture.image, picture.path, &picture.error);
    } else {
        picture.isWritten = zqLinkOrCopyFile(picture.pending, picture.path, &picture.error).has_value();
    }
}

void CaptureStore::didWrite()
{
    std::list<Picture> written;
    {
        const ZQLockGuard guard(m_mutex);
        written.swap(m_written);
    }
    // What failed is asked about when nothing is in hand any more but what `m_failed` holds.
    for (Picture &picture : written) {
        if (picture.isWritten) {
            importPicture(std::move(picture));
        } else {
            qCWarning(zqLogImport).noquote() << zqFormat(QStringLiteral("Failed to write image to %@"), {picture.path})
                                             << picture.error.localizedDescription();
            if (!picture.path.isEmpty()) {
                QDir().rmdir(QFileInfo(picture.path).path()); // only when nothing is in it
                picture.path.clear();
            }
            m_failed.push_back(std::move(picture));
        }
    }
    askAboutFailed();
}

void CaptureStore::importFile(const QString &path, const QVariantMap &metadata, Told told)
{
    Picture picture;
    picture.metadata = metadata;
    picture.told = std::move(told);
    picture.path = path;
    picture.isWritten = true;
    importPicture(std::move(picture));
}

void CaptureStore::importPicture(Picture picture)
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    ZQManagedObjectContext *const context = delegate ? delegate->managedObjectContext() : nullptr;
    if (!context || !delegate->importManager()) {
        picture.told.didEnd({}, ZQError::with(errorDomain, NotOpen,
                                              zqFormat(zqLocalized("The library is not open. The picture lies in “%@” "
                                                                   "until Zelto quits."),
                                                       {picture.path})));
        return;
    }
    const auto importDidBegin = std::exchange(picture.told.importDidBegin, nullptr); // not when it is tried again
    const QString pending = std::exchange(picture.pending, {});
    const QString path = picture.path;
    const QVariantMap metadata = picture.metadata;
    picture.image = {}; // the file has it
    const auto screenshots = ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(*context);
    delegate->importManager()->importFile(path, screenshots ? screenshots->objectID() : ZQObjectID(), metadata,
                                          [self = QPointer(this), picture = std::move(picture)](const ImportEnd &end) {
                                              if (self) {
                                                  self->didImport(end, picture);
                                              }
                                          });
    PendingCaptures::remove(bundle(), pending); // the import is noted
    if (importDidBegin) {
        importDidBegin();
    }
}

namespace {

void showScreenshots()
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    if (!delegate || delegate->isTerminating() || !delegate->managedObjectContext()) {
        return;
    }
    delegate->reopenMainWindow();
    const auto screenshots =
        ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(*delegate->managedObjectContext());
    if (MainWindowControlling *const window = delegate->mainWindowController(); window && screenshots) {
        window->selectSidebarItem(screenshots->objectID());
    }
}

void tellOfStored()
{
    if (const tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate()) {
        delegate->userInteraction().tellWhenAway({zqLocalized("Capture stored"), zqLocalized("It is in Screenshots."),
                                                  zqLocalized("Show"), &showScreenshots});
    }
}

} // namespace

void CaptureStore::didImport(const ImportEnd &end, const Picture &picture)
{
    switch (end.kind) {
    case ImportEnd::Kind::Imported:
        if (picture.isTriedAgain) {
            showNotice(zqLocalized("The captured picture is in the library.")); // in place of why it could not be
        }
        removeFile(picture.path); // or its folder, when it was moved into the library
        tellOfStored();
        picture.told.didEnd(end.items, {});
        return;
    case ImportEnd::Kind::GoesOn:
        picture.told.didEnd({}, ZQError::with(errorDomain, GoesOn,
                                              zqLocalized("The picture is not in the library yet: Zelto goes on with "
                                                          "its import when it opens the library the next time.")));
        return;
    case ImportEnd::Kind::Failed: {
        Picture failed = picture;
        failed.error = ZQError::with(errorDomain, GivenUp, end.reason);
        failed.pending = copyAmongPending(failed.path); // no import names it any more
        m_failed.push_back(std::move(failed));
        askAboutFailed();
        return;
    }
    case ImportEnd::Kind::Cancelled:
        removeFile(picture.path);
        picture.told.didEnd({}, ZQError::with(errorDomain, GivenUp, end.reason));
        return;
    }
}

// What fails.

void CaptureStore::askAboutFailed()
{
    const QPointer self(this);
    while (!m_failed.empty() && !m_question) {
        const auto question = std::make_shared<QuestionWithdrawal>();
        m_question = question;
        const Picture &asked = m_failed.front();
        const int answer = askWhatToDo(
            asked.isWritten ? zqLocalized("%@ The picture is kept until you try again or discard it.")
                            : zqLocalized("%@ Make room, or see to it that the folder for temporary files can be "
                                          "written, and try again."),
            asked.error.localizedDescription(), question);
        if (!self || question->isWithdrawn()) {
            return; // it has been kept meanwhile
        }
        m_question.reset();
        Picture picture = std::move(m_failed.front());
        m_failed.pop_front();
        act(std::move(picture), answer);
        if (!self) {
            return;
        }
    }
}

void CaptureStore::act(Picture picture, int answer)
{
    if (answer == TryAgain) {
        picture.isTriedAgain = true;
        picture.isWritten ? importPicture(std::move(picture)) : write(std::move(picture));
    } else if (answer == Discard) {
        PendingCaptures::remove(bundle(), picture.pending);
        removeFile(picture.path);
        picture.told.didEnd({}, ZQError::with(errorDomain, GivenUp, picture.error.localizedDescription()));
    } else {
        keep(std::move(picture));
    }
}

// A copy first: what it is made from goes once it is there.
void CaptureStore::keep(Picture picture)
{
    const QString source = picture.isWritten ? picture.path : picture.pending;
    const auto put = [&](const QString &path, ZQError *error) {
        return source.isEmpty() ? writeNewPNG(picture.image, path, error)
                                : zqLinkOrCopyFile(source, path, error).has_value();
    };
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    const QString name = source.isEmpty() ? fileName(picture.name, picture.date) : QFileInfo(source).fileName();
    ZQError whyNot;
    const bool isThere = !folder.isEmpty() && zqMakeFolder(folder);
    const QString kept = isThere ? zqUnderFreeName(folder, name, put, &whyNot) : QString();
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    if (!kept.isEmpty()) {
        PendingCaptures::remove(bundle(), picture.pending);
        removeFile(picture.path);
        const ZQError word = ZQError::with(
            errorDomain, Kept, zqFormat(zqLocalized("The picture is not in the library. It lies in “%@”."), {kept}));
        if (delegate) {
            delegate->userInteraction().showSystemNotification(zqLocalized("The captured picture can't be stored"),
                                                               word.localizedDescription());
            showNotice(word.localizedDescription()); // where no desktop shows the other one
        }
        picture.told.didEnd({}, word);
        return;
    }
    qCWarning(zqLogImport).noquote() << zqFormat(QStringLiteral("Failed to keep an image in %@"), {folder})
                                     << whyNot.localizedDescription();
    hold(std::move(picture));
}

// Whoever waits is told now: it may be long until there is a place. The person is asked before Zelto quits.
void CaptureStore::hold(Picture picture)
{
    const auto didEnd = std::exchange(picture.told.didEnd, [](const QStringList &, const ZQError &) {});
    m_held.push_back(std::move(picture));
    didEnd({}, ZQError::with(errorDomain, Held,
                             zqLocalized("The captured picture can be written neither into the library nor into "
                                         "Pictures. Zelto holds it until it quits, and asks about it then: make room "
                                         "before.")));
}

void CaptureStore::keepAllFailed()
{
    if (m_question) {
        const auto question = std::exchange(m_question, nullptr);
        question->withdraw();
    }
    for (Picture &picture : std::exchange(m_failed, {})) {
        keep(std::move(picture));
    }
}

bool CaptureStore::isStoring() const
{
    const ZQLockGuard guard(m_mutex);
    return m_queue.operationCount() > 0 || !m_written.empty() || !m_failed.empty();
}

bool CaptureStore::finish()
{
    const auto hasWritten = [this] {
        const ZQLockGuard guard(m_mutex);
        return !m_written.empty();
    };
    m_failed.splice(m_failed.end(), m_held);
    if (m_question) {
        keepAllFailed();
    }
    do {
        m_queue.waitUntilAllOperationsAreFinished();
        didWrite();
    } while (m_queue.operationCount() > 0 || hasWritten());
    return m_held.empty();
}
