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
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>

#include <utility>

namespace {

// `advice` with a place for the reason.
bool isTriedAgain(const QString &advice, const QString &reason)
{
    UserQuestion question;
    question.message = zqLocalized("The captured picture can't be stored");
    question.informativeText = zqFormat(advice, {reason});
    question.buttons = {zqLocalized("Try Again"), zqLocalized("Discard")};
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    return delegate && delegate->userInteraction().ask(question) == 0;
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

void CaptureStore::store(const QImage &image, const QString &name, const QVariantMap &metadata, Told told)
{
    write({image, name, QDateTime::currentDateTime(), metadata, std::move(told)});
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
            importFile(picture.path, picture.metadata, std::move(picture.told));
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
    const QPointer self(this);
    const bool isAgain =
        isTriedAgain(zqLocalized("%@ Make room, or see to it that the folder for temporary files can be "
                                 "written, and try again."),
                     picture.error.localizedDescription());
    if (!self) {
        return; // the application has ended meanwhile
    }
    if (isAgain) {
        write(std::move(picture));
    } else {
        picture.told.didEnd({}, ZQError::with(errorDomain, GivenUp, picture.error.localizedDescription()));
    }
}

void CaptureStore::importFile(const QString &path, const QVariantMap &metadata, Told told)
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    ZQManagedObjectContext *const context = delegate ? delegate->managedObjectContext() : nullptr;
    if (!context || !delegate->importManager()) {
        told.didEnd({}, ZQError::with(errorDomain, NotOpen,
                                      zqFormat(zqLocalized("The library is not open. The picture lies in “%@” until "
                                                           "Zelto quits."),
                                               {path})));
        return;
    }
    const auto importDidBegin = std::exchange(told.importDidBegin, nullptr); // not when it is tried again
    const auto screenshots = ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(*context);
    delegate->importManager()->importFile(
        path, screenshots ? screenshots->objectID() : ZQObjectID(), metadata,
        [self = QPointer(this), path, metadata, told = std::move(told)](const ImportEnd &end) {
            if (self) {
                self->didImport(end, path, metadata, told);
            }
        });
    if (importDidBegin) {
        importDidBegin();
    }
}

void CaptureStore::didImport(const ImportEnd &end, const QString &path, const QVariantMap &metadata, const Told &told)
{
    switch (end.kind) {
    case ImportEnd::Kind::Imported:
        removeFile(path); // or its folder, when it was moved into the library
        told.didEnd(end.items, {});
        return;
    case ImportEnd::Kind::GoesOn:
        told.didEnd({},
                    ZQError::with(errorDomain, GoesOn,
                                  zqLocalized("The picture is not in the library yet: Zelto goes on with its import "
                                              "when it opens the library the next time.")));
        return;
    case ImportEnd::Kind::Failed: {
        const QPointer self(this);
        const bool isAgain =
            isTriedAgain(zqLocalized("%@ The picture is kept until you try again or discard it."), end.reason);
        if (!self) {
            return;
        }
        if (isAgain) {
            importFile(path, metadata, told);
            return;
        }
        break;
    }
    case ImportEnd::Kind::Cancelled:
        break;
    }
    removeFile(path);
    told.didEnd({}, ZQError::with(errorDomain, GivenUp, end.reason));
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
