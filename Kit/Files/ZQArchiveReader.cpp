#include "Kit/Files/ZQArchiveReader.h"

#include "Kit/Files/ZQLegacyText.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qsizetype namesForEncoding = 64 * 1024; // bytes; more say nothing new

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

} // namespace

ZQArchiveReader::ZQArchiveReader(ZQArchiveSource &source, const ZQArchiveLimits &limits,
                                 std::function<bool()> isCancelled)
    : m_source(source), m_limits(limits), m_isCancelled(std::move(isCancelled))
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
    ZQArchiveEnd end;
    if (!m_source.open(path, &end)) {
        zqSetError(error, failure(end));
        return false;
    }
    QList<QByteArray> names;
    qsizetype bytesOfNames = 0;
    qint64 size = 0;
    qint64 count = 0;
    while (const std::optional<ZQArchiveEntry> entry = m_source.nextEntry(&end)) {
        if (!mayGoOn(error) || !isOpen(*entry, error)) {
            return false;
        }
        if (!entry->isListed || m_entryCount + ++count > m_limits.entryCount) {
            break; // told when it is unpacked
        }
        if (!entry->name.isNull() && bytesOfNames < namesForEncoding) {
            names.append(entry->name);
            bytesOfNames += entry->name.size();
        }
        const qint64 room = m_limits.totalSize - m_totalSize - size;
        if (entry->size.value_or(0) > room) {
            zqSetError(error, limitError(m_name, zqFormat(zqLocalized("it holds more than %d MB"),
                                                          {m_limits.totalSize >> 20})));
            return false;
        }
        size += entry->size.value_or(0);
    }
    if (end.kind != ZQArchiveEnd::Kind::Whole) {
        zqSetError(error, failure(end));
        return false;
    }
    m_encoding = ZQLegacyText::likelyEncoding(names);
    return true;
}

bool ZQArchiveReader::extractEntries(const QString &path, ZQExtractionFolder &folder, ZQError *error)
{
    ZQArchiveEnd end;
    if (!m_source.open(path, &end)) {
        zqSetError(error, failure(end));
        return false;
    }
    while (const std::optional<ZQArchiveEntry> entry = m_source.nextEntry(&end)) {
        if (!mayGoOn(error) || !countEntry(error) || !isOpen(*entry, error) || !extractEntry(*entry, folder, error)) {
            return false;
        }
    }
    if (end.kind != ZQArchiveEnd::Kind::Whole) {
        zqSetError(error, failure(end));
        return false;
    }
    return true;
}

