#include "Tests/Classes/Tags/AttributeFaults.h"

#include <QByteArray>
#include <QHash>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <utility>

namespace {

std::mutex mutex;
QHash<QByteArray, int> readFaults;
QHash<QByteArray, int> writeFaults;
QHash<QByteArray, QByteArray> answers;
QHash<QByteArray, std::function<void()>> readActs;
QHash<QByteArray, std::function<void()>> writeActs;
QStringList writtenNames;
bool hidesBirthTimes = false;
qsizetype room = -1;
int readCount = 0;
int writeCount = 0;

QByteArray systemName(const QString &name)
{
    return "user." + name.toUtf8();
}

// The errno of the fault; 0: none.
int faultOf(const QHash<QByteArray, int> &faults, const char *name, int &count)
{
    const std::lock_guard lock(mutex);
    ++count;
    return faults.value(name, 0);
}

void act(QHash<QByteArray, std::function<void()>> &acts, const char *name)
{
    std::function<void()> found;
    {
        const std::lock_guard lock(mutex);
        found = acts.take(name);
    }
    if (found) {
        found();
    }
}

ssize_t realList(const char *path, char *buffer, size_t size)
{
    return syscall(SYS_llistxattr, path, buffer, size);
}

ssize_t realGet(const char *path, const char *name, void *buffer, size_t size)
{
    return syscall(SYS_lgetxattr, path, name, buffer, size);
}

// Whether `size` bytes under `name` still fit beside the file's other attributes.
bool fits(const char *path, const char *name, size_t size)
{
    qsizetype limit = 0;
    {
        const std::lock_guard lock(mutex);
        limit = room;
    }
    if (limit < 0) {
        return true;
    }
    QByteArray names(65536, '\0');
    const ssize_t length = realList(path, names.data(), size_t(names.size()));
    qsizetype taken = qsizetype(std::strlen(name) + size);
    for (const char *each = names.constData(); length > 0 && each < names.constData() + length;
         each += std::strlen(each) + 1) {
        if (std::strncmp(each, "user.", 5) == 0 && std::strcmp(each, name) != 0) {
            taken += qsizetype(std::strlen(each)) + qsizetype(realGet(path, each, nullptr, 0));
        }
    }
    return taken <= limit;
}

} // namespace

AttributeFaults::AttributeFaults()
{
    clear();
}

AttributeFaults::~AttributeFaults()
{
    clear();
}

void AttributeFaults::failReading(const QString &name, int errnoValue)
{
    const std::lock_guard lock(mutex);
    readFaults.insert(systemName(name), errnoValue);
}

void AttributeFaults::failWriting(const QString &name, int errnoValue)
{
    const std::lock_guard lock(mutex);
    writeFaults.insert(systemName(name), errnoValue);
}

void AttributeFaults::setRoom(qsizetype bytes)
{
    const std::lock_guard lock(mutex);
    room = bytes;
}

void AttributeFaults::clear()
{
    const std::lock_guard lock(mutex);
    readFaults.clear();
    writeFaults.clear();
    answers.clear();
    readActs.clear();
    writeActs.clear();
    writtenNames.clear();
    hidesBirthTimes = false;
    room = -1;
    readCount = 0;
    writeCount = 0;
}

void AttributeFaults::answerReading(const QString &name, const QByteArray &value)
{
    const std::lock_guard lock(mutex);
    answers.insert(systemName(name), value);
}

void AttributeFaults::beforeReading(const QString &name, std::function<void()> act)
{
    const std::lock_guard lock(mutex);
    readActs.insert(systemName(name), std::move(act));
}

void AttributeFaults::beforeWriting(const QString &name, std::function<void()> act)
{
    const std::lock_guard lock(mutex);
    writeActs.insert(systemName(name), std::move(act));
}

void AttributeFaults::hideBirthTimes()
{
    const std::lock_guard lock(mutex);
    hidesBirthTimes = true;
}

QStringList AttributeFaults::written() const
{
    const std::lock_guard lock(mutex);
    return writtenNames;
}

int AttributeFaults::reads() const
{
    const std::lock_guard lock(mutex);
    return readCount;
}

int AttributeFaults::writes() const
{
    const std::lock_guard lock(mutex);
    return writeCount;
}

// The linker takes a program's own function before the C library's.
extern "C" {

ssize_t lgetxattr(const char *path, const char *name, void *value, size_t size) noexcept
{
    act(readActs, name);
    if (const int fault = faultOf(readFaults, name, readCount)) {
        errno = fault;
        return -1;
    }
    QByteArray answer;
    {
        const std::lock_guard lock(mutex);
        answer = answers.value(name);
    }
    if (!answer.isEmpty()) {
        if (size > 0 && size < size_t(answer.size())) {
            errno = ERANGE;
            return -1;
        }
        if (size > 0) { // else only its length is asked for
            std::memcpy(value, answer.constData(), size_t(answer.size()));
        }
        return ssize_t(answer.size());
    }
    return realGet(path, name, value, size);
}

int lsetxattr(const char *path, const char *name, const void *value, size_t size, int flags) noexcept
{
    act(writeActs, name);
    int fault = faultOf(writeFaults, name, writeCount);
    if (fault == 0 && !fits(path, name, size)) {
        fault = ENOSPC;
    }
    if (fault != 0) {
        errno = fault;
        return -1;
    }
    {
        const std::lock_guard lock(mutex);
        writtenNames.append(QString::fromUtf8(name).mid(qsizetype(std::strlen("user."))));
    }
    return int(syscall(SYS_lsetxattr, path, name, value, size, flags));
}

int lremovexattr(const char *path, const char *name) noexcept
{
    if (const int fault = faultOf(writeFaults, name, writeCount)) {
        errno = fault;
        return -1;
    }
    return int(syscall(SYS_lremovexattr, path, name));
}

int statx(int folder, const char *path, int flags, unsigned int mask, struct statx *status) noexcept
{
    const int result = int(syscall(SYS_statx, folder, path, flags, mask, status));
    const std::lock_guard lock(mutex);
    if (result == 0 && hidesBirthTimes) {
        status->stx_mask &= ~unsigned(STATX_BTIME);
        status->stx_btime = {};
    }
    return result;
}
}
