#include "Tests/Kit/Persistence/FailingCalls.h"

#include "Kit/Foundation/ZQLog.h"

#include <cerrno>
#include <cstdio>

#include <dlfcn.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

thread_local FailingCalls *current = nullptr;
thread_local int depth = 0; // a call within a call is not one of the program

struct Within
{
    Within() { ++depth; }
    ~Within() { --depth; }
};

const char *nameOf(sqlite3 *database)
{
    const char *const name = database ? sqlite3_db_filename(database, "main") : nullptr;
    return name ? name : "";
}

template <class... Arguments>
int orFail(const char *function, const char *database, Arguments... arguments)
{
    if (FailingCalls::isNextToFail(FailingCalls::Kind::Database, database)) {
        return SQLITE_IOERR;
    }
    const Within within;
    return reinterpret_cast<int (*)(Arguments...)>(dlsym(RTLD_NEXT, function))(arguments...);
}

bool failsNow()
{
    const bool fails = FailingCalls::isNextToFail(FailingCalls::Kind::Files);
    errno = fails ? EIO : errno;
    return fails;
}

void setWarnings(bool areWanted)
{
    const_cast<QLoggingCategory &>(zqLogStore()).setEnabled(QtWarningMsg, areWanted);
}

int resultOfFlushing(int file)
{
    return failsNow() || fcntl(file, F_GETFD) < 0 ? -1 : 0;
}

} // namespace

FailingCalls::FailingCalls(Kind kind, int number, QByteArray onlyIn)
    : m_kind(kind), m_number(number), m_onlyIn(std::move(onlyIn))
{
    current = this;
    setWarnings(false); // hundreds of them would say the same
}

FailingCalls::~FailingCalls()
{
    current = nullptr;
    setWarnings(true);
}

bool FailingCalls::isNextToFail(Kind kind, const char *database)
{
    const bool counts = current && depth == 0 && current->m_kind == kind &&
                        (current->m_onlyIn.isEmpty() || QByteArray(database).endsWith(current->m_onlyIn));
    return counts && ++current->m_count == current->m_number;
}

// The linker takes a program's own function before a library's.
extern "C" {

int sqlite3_open_v2(const char *name, sqlite3 **database, int flags, const char *vfs)
{
    *database = nullptr;
    return orFail("sqlite3_open_v2", name, name, database, flags, vfs);
}

int sqlite3_prepare_v3(sqlite3 *database, const char *sql, int size, unsigned flags, sqlite3_stmt **statement,
                       const char **rest)
{
    return orFail("sqlite3_prepare_v3", nameOf(database), database, sql, size, flags, statement, rest);
}

int sqlite3_step(sqlite3_stmt *statement)
{
    return orFail("sqlite3_step", nameOf(sqlite3_db_handle(statement)), statement);
}

int sqlite3_exec(sqlite3 *database, const char *sql, int (*row)(void *, int, char **, char **), void *data,
                 char **message)
{
    return orFail("sqlite3_exec", nameOf(database), database, sql, row, data, message);
}

int sqlite3_backup_step(sqlite3_backup *backup, int pages)
{
    return orFail("sqlite3_backup_step", "", backup, pages);
}

int fsync(int file)
{
    return resultOfFlushing(file);
}

int fdatasync(int file)
{
    return resultOfFlushing(file);
}

int link(const char *from, const char *to) noexcept
{
    return failsNow() ? -1 : int(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int rename(const char *from, const char *to) noexcept
{
    return failsNow() ? -1 : int(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int unlink(const char *name) noexcept
{
    return failsNow() ? -1 : int(syscall(SYS_unlinkat, AT_FDCWD, name, 0));
}
}
