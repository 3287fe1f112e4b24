#include "Classes/Export/ExportNames.h"

#include "Kit/Files/ZQFreeName.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageExport.h"

#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <utility>

namespace {

constexpr std::array placeholders{"{title}", "{index}", "{width}", "{height}", "{date}"};

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

// The first of them, or an empty text: what stands in braces, with them.
QString unknownPlaceholder(const QString &pattern)
{
    static const QRegularExpression braces(QStringLiteral("\\{[^{}]*\\}"));
    for (const QRegularExpressionMatch &match : braces.globalMatch(pattern)) {
        const QString text = match.captured();
        if (std::none_of(placeholders.begin(), placeholders.end(),
                         [&text](const char *each) { return text == QLatin1StringView(each); })) {
            return text;
        }
    }
    return {};
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
    return zqSafeName(title, zqLocalized("Untitled"));
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
    const std::array<QString, placeholders.size()> values{
        source.title, QString::number(index), QString::number(source.pixelSize.width()),
        QString::number(source.pixelSize.height()), source.date.toLocalTime().toString(QStringLiteral("yyyy-MM-dd"))};
    QString title;
    for (qsizetype at = 0; at < pattern.size();) { // in one go: a title may hold braces of its own
        const auto found = std::find_if(placeholders.begin(), placeholders.end(), [&](const char *each) {
            return QStringView(pattern).mid(at).startsWith(QLatin1StringView(each));
        });
        const auto which = std::size_t(found - placeholders.begin());
        title += found == placeholders.end() ? QString(pattern.at(at)) : values[which];
        at += found == placeholders.end() ? 1 : qsizetype(std::strlen(*found));
    }
    return title;
}

QString ExportNames::problemOfPattern(const QString &pattern)
{
    if (pattern.contains(u'/')) {
        return zqLocalized("A name pattern makes names, not folders. Write it without “/”.");
    }
    if (!std::all_of(pattern.begin(), pattern.end(), &zqIsSafeInName)) {
        return zqLocalized("A name pattern is one line. Write it without line breaks.");
    }
    const QString unknown = unknownPlaceholder(pattern);
    return unknown.isEmpty()
               ? QString()
               : zqFormat(zqLocalized("A name pattern knows no “%@”. There are {title}, {index}, {width}, {height} and "
                                      "{date}."),
                          {unknown});
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
