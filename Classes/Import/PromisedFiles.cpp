#include "Classes/Import/PromisedFiles.h"

#include "Classes/Import/DirectoryContent.h"
#include "Classes/Import/PasteboardFiles.h"
#include "Classes/Import/XDirectSaveProtocol.h"
#include "Kit/Files/ZQOpenForWriting.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDateTime>
#include <QDirIterator>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <functional>
#include <utility>

namespace {

constexpr int looksForFiles = 20;
constexpr int looksForAnswer = 100;  // twice what the toolkit waits for other data of a drag, for which it stands still
constexpr int mostLooks = 6000;      // a file that grows for ten minutes grows without end
constexpr int mostEntries = 1000;    // that are looked at each time
constexpr int longestBaseName = 200; // bytes: room for what programs add to a name while they write
constexpr int longestExtension = 32;

bool isUnprintable(QChar character)
{
    return character.category() == QChar::Other_Control || character.category() == QChar::Separator_Line ||
           character.category() == QChar::Separator_Paragraph;
}

QString baseNameFrom(QString text)
{
    while (!text.isEmpty() && (text.front() == u'.' || text.front().isSpace())) { // no hidden files
        text.remove(0, 1);
    }
    while (text.toUtf8().size() > longestBaseName) {
        text.chop(text.size() > 1 && text.back().isLowSurrogate() ? 2 : 1);
    }
    text = text.trimmed();
    return text.isEmpty() ? zqLocalized("Dropped file") : text;
}

bool isSaved(const QByteArray &answer)
{
    return answer.trimmed().left(1).toUpper() == "S";
}

// Calls `each` until it answers true; whether it did.
bool anyEntry(const QString &folder, const std::function<bool(const QFileInfo &)> &each)
{
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories); // links are not followed
    for (int count = 0; count < mostEntries && entries.hasNext(); ++count) {
        entries.next();
        if (each(entries.fileInfo())) {
            return true;
        }
    }
    return false;
}

} // namespace

QString PromisedFiles::formatIn(const QMimeData &data)
{
    const QStringList formats = data.formats();
    const auto format = std::find_if(formats.begin(), formats.end(), [](const QString &each) {
        return each.compare(XDirectSaveProtocol::format, Qt::CaseInsensitive) == 0;
    });
    return format == formats.end() ? QString() : *format;
}

QString PromisedFiles::nameFrom(const QByteArray &proposed)
{
    const QByteArray bytes = proposed.split('\0').first();
    QString text = bytes.isValidUtf8() ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
    text = text.mid(text.lastIndexOf(u'/') + 1);
    text.removeIf(isUnprintable);
    const qsizetype dot = text.lastIndexOf(u'.');
    const QString extension = dot < 0 ? QString() : text.mid(dot + 1).trimmed();
    if (dot < 0 || extension.toUtf8().size() > longestExtension) {
        return baseNameFrom(text);
    }
    return baseNameFrom(text.left(dot)) + (extension.isEmpty() ? QString() : u'.' + extension);
}

QVariantMap PromisedFiles::metadataFrom(const QMimeData &data)
{
    const QList<QUrl> urls = data.urls();
    const auto first =
        std::find_if(urls.begin(), urls.end(), [](const QUrl &url) { return url.scheme().startsWith(u"http"); });
    const QUrl address = first == urls.end() ? PasteboardFiles::linkOf(data) : *first;
    return address.isEmpty() ? QVariantMap() : QVariantMap{{QStringLiteral("webPageURL"), address.toString()}};
}

PromisedFiles::PromisedFiles(std::unique_ptr<PromiseSource> source, const QString &folder)
    : m_folder(folder), m_source(std::move(source)), m_name(nameFrom(m_source->proposedName()))
{
    m_source->save(QUrl::fromLocalFile(folder + u'/' + m_name).toEncoded());
}

PromisedFiles::Content PromisedFiles::content() const
{
    Content found;
    anyEntry(m_folder.path(), [&found](const QFileInfo &entry) {
        ++found.entries;
        found.bytes += entry.isSymLink() ? 0 : entry.size();
        found.newest = std::max(found.newest, entry.isSymLink() ? 0 : entry.lastModified().toMSecsSinceEpoch());
        return false;
    });
    return found;
}

bool PromisedFiles::isBeingWritten() const
{
    return anyEntry(m_folder.path(), [](const QFileInfo &entry) {
        return entry.isFile() && !entry.isSymLink() && zqIsOpenForWriting(entry.filePath());
    });
}

bool PromisedFiles::isNamedFileThere() const
{
    const QFileInfo file(m_folder.path() + u'/' + m_name);
    return file.isFile() && !file.isSymLink() && file.size() > 0;
}

// Where promises are taken, folders are not. A link would have a file imported that was not dragged.
QStringList PromisedFiles::paths() const
{
    if (QFileInfo(m_folder.path()).isSymLink()) {
        return {}; // the program put a link in its place
    }
    QStringList found;
    QStringList folders{m_folder.path()};
    while (!folders.isEmpty()) {
        const DirectoryContent content = DirectoryContent::ofDirectory(folders.takeFirst());
        found += content.files + content.archives + content.refused; // with a reason, by the import
        folders = content.subfolders + folders;
    }
    found.removeIf([](const QString &path) {
        const QFileInfo info(path);
        return !info.isFile() && !info.isDir(); // a pipe, of which there is no end
    });
    return found;
}

PromisedFiles::State PromisedFiles::look()
{
    if (const auto answer = m_isSaved ? std::nullopt : m_source->answer()) {
        if (!isSaved(*answer)) {
            return State::Refused;
        }
        m_isSaved = true;
        m_looksWithoutChange = 0;
    }
    const Content now = content();
    const bool hasChanged = now != m_content || isBeingWritten();
    m_content = now;
    m_looksWithoutChange = hasChanged ? 0 : m_looksWithoutChange + 1;
    if (++m_looks >= mostLooks) {
        return State::Missing;
    }
    if (m_looksWithoutChange >= (m_isSaved ? looksForFiles : looksForAnswer)) {
        return paths().isEmpty() ? State::Missing : State::Here;
    }
    return m_isSaved && m_looksWithoutChange > 0 && isNamedFileThere() ? State::Here : State::Awaited;
}

QStringList PromisedFiles::take()
{
    m_folder.keep();
    return paths();
}
