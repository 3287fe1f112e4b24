#include "Classes/Services/UsageCounts.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQFeatures.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QPointer>

#include <cerrno>
#include <utility>

namespace {

const QString errorDomain = QStringLiteral("zelto.usage");
constexpr int daysKept = 366;
constexpr qint64 largest = 4 << 20;  // bytes of the file
UsageCounts *theFollowing = nullptr; // main thread
constexpr std::chrono::seconds writtenAfter{2};
constexpr int longestWait = 3000; // milliseconds, for another process that writes

UsageCounts::Days sum(UsageCounts::Days days, const UsageCounts::Days &more)
{
    for (auto day = more.cbegin(); day != more.cend(); ++day) {
        for (auto count = day->cbegin(); count != day->cend(); ++count) {
            days[day.key()][count.key()] += count.value();
        }
    }
    return days;
}

QByteArray bytesOf(const UsageCounts::Days &days)
{
    QJsonObject all;
    const QDate first = QDate::currentDate().addDays(-daysKept);
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        QJsonObject counts;
        for (auto count = day->cbegin(); count != day->cend(); ++count) {
            counts.insert(count.key(), count.value());
        }
        if (day.key() >= first) {
            all.insert(day.key().toString(Qt::ISODate), counts);
        }
    }
    return QJsonDocument(all).toJson();
}

} // namespace

QString UsageCounts::usualPath()
{
    return ZQPaths::stateHome() + QStringLiteral("/Zelto/usage.json");
}

UsageCounts::UsageCounts(QString path) : m_path(std::move(path)), m_queue(QStringLiteral("usage"), 1)
{
    m_soon.setSingleShot(true);
    QObject::connect(&m_soon, &QTimer::timeout, &m_soon,
                     [this] { m_queue.addOperationWithBlock([this] { writeOrLog(); }); });
}

UsageCounts::~UsageCounts()
{
    if (theFollowing == this) {
        zqSetFeatureObserver(nullptr);
        theFollowing = nullptr;
    }
    m_queue.waitUntilAllOperationsAreFinished();
    writeOrLog();
}

void UsageCounts::writeOrLog()
{
    ZQError error;
    if (!write(&error)) {
        qCWarning(zqLogApplication).noquote() << error.localizedDescription();
    }
}

void UsageCounts::follow()
{
    theFollowing = this;
    zqSetFeatureObserver([this, soon = QPointer(&m_soon)](const QString &name) {
        count(name);
        zqOnMainThread([soon] {
            if (soon && !soon->isActive()) {
                soon->start(writtenAfter);
            }
        });
    });
}

UsageCounts *UsageCounts::following()
{
    return theFollowing;
}

void UsageCounts::count(const QString &name, const QDate &day)
{
    if (ZQUserDefaults::standardUserDefaults().boolForKey(countsKey)) {
        const ZQLockGuard guard(m_lock);
        ++m_new[day][name];
    }
}

UsageCounts::Days UsageCounts::read(ZQError *error) const
{
    QFile file(m_path);
    Days days;
    if (!file.exists()) {
        return days;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        zqSetError(error, ZQError::with(errorDomain, EACCES,
                                        zqFormat(zqLocalized("The counts of “%@” could not be read: %@"),
                                                 {m_path, file.errorString()})));
        return days;
    }
    const QJsonDocument document = QJsonDocument::fromJson(file.read(largest));
    if (!document.isObject()) {
        zqSetError(error, ZQError::with(
                              errorDomain, EINVAL,
                              zqFormat(zqLocalized("The counts of “%@” are damaged. Erase them to go on."), {m_path})));
    }
    const QJsonObject all = document.object();
    for (auto day = all.constBegin(); day != all.constEnd(); ++day) {
        const QDate date = QDate::fromString(day.key(), Qt::ISODate);
        const QJsonObject counts = day.value().toObject();
        for (auto count = counts.constBegin(); date.isValid() && count != counts.constEnd(); ++count) {
            days[date][count.key()] = count.value().toInteger();
        }
    }
    return days;
}

// With what other processes have counted.
bool UsageCounts::change(const std::function<bool(ZQError *)> &change, ZQError *error) const
{
    const bool isThere = zqMakeFolder(QFileInfo(m_path).path());
    QLockFile processes(m_path + QStringLiteral(".lock"));
    if (!isThere || !processes.tryLock(longestWait)) {
        zqSetError(error, ZQError::with(errorDomain, EBUSY,
                                        zqFormat(zqLocalized("The counts of “%@” could not be written. Another Zelto "
                                                             "may be at it, or the folder can't be written in."),
                                                 {m_path})));
        return false;
    }
    return change(error);
}

bool UsageCounts::write(ZQError *error)
{
    Days counted;
    {
        const ZQLockGuard guard(m_lock);
        counted = std::exchange(m_new, {});
    }
    if (counted.isEmpty()) {
        return true;
    }
    const bool isWritten = change(
        [&](ZQError *why) {
            ZQError unreadable;
            const Days before = read(&unreadable);
            if (!unreadable.isNull()) {
                zqSetError(why, unreadable);
                return false;
            }
            return zqWriteFileAtomically(m_path, bytesOf(sum(before, counted)), why);
        },
        error);
    if (!isWritten) {
        const ZQLockGuard guard(m_lock);
        m_new = sum(m_new, counted);
    }
    return isWritten;
}

UsageCounts::Days UsageCounts::days(ZQError *error)
{
    const Days written = read(error);
    const ZQLockGuard guard(m_lock);
    return sum(written, m_new);
}

bool UsageCounts::erase(ZQError *error)
{
    {
        const ZQLockGuard guard(m_lock);
        m_new.clear();
    }
    return change(
        [this](ZQError *why) {
            QFile file(m_path);
            if (file.exists() && !file.remove()) {
                zqSetError(why, ZQError::with(errorDomain, EACCES,
                                              zqFormat(zqLocalized("The counts of “%@” could not be erased: %@"),
                                                       {m_path, file.errorString()})));
                return false;
            }
            return true;
        },
        error);
}
