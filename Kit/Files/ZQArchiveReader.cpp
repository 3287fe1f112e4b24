#include "Kit/Files/ZQArchiveReader.h"

#include "Kit/Files/ZQLegacyText.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <locale.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t inputBlock = 128 * 1024;
constexpr qsizetype outputBlock = 256 * 1024;
constexpr qsizetype namesForEncoding = 64 * 1024; // bytes; more say nothing new

using Reader = std::unique_ptr<archive, decltype(&archive_read_free)>;

// The library turns names into the thread's locale, which is to be one that has every character.
class UTF8Locale
{
public:
    UTF8Locale()
        : m_locale(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)),
          m_previous(m_locale ? ::uselocale(m_locale) : nullptr)
    {
    }
    ~UTF8Locale()
    {
        if (m_locale) {
            ::uselocale(m_previous);
            ::freelocale(m_locale);
        }
    }
    UTF8Locale(const UTF8Locale &) = delete;
    UTF8Locale &operator=(const UTF8Locale &) = delete;

private:
    locale_t m_locale;
    locale_t m_previous;
};

// The format is told by the beginning: left to choose, the library takes a rar archive that ends with a stored zip
// archive for that one.
Reader openReader(const QString &path)
{
    Reader reader(archive_read_new(), archive_read_free);
    if (reader) {
        QFile file(path);
        const bool isRar = file.open(QIODevice::ReadOnly) && file.read(4) == "Rar!";
        if (isRar) {
            archive_read_support_format_rar(reader.get());
            archive_read_support_format_rar5(reader.get());
        } else {
            archive_read_support_format_zip(reader.get());
        }
        archive_read_open_filename(reader.get(), QFile::encodeName(path).constData(),
                                   inputBlock); // the first header tells
    }
    return reader;
}

ZQError archiveError(ZQArchiveReader::ErrorCode code, const QString &text)
{
    return ZQError::with(ZQArchiveReader::errorDomain, code, text);
}

ZQError limitError(const QString &archive, const QString &what)
{
    return archiveError(
        ZQArchiveReader::TooMuch,
        zqFormat(zqLocalized("“%@” was not unpacked: %@. If you trust it, unpack it yourself and import "
                             "what it holds, or raise the limit with `zelto defaults`."),
                 {archive, what}));
}

bool isSuccess(int status)
{
    return status == ARCHIVE_OK || status == ARCHIVE_WARN; // a warning is about an attribute
}

} // namespace

ZQArchiveReader::ZQArchiveReader(const ZQArchiveLimits &limits, std::function<bool()> isCancelled)
    : m_limits(limits), m_isCancelled(std::move(isCancelled)), m_block(outputBlock, Qt::Uninitialized)
{
}

bool ZQArchiveReader::extractArchive(const QString &path, const QString &folder, int depth, ZQError *error)
{
    m_name = QFileInfo(path).fileName();
    if (depth == 0) {
        m_outermostSize = QFileInfo(path).size();
    }
    if (depth > m_limits.nestingDepth) {
        zqSetError(error, limitError(m_name, zqFormat(zqLocalized("it lies in more than %d other archives"),
                                                      {m_limits.nestingDepth})));
        return false;
    }
    m_headers = ZQArchiveHeaders::headersOfFile(path);
    if (m_headers.isCutOff) {
        zqSetError(error, damage(zqLocalized("its end is missing")));
        return false;
    }
    const UTF8Locale locale;
    if (!survey(path, error)) {
        return false;
    }
    if (::mkdir(QFile::encodeName(folder).constData(), 0700) != 0) {
        zqSetError(error, writeError(errno));
        return false;
    }
    bool isWhole = false;
    {
        ZQExtractionFolder target(folder);
        isWhole = extractEntries(path, target, error);
    }
    if (!isWhole) {
        QDir(folder).removeRecursively();
    }
    return isWhole;
}

