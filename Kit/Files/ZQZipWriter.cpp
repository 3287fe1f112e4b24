#include "Kit/Files/ZQZipWriter.h"

#include "Kit/Files/ZQNewFile.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFile>
#include <QSet>

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <clocale>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <vector>

namespace {

constexpr size_t blockBytes = size_t(1) << 20;

// What deflating makes no smaller.
bool isCompressedAlready(const QByteArray &name)
{
    static const QSet<QString> extensions = [] {
        const QStringList list =
            QStringLiteral(
                "jpg jpeg jpe jp2 j2k jpf jpx png gif webp avif heic heif jxl mp4 m4v mov webm mkv avi mp3 m4a "
                "aac ogg oga opus flac zip gz tgz bz2 xz zst 7z rar svgz jar docx xlsx pptx odt ods odp "
                "sketch woff woff2")
                .split(u' ');
        return QSet<QString>(list.begin(), list.end());
    }();
    return extensions.contains(zqPathExtension(QString::fromUtf8(name)).toLower());
}

ZQError stoppedError(const QString &path)
{
    return ZQError::posix(ECANCELED, path);
}

struct EndWriting
{
    void operator()(archive *writer) const { archive_write_free(writer); }
};
struct FreeEntry
{
    void operator()(archive_entry *entry) const { archive_entry_free(entry); }
};

// The library takes names through the thread's character set, whatever theirs is.
class UTF8Names
{
public:
    UTF8Names() : m_locale(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)), m_before(::uselocale(m_locale)) {}
    ~UTF8Names()
    {
        ::uselocale(m_before);
        if (m_locale) {
            ::freelocale(m_locale);
        }
    }
    UTF8Names(const UTF8Names &) = delete;
    UTF8Names &operator=(const UTF8Names &) = delete;

private:
    locale_t m_locale;
    locale_t m_before;
};

// One archive on the way into an open file.
class ZipFile
{
public:
    ZipFile(int output, QString path)
        : m_path(std::move(path)), m_output(output), m_writer(archive_write_new()), m_entry(archive_entry_new()),
          m_block(blockBytes)
    {
        archive *const writer = m_writer.get();
        m_isOpen = archive_write_set_format_zip(writer) == ARCHIVE_OK &&
                   archive_write_set_options(writer, "zip:hdrcharset=UTF-8") == ARCHIVE_OK &&
                   archive_write_set_bytes_per_block(writer, int(blockBytes)) == ARCHIVE_OK &&
                   archive_write_set_bytes_in_last_block(writer, 1) == ARCHIVE_OK &&
                   archive_write_open(writer, this, nullptr, &ZipFile::write, nullptr) == ARCHIVE_OK;
    }
    ~ZipFile() { m_isOver = true; } // the library writes the end of one that was given up
    ZipFile(const ZipFile &) = delete;
    ZipFile &operator=(const ZipFile &) = delete;

    bool add(const ZQZipMember &member, ZQError *error)
    {
        const auto path = zqSystemPath(member.path, error);
        return path && (m_isOpen || failToWrite(error)) &&
               add(AT_FDCWD, *path, member.name.toUtf8(), member.path, error);
    }

    // What was added last could not be read, and the archive is worth no more.
    bool didFailToRead() const { return m_didFailToRead; }

    bool finish(ZQError *error)
    {
        return (m_isOpen && archive_write_close(m_writer.get()) == ARCHIVE_OK && m_failure == 0) || failToWrite(error);
    }

private:
    // The library loses memory when it is told that a write failed, so it is not.
    static la_ssize_t write(archive * /*writer*/, void *file, const void *data, size_t size)
    {
        auto *const self = static_cast<ZipFile *>(file);
        if (!self->m_isOver && self->m_failure == 0 &&
            !zqWriteAll(self->m_output, static_cast<const char *>(data), qint64(size))) {
            self->m_failure = errno;
        }
        return la_ssize_t(size);
    }