bool ZQArchiveReader::mayGoOn(ZQError *error) const
{
    if (m_isCancelled && m_isCancelled()) {
        zqSetError(error, cancellation());
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

bool ZQArchiveReader::isOpen(const ZQArchiveEntry &entry, ZQError *error) const
{
    if (!entry.isEncrypted) {
        return true;
    }
    zqSetError(error, archiveError(Encrypted, zqFormat(zqLocalized("“%@” is protected by a password (“%@” in it is "
                                                                   "encrypted). Unpack it yourself and import what it "
                                                                   "holds."),
                                                       {m_name, nameOfEntry(entry)})));
    return false;
}

QString ZQArchiveReader::nameOfEntry(const ZQArchiveEntry &entry) const
{
    if (entry.name.isNull()) {
        return {};
    }
    // One with its encoding said comes as UTF-8, whatever the others are in.
    const QString text = QString::fromUtf8(entry.name);
    return text.contains(QChar::ReplacementCharacter) ? ZQLegacyText::decoded(entry.name, m_encoding) : text;
}

void ZQArchiveReader::skip(const QString &name, const QString &reason)
{
    if (m_skippedCount++ == 0) {
        m_firstSkipped = zqFormat(zqLocalized("“%@”: %@"), {name, reason});
    }
}

bool ZQArchiveReader::extractEntry(const ZQArchiveEntry &entry, ZQExtractionFolder &folder, ZQError *error)
{
    using Kind = ZQArchiveEntry::Kind;
    using Verdict = ZQExtractionFolder::Verdict;
    const QString name = nameOfEntry(entry);
    QStringList components;
    const Verdict verdict = ZQExtractionFolder::components(name, &components);
    const bool isFolder = entry.kind == Kind::Folder || name.endsWith(u'/') || name.endsWith(u'\\');
    const bool namesNothing = verdict == Verdict::Fine && components.isEmpty() && !name.isNull();
    if (verdict == Verdict::Noise || namesNothing) {
        return true;
    }
    if (name.isNull()) {
        skip(QStringLiteral("?"), zqLocalized("its name cannot be read"));
    } else if (verdict == Verdict::Outside) {
        skip(name, zqLocalized("its name leads out of the archive"));
    } else if (entry.kind == Kind::Link) {
        skip(name, zqLocalized("it is a link"));
    } else if (!isFolder && entry.kind != Kind::File) {
        skip(name, zqLocalized("it is no regular file"));
    } else if (verdict != Verdict::Fine || !folder.canHold(components)) {
        skip(name, zqLocalized("it lies too deep in folders"));
    } else if (!isFolder) {
        return extractFile(entry, name, components, folder, error);
    } else if (!folder.makeFolder(components)) {
        skip(name, zqLocalized("a file of this name is in its way"));
    }
    return true;
}

bool ZQArchiveReader::extractFile(const ZQArchiveEntry &entry, const QString &name, const QStringList &components,
                                  ZQExtractionFolder &folder, ZQError *error)
{
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
    bool isWhole = copyData(descriptor, error);
    if (isWhole && entry.time) {
        const timespec time{*entry.time, entry.timeNanoseconds};
        const timespec times[] = {time, time};
        ::futimens(descriptor, times); // one that the file system cannot keep is left as it is
    }
    if (::close(descriptor) != 0 && isWhole) {
        zqSetError(error, writeError(errno));
        isWhole = false;
    }
    return isWhole;
}

bool ZQArchiveReader::copyData(int descriptor, ZQError *error)
{
    for (;;) {
        ZQArchiveEnd end;
        const std::optional<ZQArchiveSource::Block> block = m_source.nextBlock(&end);
        if (!block) {
            zqSetError(error, failure(end));
            return false;
        }
        m_totalSize += block->bytes.size();
        if (!mayGoOn(error) || !checkTotalSize(error)) {
            return false;
        }
        if (!zqWriteAll(descriptor, block->bytes.data(), block->bytes.size())) {
            zqSetError(error, writeError(errno));
            return false;
        }
        if (block->isLast) {
            return true;
        }
    }
}

bool ZQArchiveReader::checkTotalSize(ZQError *error) const
{
    const bool isTooDense =
        m_totalSize > m_limits.ratioFreeSize && m_totalSize / std::max<qint64>(m_outermostSize, 1) > m_limits.ratio;
    if (m_totalSize <= m_limits.totalSize && !isTooDense) {
        return true;
    }
    const QString what = isTooDense
                             ? zqFormat(zqLocalized("its content is more than %d times as large"), {m_limits.ratio})
                             : zqFormat(zqLocalized("it holds more than %d MB"), {m_limits.totalSize >> 20});
    zqSetError(error, limitError(m_name, what));
    return false;
}

ZQError ZQArchiveReader::failure(const ZQArchiveEnd &end) const
{
    using Kind = ZQArchiveEnd::Kind;
    switch (end.kind) {
    case Kind::Encrypted:
        return archiveError(Encrypted, zqFormat(zqLocalized("“%@” is protected by a password. Unpack it yourself and "
                                                            "import what it holds."),
                                                {m_name}));
    case Kind::CutOff:
        return damage(zqLocalized("its end is missing"));
    case Kind::Changed:
        return damage(zqLocalized("its content has changed"));
    case Kind::Stopped:
        return damage(zqLocalized("what unpacks it stopped"));
    case Kind::TookTooLong:
        return damage(zqLocalized("it took too long"));
    case Kind::TooMuchMemory:
        return damage(zqLocalized("it needs too much memory"));
    case Kind::Cancelled:
        return cancellation();
    case Kind::Unavailable:
        return archiveError(Unavailable, end.text);
    case Kind::Whole:
    case Kind::Damaged:
        break;
    }
    return damage(end.text.isEmpty() ? zqLocalized("it ends too early") : end.text);
}

ZQError ZQArchiveReader::cancellation()
{
    return archiveError(Cancelled, zqLocalized("The import was cancelled. Import it again if you want it."));
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