// A zip archive lists its entries: what can be said beforehand is said before anything is written, and the names are
// seen together, since one alone does not tell its encoding. Other archives would have to be unpacked for that, and say
// their encoding anyway.
bool ZQArchiveReader::survey(const QString &path, ZQError *error)
{
    const Reader reader = openReader(path);
    archive_entry *entry = nullptr;
    QList<QByteArray> names;
    qsizetype bytesOfNames = 0;
    qint64 size = 0;
    qint64 count = 0;
    int status = ARCHIVE_OK;
    while (isSuccess(status = archive_read_next_header(reader.get(), &entry))) {
        if (!mayGoOn(error) || !isOpen(entry, error)) {
            return false;
        }
        if ((archive_format(reader.get()) & ARCHIVE_FORMAT_BASE_MASK) != ARCHIVE_FORMAT_ZIP) {
            break;
        }
        if (m_entryCount + ++count > m_limits.entryCount) {
            break; // told when it is unpacked
        }
        const char *name = archive_entry_pathname(entry);
        if (name && bytesOfNames < namesForEncoding) {
            names.append(QByteArray(name));
            bytesOfNames += names.last().size();
        }
        if (archive_entry_size_is_set(entry) && archive_entry_size(entry) > m_limits.totalSize - m_totalSize - size) {
            zqSetError(error, limitError(m_name, zqFormat(zqLocalized("it holds more than %d MB"),
                                                          {m_limits.totalSize >> 20})));
            return false;
        }
        size += archive_entry_size(entry);
    }
    if (status < ARCHIVE_WARN) { // beyond what is a warning
        zqSetError(error, failure(reader.get()));
        return false;
    }
    m_encoding = ZQLegacyText::likelyEncoding(names);
    return true;
}

bool ZQArchiveReader::extractEntries(const QString &path, ZQExtractionFolder &folder, ZQError *error)
{
    const Reader reader = openReader(path);
    archive_entry *entry = nullptr;
    int status = ARCHIVE_OK;
    for (qsizetype i = 0; isSuccess(status = archive_read_next_header(reader.get(), &entry)); ++i) {
        m_checksum = m_headers.checksums.value(i);
        if (!mayGoOn(error) || !countEntry(error) || !isOpen(entry, error) ||
            !extractEntry(reader.get(), entry, folder, error)) {
            return false;
        }
    }
    if (status != ARCHIVE_EOF) {
        zqSetError(error, failure(reader.get()));
        return false;
    }
    return true;
}

bool ZQArchiveReader::mayGoOn(ZQError *error) const
{
    if (m_isCancelled && m_isCancelled()) {
        zqSetError(error,
                   archiveError(Cancelled, zqLocalized("The import was cancelled. Import it again if you want it.")));
        return false;
    }
    return true;
}

bool ZQArchiveReader::countEntry(ZQError *error)
{
    if (++m_entryCount > m_limits.entryCount) {
        zqSetError(error,
                   limitError(m_name, zqFormat(zqLocalized("it holds more than %d files"), {m_limits.entryCount})));
        return false;
    }
    return true;
}

bool ZQArchiveReader::isOpen(archive_entry *entry, ZQError *error) const
{
    if (!archive_entry_is_encrypted(entry)) {
        return true;
    }
    zqSetError(error, archiveError(Encrypted, zqFormat(zqLocalized("“%@” is protected by a password (“%@” in it is "
                                                                   "encrypted). Unpack it yourself and import what it "
                                                                   "holds."),
                                                       {m_name, nameOfEntry(entry)})));
    return false;
}

QString ZQArchiveReader::nameOfEntry(archive_entry *entry) const
{
    const char *name = archive_entry_pathname(entry);
    if (!name) {
        name = archive_entry_pathname_utf8(entry);
    }
    if (!name) {
        return {};
    }
    const QByteArray bytes(name);
    // One with its encoding said comes as UTF-8, whatever the others are in.
    const QString text = QString::fromUtf8(bytes);
    return text.contains(QChar::ReplacementCharacter) ? ZQLegacyText::decoded(bytes, m_encoding) : text;
}

void ZQArchiveReader::skip(const QString &name, const QString &reason)
{
    if (m_skippedCount++ == 0) {
        m_firstSkipped = zqFormat(zqLocalized("“%@”: %@"), {name, reason});
    }
}