    // `shown`: what an error says.
    bool add(int folder, const QByteArray &file, const QByteArray &name, const QString &shown, ZQError *error)
    {
        struct stat status = {};
        if (::fstatat(folder, file.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
            return failToRead(errno, shown, error);
        }
        if (m_names.contains(name)) {
            return failToRead(EEXIST, QString::fromUtf8(name), error);
        }
        m_names.insert(name);
        switch (status.st_mode & S_IFMT) {
        case S_IFREG:
            return addFile(folder, file, name, shown, error);
        case S_IFDIR:
            return addFolder(folder, file, name, shown, error);
        case S_IFLNK:
            return addLink(folder, file, name, status, shown, error);
        default:
            zqSetError(error, ZQError::with(ZQError::posixDomain, EINVAL,
                                            zqFormat(zqLocalized("“%@” is no file and no folder."), {shown})));
            return false;
        }
    }

    bool begin(const struct stat &status, const QByteArray &name, ZQError *error)
    {
        archive_entry *const entry = archive_entry_clear(m_entry.get());
        archive_entry_copy_pathname(entry, name.constData()); // the call for UTF-8 composes letters

        archive_entry_set_filetype(entry, status.st_mode & S_IFMT);
        archive_entry_set_perm(entry, status.st_mode & 0777);
        archive_entry_set_mtime(entry, status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
        if (S_ISREG(status.st_mode)) {
            archive_entry_set_size(entry, status.st_size);
            const auto choose = isCompressedAlready(name) ? archive_write_zip_set_compression_store
                                                          : archive_write_zip_set_compression_deflate;
            if (choose(m_writer.get()) != ARCHIVE_OK) {
                return failToWrite(error);
            }
        }
        return true;
    }

    bool writeHeader(ZQError *error)
    {
        return (archive_write_header(m_writer.get(), m_entry.get()) == ARCHIVE_OK && m_failure == 0) ||
               failToWrite(error);
    }

    bool addFile(int folder, const QByteArray &file, const QByteArray &name, const QString &shown, ZQError *error)
    {
        const ZQFileDescriptor in(
            ::openat(folder, file.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        struct stat status = {};
        if (!in.isOpen() || ::fstat(in.get(), &status) != 0) {
            return failToRead(errno, shown, error);
        }
        if (!S_ISREG(status.st_mode)) { // another one since
            return failToRead(EBUSY, shown, error);
        }
        ::posix_fadvise(in.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
        return begin(status, name, error) && writeHeader(error) && copyContent(in.get(), status.st_size, shown, error);
    }

    bool copyContent(int in, qint64 size, const QString &shown, ZQError *error)
    {
        qint64 left = size;
        for (;;) {
            if (ZQCancellation::isCurrentCancelled()) {
                zqSetError(error, stoppedError(m_path));
                return false;
            }
            const ssize_t got = ::read(in, m_block.data(), m_block.size());
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got < 0) {
                return failToRead(errno, shown, error);
            }
            if (got > left || (got == 0 && left > 0)) {
                return failToRead(EBUSY, shown, error); // longer or shorter than it was
            }
            if (got == 0) {
                return true;
            }
            if (archive_write_data(m_writer.get(), m_block.data(), size_t(got)) != got || m_failure != 0) {
                return failToWrite(error);
            }
            left -= got;
        }
    }

    bool addLink(int folder, const QByteArray &file, const QByteArray &name, const struct stat &status,
                 const QString &shown, ZQError *error)
    {
        QByteArray target(PATH_MAX, '\0');
        const ssize_t length = ::readlinkat(folder, file.constData(), target.data(), size_t(target.size()));
        if (length < 0) {
            return failToRead(errno, shown, error);
        }
        target.truncate(length);
        if (!begin(status, name, error)) {
            return false;
        }
        archive_entry_copy_symlink(m_entry.get(), target.constData());
        archive_entry_set_size(m_entry.get(), length);
        return writeHeader(error);
    }

    bool addFolder(int folder, const QByteArray &file, const QByteArray &name, const QString &shown, ZQError *error)
    {
        ZQFileDescriptor in(::openat(folder, file.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        struct stat status = {};
        if (!in.isOpen() || ::fstat(in.get(), &status) != 0) {
            return failToRead(errno, shown, error);
        }
        if (!begin(status, name + '/', error) || !writeHeader(error)) {
            return false;
        }
        const auto names = namesIn(in, shown, error);
        return names && std::all_of(names->begin(), names->end(), [&](const QByteArray &each) {
                   const QString text = QFile::decodeName(each); // names of another character set lose by it
                   return add(in.get(), each, name + '/' + text.toUtf8(), shown + u'/' + text, error);
               });
    }

    // In an order that does not depend on the file system.
    std::optional<std::vector<QByteArray>> namesIn(const ZQFileDescriptor &folder, const QString &shown, ZQError *error)
    {
        const std::unique_ptr<DIR, int (*)(DIR *)> listing(::fdopendir(::fcntl(folder.get(), F_DUPFD_CLOEXEC, 0)),
                                                           ::closedir);
        std::vector<QByteArray> names;
        errno = listing ? 0 : errno;
        while (const dirent *const each = listing ? ::readdir(listing.get()) : nullptr) {
            const QByteArray name(each->d_name);
            if (name != "." && name != "..") {
                names.push_back(name);
            }
            errno = 0;
        }
        if (errno != 0) {
            failToRead(errno, shown, error);
            return std::nullopt;
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    bool failToRead(int code, const QString &shown, ZQError *error)
    {
        m_didFailToRead = true;
        zqSetError(error, code == EBUSY
                              ? ZQError::with(ZQError::posixDomain, EBUSY,
                                              zqFormat(zqLocalized("“%@” was changed meanwhile. Try again."), {shown}))
                              : ZQError::posix(code, shown));
        return false;
    }

    bool failToWrite(ZQError *error)
    {
        const int code = m_failure != 0 ? m_failure : m_writer ? archive_errno(m_writer.get()) : ENOMEM;
        zqSetError(error, ZQError::posix(code > 0 ? code : EIO, m_path));
        return false;
    }

    const QString m_path;
    const int m_output;
    int m_failure = 0; // of a write
    bool m_isOver = false;
    const std::unique_ptr<archive, EndWriting> m_writer;
    const std::unique_ptr<archive_entry, FreeEntry> m_entry;
    std::vector<char> m_block;
    QSet<QByteArray> m_names;
    bool m_isOpen = false;
    bool m_didFailToRead = false;
};

bool isPossibleName(const QString &name)
{
    const QStringList parts = name.split(u'/');
    return !name.contains(QChar::Null) && std::none_of(parts.begin(), parts.end(), [](const QString &part) {
        return part.isEmpty() || part == QLatin1String(".") || part == QLatin1String("..");
    });
}

bool areNamesPossible(const QList<ZQZipMember> &members, ZQError *error)
{
    QSet<QString> names;
    for (const ZQZipMember &member : members) {
        const int code = !isPossibleName(member.name) ? EINVAL : names.contains(member.name) ? EEXIST : 0;
        if (code != 0) {
            zqSetError(error, ZQError::posix(code, member.name));
            return false;
        }
        names.insert(member.name);
    }
    return true;
}

} // namespace

bool zqWriteZip(const QList<ZQZipMember> &members, const QString &path,
                const std::function<bool(qsizetype index)> &willAdd, ZQError *error, qsizetype *unreadable)
{
    if (!areNamesPossible(members, error)) {
        return false;
    }
    std::optional<ZQNewFile> file = ZQNewFile::make(path, error);
    if (!file) {
        return false;
    }
    const UTF8Names names;
    ZipFile zip(file->descriptor(), path);
    for (qsizetype i = 0; i < members.size(); ++i) {
        if (ZQCancellation::isCurrentCancelled() || (willAdd && !willAdd(i))) {
            zqSetError(error, stoppedError(path));
            return false;
        }
        if (!zip.add(members.at(i), error)) {
            if (unreadable && zip.didFailToRead()) {
                *unreadable = i;
            }
            return false;
        }
    }
    return zip.finish(error) && file->place(error);
}
