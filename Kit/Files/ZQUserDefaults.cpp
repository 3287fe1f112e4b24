#include "Kit/Files/ZQUserDefaults.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Files/ZQUserDefaultsCoding.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <cstring>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <utility>
#include <vector>

namespace {

// What tells one state of the file from the next; each write makes a new file.
using Stamp = std::array<qint64, 5>;

Stamp stampOf(const struct stat &status)
{
    return {static_cast<qint64>(status.st_ino), status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec,
            status.st_ctim.tv_sec * 1000000000 + status.st_ctim.tv_nsec};
}

struct Observer
{
    std::function<void(const QString &)> function;
};

} // namespace

struct ZQUserDefaults::Private
{
    QString path;
    ZQMutex mutex;
    QVariantMap registered ZQ_GUARDED_BY(mutex);
    QVariantMap values ZQ_GUARDED_BY(mutex);    // as the file has them, with `unwritten` over them
    QVariantMap unwritten ZQ_GUARDED_BY(mutex); // changes the file could not take; an invalid value removes
    Stamp stamp ZQ_GUARDED_BY(mutex) = {};
    Stamp damageStamp ZQ_GUARDED_BY(mutex) = {}; // of a damaged file that stays, which was logged
    ZQError readingProblem ZQ_GUARDED_BY(mutex); // there is a file, and what it holds is not known
    ZQError lockingProblem ZQ_GUARDED_BY(mutex); // something else stands where the lock file belongs
    std::vector<std::weak_ptr<Observer>> observers ZQ_GUARDED_BY(mutex);
    QStringList changed ZQ_GUARDED_BY(mutex); // keys of which the observers were not told yet

    class Access;
    ZQFileDescriptor lockFile() ZQ_REQUIRES(mutex);
    enum class Reading { Done, Damaged };
    Reading read() ZQ_REQUIRES(mutex);
    void refresh() ZQ_REQUIRES(mutex);
    void readLocked() ZQ_REQUIRES(mutex);
    Stamp stampOfFile() const;
    void hold(const QVariantMap &now) ZQ_REQUIRES(mutex);
    ZQError refusal() const ZQ_REQUIRES(mutex);
    bool write(ZQError *error) ZQ_REQUIRES(mutex);
    bool change(const QString &key, const QVariant &value, ZQError *error) ZQ_REQUIRES(mutex);
};

// Holds the mutex. Once that is free again, tells the observers of what was changed, or found changed, meanwhile.
class ZQ_SCOPED_CAPABILITY ZQUserDefaults::Private::Access
{
public:
    explicit Access(Private &defaults) ZQ_ACQUIRE(defaults.mutex) : m_defaults(defaults) { m_defaults.mutex.lock(); }
    ~Access() ZQ_RELEASE()
    {
        const QStringList keys = std::exchange(m_defaults.changed, {});
        std::vector<std::weak_ptr<Observer>> told;
        if (!keys.isEmpty()) {
            std::erase_if(m_defaults.observers, [](const auto &observer) { return observer.expired(); });
            told = m_defaults.observers;
        }
        m_defaults.mutex.unlock();
        for (const QString &key : keys) {
            for (const auto &weak : told) {
                if (const auto observer = weak.lock()) {
                    observer->function(key);
                }
            }
        }
    }
    Access(const Access &) = delete;
    Access &operator=(const Access &) = delete;

private:
    Private &m_defaults;
};

// Shared with other processes until it is closed. A folder that cannot be written to gives none, and no write succeeds
// either.
ZQFileDescriptor ZQUserDefaults::Private::lockFile()
{
    zqMakeFolder(QFileInfo(path).path());
    ZQError error;
    ZQFileDescriptor file = zqOpenRegularFile(path + QStringLiteral(".lock"), O_RDWR | O_CREAT, &error, 0600);
    lockingProblem = error.domain == zqNoRegularFileDomain ? error : ZQError();
    while (file.isOpen() && flock(file.get(), LOCK_EX) != 0 && errno == EINTR) {
    }
    return file;
}