bool ZQArchiveReader::extractEntry(archive *reader, archive_entry *entry, ZQExtractionFolder &folder, ZQError *error)
{
    const QString name = nameOfEntry(entry);
    QStringList components;
    using Verdict = ZQExtractionFolder::Verdict;
    const Verdict verdict = ZQExtractionFolder::components(name, &components);
    const auto type = archive_entry_filetype(entry);
    const bool isFolder = type == AE_IFDIR || name.endsWith(u'/') || name.endsWith(u'\\');
    const bool namesNothing = verdict == Verdict::Fine && components.isEmpty() && !name.isNull();
    if (verdict == Verdict::Noise || namesNothing) {
        return true;
    }
    if (name.isNull()) {
        skip(QStringLiteral("?"), zqLocalized("its name cannot be read"));
    } else if (verdict == Verdict::Outside) {
        skip(name, zqLocalized("its name leads out of the archive"));
    } else if (type == AE_IFLNK || archive_entry_hardlink(entry)) {
        skip(name, zqLocalized("it is a link"));
    } else if (!isFolder && type != AE_IFREG && type != 0) {
        skip(name, zqLocalized("it is no regular file"));
    } else if (verdict != Verdict::Fine || !folder.canHold(components)) {
        skip(name, zqLocalized("it lies too deep in folders"));
    } else if (isFolder) {
        if (!folder.makeFolder(components)) {
            skip(name, zqLocalized("a file of this name is in its way"));
        }
    } else {
        ZQError makeError;
        const int descriptor = folder.makeFile(components, &makeError);
        if (descriptor < 0 && (makeError.code == ENOTDIR || makeError.code == ELOOP)) {
            skip(name, zqLocalized("a file has the name of its folder"));
            return true;
        }
        if (descriptor < 0) {
            zqSetError(error, writeError(makeError.code));
            return false;
        }
        bool isWhole = copyData(reader, descriptor, error);
        if (isWhole && archive_entry_mtime_is_set(entry)) {
            const timespec time{archive_entry_mtime(entry), archive_entry_mtime_nsec(entry)};
            const timespec times[] = {time, time};
            ::futimens(descriptor, times); // one that the file system cannot keep is left as it is
        }
        if (::close(descriptor) != 0 && isWhole) {
            zqSetError(error, writeError(errno));
            isWhole = false;
        }
        return isWhole;
    }
    return true;
}

bool ZQArchiveReader::copyData(archive *reader, int descriptor, ZQError *error)
{
    quint32 checksum = 0;
    for (;;) {
        const la_ssize_t count = archive_read_data(reader, m_block.data(), std::size_t(m_block.size()));
        if (count < 0) {
            zqSetError(error, failure(reader));
            return false;
        }
        if (m_checksum) {
            checksum = zqCRC32(checksum, m_block.constData(), count);
        }
        if (count == 0 && m_checksum.value_or(checksum) != checksum) {
            zqSetError(error, damage(zqLocalized("its content has changed")));
            return false;
        }
        if (count == 0) {
            return true;
        }
        m_totalSize += count;
        if (!mayGoOn(error)) {
            return false;
        }
        const bool isTooDense =
            m_totalSize > m_limits.ratioFreeSize && m_totalSize / std::max<qint64>(m_outermostSize, 1) > m_limits.ratio;
        if (m_totalSize > m_limits.totalSize || isTooDense) {
            const QString what =
                isTooDense ? zqFormat(zqLocalized("its content is more than %d times as large"), {m_limits.ratio})
                           : zqFormat(zqLocalized("it holds more than %d MB"), {m_limits.totalSize >> 20});
            zqSetError(error, limitError(m_name, what));
            return false;
        }
        for (la_ssize_t done = 0; done < count;) {
            const ssize_t written = ::write(descriptor, m_block.constData() + done, std::size_t(count - done));
            if (written < 0 && errno != EINTR) {
                zqSetError(error, writeError(errno));
                return false;
            }
            done += std::max<ssize_t>(written, 0);
        }
    }
}

ZQError ZQArchiveReader::failure(archive *reader) const
{
    const char *text = archive_error_string(reader);
    const QString said = text ? QString::fromUtf8(text) : zqLocalized("it ends too early");
    const bool isKnown = archive_format(reader) != 0; // the next question crashes when the format was not recognised
    if ((isKnown && archive_read_has_encrypted_entries(reader) == 1) || said.contains(QStringLiteral("ncrypt"))) {
        return archiveError(Encrypted, zqFormat(zqLocalized("“%@” is protected by a password. Unpack it yourself and "
                                                            "import what it holds."),
                                                {m_name}));
    }
    return damage(said);
}

ZQError ZQArchiveReader::damage(const QString &what) const
{
    return archiveError(
        Unreadable, zqFormat(zqLocalized("“%@” cannot be unpacked, since it is damaged or no archive (%@). Get it once "
                                         "more, or unpack it with another program and import what it holds."),
                             {m_name, what}));
}

ZQError ZQArchiveReader::writeError(int code)
{
    if (code == ENOSPC || code == EDQUOT) {
        return archiveError(DiskFull, zqLocalized("The disk with the temporary files is full. Free some space, or name "
                                                  "another folder for them in TMPDIR, and import it again."));
    }
    return archiveError(
        NotWritable, zqFormat(zqLocalized("It cannot be unpacked into the folder for temporary files: %@. Check that "
                                          "folder and import it again."),
                              {QString::fromLocal8Bit(std::strerror(code))}));
}
