#include "Classes/Capture/CaptureStore.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/TemporaryArea.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQFreeName.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQQuickPNG.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include <utility>

namespace {

int askWhetherAgain(const ZQError &error)
{
    UserQuestion question;
    question.message = zqLocalized("The captured picture can't be stored");
    question.informativeText = zqFormat(zqLocalized("%@ Make room, or see to it that the folder for temporary files "
                                                    "can be written, and try again."),
                                        {error.localizedDescription()});
    question.buttons = {zqLocalized("Try Again"), zqLocalized("Discard")};
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    return delegate ? delegate->userInteraction().ask(question) : 1;
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
    QString safe = name.simplified();
    for (QChar &character : safe) {
        if (character == u'/' || character.category() == QChar::Other_Control) {
            character = u'-';
        }
    }
    if (safe.startsWith(u'.')) {
        safe[0] = u'_'; // it would be hidden
    }
    if (safe.isEmpty()) {
        safe = QStringLiteral("Screenshot");
    }
    const QString when = QLocale().toString(date, QStringLiteral("MMM dd HH.mm.ss"));
    return zqFormat(QStringLiteral("%@ %@.png"), {zqNumberedName(safe, 0, longestName), when});
}

void CaptureStore::store(const QImage &image, const QString &name, const QVariantMap &metadata, Stored stored)
{
    write({image, name, QDateTime::currentDateTime(), metadata, std::move(stored)});
}

void CaptureStore::write(Picture picture)
{
    picture.error = {};
    const QString folder = TemporaryArea::newFolder(&picture.error);
    picture.path = folder.isEmpty() ? QString() : folder + u'/' + fileName(picture.name, picture.date);
    m_queue.addOperationWithBlock([this, taken = std::move(picture)]() mutable {
        if (!taken.path.isEmpty()) {
            zqWriteQuickPNG(taken.image, taken.path, &taken.error);
        }
        {
            const ZQLockGuard guard(m_mutex);
            m_written.push_back(std::move(taken));
        }
        QMetaObject::invokeMethod(this, &CaptureStore::didWrite, Qt::QueuedConnection);
    });
}

void CaptureStore::didWrite()
{
    std::list<Picture> written;
    {
        const ZQLockGuard guard(m_mutex);
        written.swap(m_written);
    }
    for (Picture &picture : written) {
        if (picture.error.isNull()) {
            importFile(picture.path, picture.metadata, picture.stored);
        } else {
            didFail(std::move(picture));
        }
    }
}

void CaptureStore::didFail(Picture picture)
{
    qCWarning(zqLogImport).noquote() << zqFormat(QStringLiteral("Failed to write image to %@"), {picture.path})
                                     << picture.error.localizedDescription();
    if (!picture.path.isEmpty()) {
        QDir().rmdir(QFileInfo(picture.path).path()); // only when nothing is in it
    }
    if (askWhetherAgain(picture.error) == 0) {
        write(std::move(picture));
    } else {
        picture.stored(ZQError::with(errorDomain, GivenUp, picture.error.localizedDescription()));
    }
}

void CaptureStore::importFile(const QString &path, const QVariantMap &metadata, const Stored &stored)
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    ZQManagedObjectContext *const context = delegate ? delegate->managedObjectContext() : nullptr;
    if (!context || !delegate->importManager()) {
        stored(ZQError::with(
            errorDomain, NotOpen,
            zqFormat(zqLocalized("The library is not open. The picture lies in “%@” until Zelto quits."), {path})));
        return;
    }
    const auto screenshots = ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(*context);
    delegate->importManager()->importFilesAtPaths({path}, screenshots ? screenshots->objectID() : ZQObjectID(),
                                                  ZQSidebarBaseItem::appendIndex, metadata);
    stored({});
}

void CaptureStore::finish()
{
    const auto hasWritten = [this] {
        const ZQLockGuard guard(m_mutex);
        return !m_written.empty();
    };
    do {
        m_queue.waitUntilAllOperationsAreFinished();
        didWrite();
    } while (m_queue.operationCount() > 0 || hasWritten());
}