ZQUserDefaults::Private::Reading ZQUserDefaults::Private::read()
{
    constexpr qint64 largest = 256 << 20;
    QVariantMap found;
    const Stamp seen = stampOfFile(); // before it is read: what changes meanwhile is read again
    readingProblem = {};
    if (const auto data = zqReadRegularFile(path, largest, &readingProblem)) {
        const QJsonDocument document = QJsonDocument::fromJson(*data);
        if (!document.isObject()) {
            return Reading::Damaged;
        }
        const QJsonObject object = document.object();
        for (auto it = object.begin(); it != object.end(); ++it) {
            found.insert(it.key(), zqVariantFromJSON(it.value()));
        }
    } else if (QFileInfo::exists(path)) {
        found = values; // as they were known last
    } else {
        readingProblem = {};
    }
    for (auto it = unwritten.cbegin(); it != unwritten.cend(); ++it) {
        it.value().isValid() ? void(found.insert(it.key(), it.value())) : void(found.remove(it.key()));
    }
    stamp = seen;
    hold(found);
    return Reading::Done;
}

void ZQUserDefaults::Private::hold(const QVariantMap &now)
{
    const QVariantMap before = std::exchange(values, now);
    QVariantMap all = before;
    all.insert(now);
    for (auto it = all.cbegin(); it != all.cend(); ++it) {
        const QVariant was = before.value(it.key());
        // As the file has them: there, a list of texts is any list.
        const bool isSame = before.contains(it.key()) == now.contains(it.key()) &&
                            (was == it.value() || zqJSONFromVariant(was) == zqJSONFromVariant(it.value()));
        if (!isSame && !changed.contains(it.key())) {
            changed.append(it.key());
        }
    }
}

Stamp ZQUserDefaults::Private::stampOfFile() const
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? stampOf(status) : Stamp{};
}

// With the lock file held: what is damaged now was not just being written. Where it cannot be set aside it stays, and
// nothing is written over it.
void ZQUserDefaults::Private::readLocked()
{
    if (read() == Reading::Done) {
        return;
    }
    constexpr int mostAside = 9; // the last of them is the latest
    QString aside = path + QStringLiteral(".damaged");
    for (int number = 2; number <= mostAside && QFileInfo(aside).isFile(); ++number) {
        aside = path + QStringLiteral(".damaged-%1").arg(number);
    }
    if (rename(QFile::encodeName(path).constData(), QFile::encodeName(aside).constData()) == 0) {
        qCWarning(zqLogFiles, "The settings in %s are damaged. They were set aside as %s.", qUtf8Printable(path),
                  qUtf8Printable(aside));
        read();
        return;
    }
    const int problem = errno;
    readingProblem = ZQError::posix(problem, path);
    stamp = stampOfFile();
    if (std::exchange(damageStamp, stamp) == stamp) {
        return;
    }
    qCWarning(zqLogFiles, "The settings in %s are damaged, and cannot be set aside as %s: %s.", qUtf8Printable(path),
              qUtf8Printable(aside), std::strerror(problem));
}

void ZQUserDefaults::Private::refresh()
{
    if (stampOfFile() != stamp && read() == Reading::Damaged) {
        const ZQFileDescriptor lock = lockFile();
        readLocked();
    }
}

// Replacing a file takes a writable folder only: what a person protected by the file's own permissions stays.
ZQError ZQUserDefaults::Private::refusal() const
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    const bool isThere = stat(name.constData(), &status) == 0;
    const bool isProtected =
        isThere && ((status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0 || access(name.constData(), W_OK) != 0);
    return !lockingProblem.isNull()   ? lockingProblem
           : !readingProblem.isNull() ? readingProblem
           : isProtected              ? ZQError::posix(EACCES, path)
                                      : ZQError();
}

bool ZQUserDefaults::Private::write(ZQError *error)
{
    QJsonObject object;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        object.insert(it.key(), zqJSONFromVariant(it.value()));
    }
    ZQError cause = refusal();
    if (!cause.isNull() || !zqWriteFileAtomically(path, QJsonDocument(object).toJson(), &cause)) {
        const QString remedy = cause.userInfo.take(ZQError::failureReasonKey).toString();
        zqSetError(error, ZQError::with(cause.domain, cause.code,
                                        zqFormat(zqLocalized("The preferences could not be written (%@)."),
                                                 {cause.localizedDescription()}),
                                        !remedy.isEmpty()
                                            ? remedy
                                            : zqLocalized("Make that file and its folder writable and see that there "
                                                          "is room on the disk, then try again.")));
        return false;
    }
    unwritten.clear();
    stamp = stampOfFile();
    return true;
}

