#include "Classes/Browsing/Content/LibraryStatistics.h"

#include "Classes/Browsing/Index/KindNames.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQDigests.h"
#include "Kit/Persistence/ZQRowStream.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <optional>

namespace {

constexpr qsizetype shownRows = 20; // of each list, to a person
constexpr std::size_t largestFiles = 20;

QString text(std::string_view value)
{
    return QString::fromUtf8(value.data(), qsizetype(value.size()));
}

void sortByItems(QList<LibraryNumbers::Named> &list)
{
    std::sort(list.begin(), list.end(), [](const auto &one, const auto &other) {
        return one.items != other.items ? one.items > other.items : one.name < other.name;
    });
}

std::optional<qint64> sizeOf(const QString &path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        return std::nullopt;
    }
    if (!S_ISDIR(status.st_mode)) {
        return status.st_size;
    }
    // A package's asset is its inner file.
    return ::stat(QFile::encodeName(path + QStringLiteral("/Data")).constData(), &status) == 0 ? status.st_size : 0;
}

} // namespace

LibraryStatistics::LibraryStatistics(ZQManagedObjectContext &context, const QString &libraryDirectory)
    : m_context(context), m_libraryDirectory(libraryDirectory)
{
}

std::optional<LibraryNumbers> LibraryStatistics::count(bool withSizes, ZQError *error, const std::stop_token &stop)
{
    m_numbers = {};
    m_isActive.clear();
    m_kinds.clear();
    m_itemsOfFolder.clear();
    if (!countItems(error) || !countUntagged(error) || !countFolders(error) || (withSizes && !addSizes(error, stop))) {
        return std::nullopt;
    }
    m_numbers.kinds = m_kinds.values();
    sortByItems(m_numbers.kinds);
    return m_numbers;
}

bool LibraryStatistics::countItems(ZQError *error)
{
    ZQRowStream stream(m_context);
    const auto highest = stream.highestKey(ZQLibraryBaseItem::entityName(), error);
    if (!highest) {
        return false;
    }
    m_isActive.assign(std::size_t(*highest) + 1, false);
    std::vector<ZQDigests::Digest> digests;
    const auto take = [&](const ZQRowStream::Row &row) {
        if (row.number(0) == 0) {
            ++m_numbers.deleted;
            return;
        }
        m_isActive[std::size_t(row.key)] = true;
        ++m_numbers.items;
        m_numbers.managed += row.number(1) != 0 ? 1 : 0;
        m_numbers.unrated += row.number(2) == 0 ? 1 : 0;
        if (const auto digest = ZQDigests::digestOf(row.text(3))) {
            digests.push_back(*digest);
        }
        if (!row.isNull(4)) {
            ++m_numbers.years[QDateTime::fromMSecsSinceEpoch(row.number(4)).date().year()];
        }
        const QString extension = text(row.text(5)).toLower();
        LibraryNumbers::Named &kind = m_kinds[extension];
        if (kind.items++ == 0) {
            kind.name = KindNames::nameOfExtension(extension);
        }
        if (!row.isNull(6)) {
            ++m_itemsOfFolder[row.number(6)];
        }
    };
    const QStringList properties{QStringLiteral("active"),        QStringLiteral("managed"),
                                 QStringLiteral("rating"),        QStringLiteral("SHA1"),
                                 QStringLiteral("import_date"),   QStringLiteral("originalExtension"),
                                 QStringLiteral("watchingFolder")};
    if (!stream.rows(ZQLibraryBaseItem::entityName(), properties, {}, take, error)) {
        return false;
    }
    countDuplicates(digests);
    return true;
}

void LibraryStatistics::countDuplicates(std::vector<std::array<quint8, 20>> &digests)
{
    std::sort(digests.begin(), digests.end());
    for (std::size_t i = 1; i < digests.size(); ++i) {
        const bool isAnother = digests[i] == digests[i - 1];
        m_numbers.duplicates += isAnother ? 1 : 0;
        m_numbers.duplicateGroups += isAnother && (i < 2 || digests[i - 2] != digests[i]) ? 1 : 0;
    }
}

bool LibraryStatistics::countUntagged(ZQError *error)
{
    ZQRowStream stream(m_context);
    QSet<qint64> tags; // of a person
    const auto takeTag = [&tags](const ZQRowStream::Row &row) {
        if (row.number(0) != 0 && row.number(1) != 0 && row.number(2) == 0 && row.number(3) == 0) {
            tags.insert(row.key);
        }
    };
    const QStringList properties{QStringLiteral("active"), QStringLiteral("is_Tag"), QStringLiteral("is_Label"),
                                 QStringLiteral("kind")};
    std::vector<bool> isTagged(m_isActive.size(), false);
    qint64 tagged = 0;
    const auto takeLink = [&](qint64 owner, qint64 other) {
        const auto at = std::size_t(owner);
        if (at < m_isActive.size() && m_isActive[at] && !isTagged[at] && tags.contains(other)) {
            isTagged[at] = true;
            ++tagged;
        }
    };
    if (!stream.rows(ZQSidebarTag::entityName(), properties, {}, takeTag, error) ||
        !stream.links(ZQLibraryBaseItem::entityName(), QStringLiteral("tags"), {}, takeLink, error)) {
        return false;
    }
    m_numbers.untagged = m_numbers.items - tagged;
    return true;
}

