#include "Kit/Imaging/Worker/ZQArchiveFile.h"

#include <QFile>

#include <archive.h>
#include <archive_entry.h>

#include <locale.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t inputBlock = 128 * 1024;

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

bool isSuccess(int status)
{
    return status == ARCHIVE_OK || status == ARCHIVE_WARN; // a warning is about an attribute
}

ZQArchiveEntry::Kind kindOf(archive_entry *entry)
{
    const auto type = archive_entry_filetype(entry);
    if (type == AE_IFLNK || archive_entry_hardlink(entry)) {
        return ZQArchiveEntry::Kind::Link;
    }
    if (type == AE_IFDIR) {
        return ZQArchiveEntry::Kind::Folder;
    }
    return type == AE_IFREG || type == 0 ? ZQArchiveEntry::Kind::File : ZQArchiveEntry::Kind::Other;
}

} // namespace

ZQArchiveFile::ZQArchiveFile(ZQFileDescriptor file)
    : m_file(std::move(file)), m_reader(archive_read_new(), archive_read_free)
{
    QFile device;
    if (!device.open(m_file.get(), QIODevice::ReadOnly, QFileDevice::DontCloseHandle)) {
        return;
    }
    m_headers = ZQArchiveHeaders::headersOfFile(device);
    device.seek(0);
    // The format is told by the beginning: left to choose, the library takes a rar archive that ends with a stored zip
    // archive for that one.
    if (device.read(4) == "Rar!") {
        archive_read_support_format_rar(m_reader.get());
        archive_read_support_format_rar5(m_reader.get());
    } else {
        archive_read_support_format_zip(m_reader.get());
    }
    ::lseek(m_file.get(), 0, SEEK_SET);
    archive_read_open_fd(m_reader.get(), m_file.get(), inputBlock); // the first header tells
}

ZQArchiveFile::~ZQArchiveFile() = default;

std::optional<ZQArchiveEntry> ZQArchiveFile::nextEntry(ZQArchiveEnd *end)
{
    if (m_headers.isCutOff) {
        *end = {ZQArchiveEnd::Kind::CutOff, {}};
        return std::nullopt;
    }
    const UTF8Locale locale;
    archive_entry *entry = nullptr;
    const int status = archive_read_next_header(m_reader.get(), &entry);
    if (!isSuccess(status)) {
        *end = status == ARCHIVE_EOF ? ZQArchiveEnd{} : failure();
        return std::nullopt;
    }
    ++m_index;
    m_checksum = 0;
    ZQArchiveEntry out;
    out.kind = kindOf(entry);
    out.isEncrypted = archive_entry_is_encrypted(entry) != 0;
    out.isListed = (archive_format(m_reader.get()) & ARCHIVE_FORMAT_BASE_MASK) == ARCHIVE_FORMAT_ZIP;
    const char *const name = archive_entry_pathname(entry);
    out.name = name ? QByteArray(name) : QByteArray();
    if (archive_entry_size_is_set(entry)) {
        out.size = qMax<qint64>(archive_entry_size(entry), 0);
    }
    if (archive_entry_mtime_is_set(entry)) {
        constexpr long mostNanoseconds = 999'999'999;
        out.time = archive_entry_mtime(entry);
        out.timeNanoseconds = int(qBound(0L, archive_entry_mtime_nsec(entry), mostNanoseconds));
    }
    return out;
}

qint64 ZQArchiveFile::read(char *data, qint64 size, bool *isLast, ZQArchiveEnd *end)
{
    const std::optional<quint32> expected = m_headers.checksums.value(m_index);
    qint64 done = 0;
    while (done < size) {
        const la_ssize_t count = archive_read_data(m_reader.get(), data + done, std::size_t(size - done));
        if (count < 0) {
            *end = failure();
            return -1;
        }
        if (expected) {
            m_checksum = zqCRC32(m_checksum, data + done, count);
        }
        if (count == 0 && expected.value_or(m_checksum) != m_checksum) {
            *end = {ZQArchiveEnd::Kind::Changed, {}};
            return -1;
        }
        if (count == 0) {
            *isLast = true;
            break;
        }
        done += count;
    }
    return done;
}

ZQArchiveEnd ZQArchiveFile::failure() const
{
    const char *const text = archive_error_string(m_reader.get());
    const QString said = text ? QString::fromUtf8(text) : QString();
    // The next question crashes when the format was not recognised.
    const bool isKnown = archive_format(m_reader.get()) != 0;
    const bool isEncrypted =
        (isKnown && archive_read_has_encrypted_entries(m_reader.get()) == 1) || said.contains(QStringLiteral("ncrypt"));
    return {isEncrypted ? ZQArchiveEnd::Kind::Encrypted : ZQArchiveEnd::Kind::Damaged, said};
}