// With the lock file held and the file read. False where the file does not take it; it holds all the same.
bool ZQUserDefaults::Private::change(const QString &key, const QVariant &value, ZQError *error)
{
    QVariantMap wanted = values;
    value.isValid() ? void(wanted.insert(key, value)) : void(wanted.remove(key));
    if (wanted == values && unwritten.isEmpty()) {
        return true;
    }
    unwritten.insert(key, value);
    hold(wanted);
    return write(error);
}

ZQUserDefaults &ZQUserDefaults::standardUserDefaults()
{
    static auto *const defaults = new ZQUserDefaults(ZQPaths::configHome() + QStringLiteral("/Zelto/defaults.json"));
    return *defaults;
}

ZQUserDefaults::ZQUserDefaults(const QString &path) : d(std::make_unique<Private>())
{
    d->path = path;
}

ZQUserDefaults::~ZQUserDefaults() = default;

void ZQUserDefaults::registerDefaults(const QVariantMap &defaults)
{
    const ZQLockGuard guard(d->mutex);
    d->registered.insert(defaults);
}

QVariant ZQUserDefaults::objectForKey(const QString &key) const
{
    const Private::Access access(*d);
    d->refresh();
    return d->values.contains(key) ? d->values.value(key) : d->registered.value(key);
}

bool ZQUserDefaults::boolForKey(const QString &key) const
{
    return objectForKey(key).toBool();
}
qint64 ZQUserDefaults::integerForKey(const QString &key) const
{
    return objectForKey(key).toLongLong();
}
double ZQUserDefaults::doubleForKey(const QString &key) const
{
    return objectForKey(key).toDouble();
}
QString ZQUserDefaults::stringForKey(const QString &key) const
{
    return objectForKey(key).toString();
}

QByteArray ZQUserDefaults::dataForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    return value.typeId() == QMetaType::QByteArray ? value.toByteArray() : QByteArray();
}

void ZQUserDefaults::setObjectForKey(const QVariant &value, const QString &key)
{
    const Private::Access access(*d);
    const ZQFileDescriptor lock = d->lockFile();
    d->readLocked();
    if (ZQError error; !d->change(key, value, &error)) {
        qCWarning(zqLogFiles, "%s", qUtf8Printable(error.localizedDescription()));
    }
}
void ZQUserDefaults::removeObjectForKey(const QString &key)
{
    setObjectForKey({}, key);
}

bool ZQUserDefaults::storeObjectForKey(const QVariant &value, const QString &key, ZQError *error)
{
    const Private::Access access(*d);
    const ZQFileDescriptor lock = d->lockFile();
    d->readLocked();
    const QVariantMap unwritten = d->unwritten;
    const QVariantMap values = d->values;
    const QStringList changed = d->changed;
    if (d->change(key, value, error)) {
        return true;
    }
    d->unwritten = unwritten;
    d->values = values;
    d->changed = changed;
    return false;
}

QStringList ZQUserDefaults::keys() const
{
    const Private::Access access(*d);
    d->refresh();
    QVariantMap all = d->registered;
    all.insert(d->values);
    return all.keys();
}

bool ZQUserDefaults::isSet(const QString &key) const
{
    const Private::Access access(*d);
    d->refresh();
    return d->values.contains(key);
}

bool ZQUserDefaults::synchronize(ZQError *error)
{
    const Private::Access access(*d);
    const ZQFileDescriptor lock = d->lockFile();
    d->readLocked();
    return d->unwritten.isEmpty() || d->write(error);
}

ZQUserDefaults::Token ZQUserDefaults::observe(std::function<void(const QString &)> observer)
{
    auto token = std::make_shared<Observer>(Observer{std::move(observer)});
    refresh(); // what holds now is no change
    const Private::Access access(*d);
    d->observers.push_back(token);
    return token;
}

const QString &ZQUserDefaults::path() const
{
    return d->path;
}

void ZQUserDefaults::refresh() const
{
    const Private::Access access(*d);
    d->refresh();
}
