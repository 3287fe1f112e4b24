#include "Classes/Browsing/Index/IndexNames.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Persistence/ZQPredicate.h"

#include <algorithm>
#include <map>

namespace {

QString textOf(const ZQScalar &value)
{
    const QString *text = std::get_if<QString>(&value);
    return text ? *text : QString();
}

struct Named
{
    QString shown; // as it is written first
    qint64 count = 0;
};

std::vector<IndexCount> countsOf(const std::map<QString, Named> &named)
{
    std::vector<IndexCount> counts;
    for (const auto &[name, each] : named) {
        if (each.count > 0 && !each.shown.isEmpty()) {
            counts.push_back({each.shown, each.count});
        }
    }
    return counts;
}

} // namespace

std::vector<IndexCount> IndexNames::extensions(const ZQRowSet &rows) const
{
    std::vector<qint64> found(m_columns.items.extensionTexts.size(), 0);
    rows.forEach([&](size_t row) { ++found[m_columns.items.extensions[row]]; });
    std::map<QString, Named> named;
    for (size_t number = 0; number < found.size(); ++number) {
        const QString text = textOf(m_columns.items.extensionTexts[number]);
        Named &each = named[zqFold(text)];
        each.shown = each.shown.isEmpty() ? text : each.shown;
        each.count += found[number];
    }
    return countsOf(named);
}

std::vector<IndexCount> IndexNames::tags(const ZQRowSet &rows) const
{
    std::map<QString, std::vector<quint32>> numbers;
    std::map<QString, Named> named;
    for (quint32 number = 1; number < m_columns.tags.tagCount(); ++number) {
        const IndexSidebar &sidebar = m_columns.sidebar;
        const auto is = [&](const char *name) { return sidebar.attribute(number, name) == ZQScalar(qint64(1)); };
        if (!sidebar.exists(number) || !is("is_Tag")) {
            continue;
        }
        const QString title = textOf(sidebar.attribute(number, "title"));
        numbers[zqFold(title)].push_back(number);
        const bool isUsers =
            is("active") && !is("is_Label") && sidebar.attribute(number, "kind") == ZQScalar(qint64(0));
        if (isUsers && named[zqFold(title)].shown.isEmpty()) {
            named[zqFold(title)].shown = title;
        }
    }
    for (auto &[name, each] : named) {
        const std::vector<quint32> &same = numbers[name];
        if (same.size() == 1) {
            const std::vector<quint32> &tagged = m_columns.tags.rowsOf(same.front());
            each.count = std::count_if(tagged.begin(), tagged.end(), [&](quint32 row) { return rows.contains(row); });
            continue;
        }
        ZQRowSet any(rows.rowCount());
        for (const quint32 number : same) {
            for (const quint32 row : m_columns.tags.rowsOf(number)) {
                any.insert(row);
            }
        }
        each.count = qint64((any &= rows).count());
    }
    return countsOf(named);
}

QStringList IndexNames::foldedPath(quint32 folder) const
{
    constexpr int deepest = 32; // a search looks no farther
    const QString father = QStringLiteral("father");
    QStringList path;
    QStringList keys;
    for (int level = 0; level < deepest; ++level) {
        const auto title = m_columns.sidebar.value(folder, keys + QStringList{QStringLiteral("title")}, 0);
        const auto isLabel = m_columns.sidebar.value(folder, keys + QStringList{QStringLiteral("is_Label")}, 0);
        if (!title || zqIsNull(*title) || isLabel == ZQScalar(qint64(1))) {
            break;
        }
        path.append(zqFold(textOf(*title)));
        keys.append(father);
    }
    return path;
}

std::vector<IndexCount> IndexNames::folders(const ZQRowSet &rows) const
{
    struct Folder
    {
        QStringList path;
        qint64 count;
    };
    std::vector<qint64> found(m_columns.sidebar.size(), 0);
    rows.forEach([&](size_t row) { ++found[m_columns.items.folders[row]]; });
    std::vector<Folder> folders;
    std::map<QString, Named> named;
    for (quint32 number = 1; number < found.size(); ++number) {
        if (found[number]) {
            folders.push_back({foldedPath(number), found[number]});
            const QString title = textOf(m_columns.sidebar.attribute(number, "title"));
            named[zqFold(title)].shown = title;
        }
    }
    for (auto &[name, each] : named) {
        const auto isIn = [&name = name](const QString &title) { return title.contains(name); };
        for (const Folder &folder : folders) {
            each.count += std::any_of(folder.path.begin(), folder.path.end(), isIn) ? folder.count : 0;
        }
    }
    return countsOf(named);
}

std::vector<IndexCount> IndexNames::projects(const ZQRowSet &rows) const
{
    // The titles as one text, so that those that contain another are found by one look through it.
    const QChar between(0xffff);
    QString titles(between);
    std::vector<quint32> numbers;
    std::vector<qsizetype> ends;
    std::map<QString, Named> named;
    for (quint32 number = 1; number < m_columns.memberships.projectCount(); ++number) {
        const QString title = textOf(m_columns.sidebar.attribute(number, "title"));
        const QString key = zqFold(title).remove(between);
        if (!m_columns.memberships.ofProject(number).empty() && !key.isEmpty()) { // accents alone leave nothing
            titles += key + between;
            numbers.push_back(number);
            ends.push_back(titles.size());
            named[key].shown = title;
        }
    }
    for (auto &[name, each] : named) {
        if (ZQCancellation::isCurrentCancelled()) {
            return {};
        }
        std::vector<size_t> holding;
        for (qsizetype at = titles.indexOf(name); at >= 0; at = titles.indexOf(name, ends[holding.back()] - 1)) {
            holding.push_back(size_t(std::upper_bound(ends.begin(), ends.end(), at) - ends.begin()));
        }
        ZQRowSet several(holding.size() > 1 ? rows.rowCount() : 0);
        for (const size_t project : holding) {
            for (const quint32 membership : m_columns.memberships.ofProject(numbers[project])) {
                const quint32 row = m_columns.memberships.item(membership);
                const bool counts = rows.contains(row) && (holding.size() == 1 || !several.contains(row));
                each.count += counts;
                if (counts && holding.size() > 1) {
                    several.insert(row);
                }
            }
        }
    }
    return countsOf(named);
}