bool LibraryStatistics::countFolders(ZQError *error)
{
    ZQRowStream stream(m_context);
    const auto takeMembership = [this](const ZQRowStream::Row &row) {
        const auto item = std::size_t(row.number(0));
        if (!row.isNull(0) && !row.isNull(1) && item < m_isActive.size() && m_isActive[item]) {
            ++m_itemsOfFolder[row.number(1)];
        }
    };
    const auto takeEntry = [this](const ZQRowStream::Row &row) {
        const qint64 items = m_itemsOfFolder.value(row.key);
        if (items > 0 && row.number(1) != 0) {
            m_numbers.folders.append({text(row.text(0)), items});
        }
    };
    if (!stream.rows(ZQProjectItem::entityName(), {QStringLiteral("item"), QStringLiteral("project")}, {},
                     takeMembership, error) ||
        !stream.rows(ZQSidebarBaseItem::entityName(), {QStringLiteral("title"), QStringLiteral("active")}, {},
                     takeEntry, error)) {
        return false;
    }
    sortByItems(m_numbers.folders);
    return true;
}

bool LibraryStatistics::addSizes(ZQError *error, const std::stop_token &stop)
{
    const qint64 end = qint64(m_isActive.size());
    constexpr qint64 atATime = 2048; // the disk is slow, and the store must not wait for it
    const QStringList properties{QStringLiteral("active"),    QStringLiteral("managed"),
                                 QStringLiteral("bundleID"),  QStringLiteral("title"),
                                 QStringLiteral("thumbName"), QStringLiteral("originalExtension")};
    struct Files
    {
        QString extension;
        QString asset; // empty: elsewhere
        QString thumbnail;
        QString title;
    };
    const auto bySize = [](const LibraryNumbers::Named &one, const LibraryNumbers::Named &other) {
        return one.bytes > other.bytes;
    };
    std::vector<LibraryNumbers::Named> largest; // a heap with the smallest on top
    for (qint64 first = 0; first < end; first += atATime) {
        QList<Files> files;
        const auto take = [&](const ZQRowStream::Row &row) {
            const QString folder =
                m_libraryDirectory + u'/' + text(row.text(2)) + ZQLibraryBaseItem::itemDirectoryExtension + u'/';
            const QString extension = text(row.text(5));
            const QString title = text(row.text(3));
            if (row.number(0) != 0) {
                files.append({extension.toLower(), row.number(1) != 0 ? folder + title + u'.' + extension : QString(),
                              row.isNull(4) ? QString() : folder + text(row.text(4)), title});
            }
        };
        if (!ZQRowStream(m_context).rows(ZQLibraryBaseItem::entityName(), properties, {first, first + atATime, {}},
                                         take, error)) {
            return false;
        }
        for (const Files &item : std::as_const(files)) {
            if (stop.stop_requested()) {
                zqSetError(error, ZQError::posix(ECANCELED, m_libraryDirectory));
                return false;
            }
            m_numbers.thumbnailBytes += item.thumbnail.isEmpty() ? 0 : sizeOf(item.thumbnail).value_or(0);
            const auto size = item.asset.isEmpty() ? std::optional<qint64>(0) : sizeOf(item.asset);
            m_numbers.missing += size ? 0 : 1;
            m_numbers.bytes += size.value_or(0);
            m_kinds[item.extension].bytes += size.value_or(0);
            if (size.value_or(0) > 0) {
                largest.push_back({item.title, 1, *size});
                std::push_heap(largest.begin(), largest.end(), bySize);
            }
            if (largest.size() > largestFiles) {
                std::pop_heap(largest.begin(), largest.end(), bySize);
                largest.pop_back();
            }
        }
    }
    std::sort(largest.begin(), largest.end(), bySize);
    m_numbers.largest = {largest.begin(), largest.end()};
    m_numbers.hasSizes = true;
    return true;
}

QStringList LibraryNumbers::lines() const
{
    const QLocale locale;
    QStringList result;
    const auto add = [&](const QString &format, qint64 number) {
        result.append(zqFormat(format, {locale.toString(number)}));
    };
    add(zqLocalized("Items: %@"), items);
    add(zqLocalized("In live folders: %@"), items - managed);
    add(zqLocalized("Deleted and not yet removed: %@"), deleted);
    add(zqLocalized("Without a tag: %@"), untagged);
    add(zqLocalized("Without a rating: %@"), unrated);
    add(zqLocalized("Duplicates: %@"), duplicates);
    if (hasSizes) {
        result.append(zqFormat(zqLocalized("Size of the originals: %@"), {locale.formattedDataSize(bytes)}));
        result.append(zqFormat(zqLocalized("Size of the thumbnails: %@"), {locale.formattedDataSize(thumbnailBytes)}));
        add(zqLocalized("Missing files: %@"), missing);
    }
    const auto addList = [&](const QString &heading, const QList<Named> &list, bool isBySize) {
        if (!list.isEmpty()) {
            result.append(QString());
            result.append(heading);
        }
        for (const Named &named : list.mid(0, shownRows)) {
            const QString size = hasSizes && named.bytes > 0 ? locale.formattedDataSize(named.bytes) : QString();
            const QString number = isBySize ? size : locale.toString(named.items);
            result.append(isBySize || size.isEmpty()
                              ? zqFormat(zqLocalized("%@: %@"), {named.name, number})
                              : zqFormat(zqLocalized("%@: %@ (%@)"), {named.name, number, size}));
        }
    };
    addList(zqLocalized("Kinds"), kinds, false);
    addList(zqLocalized("Folders"), folders, false);
    QList<Named> byYear;
    for (const auto &[year, number] : years) {
        byYear.prepend({QString::number(year), number});
    }
    addList(zqLocalized("Imported in"), byYear, false);
    addList(zqLocalized("Largest files"), largest, true);
    return result;
}
