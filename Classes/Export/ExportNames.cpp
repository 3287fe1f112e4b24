#include "Classes/Export/ExportNames.h"

#include "Kit/Files/ZQFreeName.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageExport.h"

#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <functional>
#include <utility>

namespace {

constexpr QChar separatorStandIn(u'-');

bool isTaken(const QString &path)
{
    const QFileInfo file(path);
    return file.isSymLink() || file.exists();
}

// From `number` on, 0 being the path itself, which is left behind at the one that is free.
QString firstFree(const QString &path, const std::function<bool(const QString &)> &isTaken, int &number)
{
    const qsizetype slash = path.lastIndexOf(u'/') + 1;
    const QString folder = path.left(slash);
    const QString name = path.mid(slash);
    for (;; ++number) {
        QString candidate = folder + zqNumberedName(name, number);
        if (!isTaken(candidate)) {
            return candidate;
        }
    }
}

bool isUnsafe(QChar character)
{
    return character == u'/' || character.category() == QChar::Other_Control ||
           character.category() == QChar::Separator_Line || character.category() == QChar::Separator_Paragraph;
}

// Names of one batch. Those that were taken stay taken, so equal names are not counted from 1 each time.
class Batch
{
public:
    QString take(const QString &path)
    {
        auto onDisk = m_onDisk.constFind(path);
        if (onDisk == m_onDisk.constEnd()) {
            onDisk = m_onDisk.insert(path, ExportNames::safeNameForFile(path));
        }
        const QString name = ExportNames::safeNameForFile(*onDisk, m_chosen, m_next[*onDisk]);
        m_chosen.insert(name);
        return name;
    }

private:
    QHash<QString, QString> m_onDisk;
    QHash<QString, int> m_next;
    QSet<QString> m_chosen;
};

} // namespace

QString ExportNames::extensionForFormat(std::optional<int> fileFormat, const QString &ownExtension)
{
    return fileFormat && zqFileTypeNamesItself(*fileFormat) ? zqExtensionOfFileType(*fileFormat) : ownExtension;
}

QString ExportNames::safeTitle(const QString &title)
{
    QString safe = title;
    std::replace_if(safe.begin(), safe.end(), isUnsafe, separatorStandIn);
    safe = safe.trimmed();
    if (safe.startsWith(u'.')) {
        safe[0] = u'_';
    }
    return safe.isEmpty() ? zqLocalized("Untitled") : safe;
}

QString ExportNames::nameForTitle(const QString &title, const QString &extension)
{
    const QString safe = safeTitle(title);
    return zqNumberedName(extension.isEmpty() ? safe : safe + u'.' + safeTitle(extension), 0);
}

QString ExportNames::titleForPattern(const QString &pattern, const Source &source, qsizetype index)
{
    if (pattern.isEmpty()) {
        return source.title;
    }
    const QList<std::pair<QString, QString>> values = {
        {QStringLiteral("{title}"), source.title},
        {QStringLiteral("{index}"), QString::number(index)},
        {QStringLiteral("{width}"), QString::number(source.pixelSize.width())},
        {QStringLiteral("{height}"), QString::number(source.pixelSize.height())},
        {QStringLiteral("{date}"), source.date.toLocalTime().toString(QStringLiteral("yyyy-MM-dd"))}};
    QString title;
    for (qsizetype at = 0; at < pattern.size();) { // in one go: a title may hold braces of its own
        const auto value = std::find_if(values.begin(), values.end(), [&](const auto &each) {
            return QStringView(pattern).mid(at).startsWith(each.first);
        });
        title += value == values.end() ? QString(pattern.at(at)) : value->second;
        at += value == values.end() ? 1 : value->first.size();
    }
    return title;
}

QString ExportNames::problemOfPattern(const QString &pattern)
{
    if (pattern.contains(u'/')) {
        return zqLocalized("A name pattern makes names, not folders. Write it without “/”.");
    }
    return std::any_of(pattern.begin(), pattern.end(), isUnsafe)
               ? zqLocalized("A name pattern is one line. Write it without line breaks.")
               : QString();
}

QString ExportNames::safeNameForFile(const QString &path)
{
    int number = 0;
    return firstFree(path, isTaken, number);
}

QString ExportNames::safeNameForFile(const QString &path, const QSet<QString> &withinFiles, int &number)
{
    return firstFree(
        path, [&withinFiles](const QString &candidate) { return withinFiles.contains(candidate); }, number);
}

ExportNames::Names ExportNames::filenames(const QList<Source> &sources, const QString &destinationURL,
                                          std::optional<int> fileFormat, const QString &pattern)
{
    Names names;
    Batch batch;
    for (qsizetype i = 0; i < sources.size(); ++i) {
        const Source &source = sources.at(i);
        if (!source.hasFile) {
            ++names.missing;
            continue;
        }
        names.paths.append(batch.take(destinationURL + u'/' + filename(source, fileFormat, pattern, i + 1)));
    }
    return names;
}

QString ExportNames::filename(const Source &source, std::optional<int> fileFormat, const QString &pattern,
                              qsizetype index)
{
    return nameForTitle(titleForPattern(pattern, source, index), extensionForFormat(fileFormat, source.extension));
}

QString ExportNames::archiveName(const QString &destinationURL)
{
    return safeNameForFile(destinationURL + u'/' + archive);
}
