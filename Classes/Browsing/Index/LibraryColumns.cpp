#include "Classes/Browsing/Index/LibraryColumns.h"

#include "Classes/Browsing/Index/LibraryLists.h"
#include "Classes/Browsing/Index/PictureConditions.h"
#include "Classes/Browsing/Index/SimilarPictures.h"

namespace {

const QString pictureHashKey = QStringLiteral("pictureHash");
const QString paletteKey = QStringLiteral("palette");

std::optional<std::string> copyAt(const ZQTextBlocks &texts, size_t row)
{
    return texts.isNull(row) ? std::nullopt : std::optional(std::string(texts.text(row)));
}

} // namespace

std::optional<ZQColumn> LibraryColumns::attribute(const QString &key) const
{
    if (key == QStringLiteral("title")) {
        return ZQTextColumn{&items.foldedTitle, &items.title};
    }
    if (key == QStringLiteral("notes")) {
        return ZQTextColumn{&items.foldedNotes, nullptr};
    }
    if (key == QStringLiteral("extension")) {
        return ZQCodedColumn{std::span<const quint32>(items.extensions), items.extensionTexts};
    }
    if (key == QStringLiteral("SHA1")) {
        return &items.digests;
    }
    const std::pair<const char *, ZQColumn> plain[] = {
        {"active", items.active.column()},
        {"managed", items.managed.column()},
        {"pixelWidth", items.pixelWidth.column()},
        {"pixelHeight", items.pixelHeight.column()},
        {"pixelTotal", items.pixelTotal.column()},
        {"rating", items.rating.column()},
        {"mainColor", items.mainColor.column()},
        {"import_date", items.importDate.column(true)},
        {"modification_date", items.modificationDate.column(true)},
        {"creation_date", items.creationDate.column(true)},
    };
    for (const auto &[name, column] : plain) {
        if (key == QLatin1StringView(name)) {
            return column;
        }
    }
    return std::nullopt;
}

std::optional<ZQColumn> LibraryColumns::column(const QStringList &keys) const
{
    if (keys.isEmpty()) {
        return ZQObjectColumn{std::span<const qint64>(items.keys.all()), itemEntity};
    }
    const QString &first = keys.first();
    if (first == QStringLiteral("tags")) {
        auto values = sidebar.values(keys, 1);
        return values ? std::optional<ZQColumn>(std::make_shared<TagList>(tags, std::move(*values))) : std::nullopt;
    }
    if (first == QStringLiteral("watchingFolder")) {
        auto values = sidebar.values(keys, 1);
        return values
                   ? std::optional<ZQColumn>(ZQCodedColumn{std::span<const quint32>(items.folders), std::move(*values)})
                   : std::nullopt;
    }
    if (first == QStringLiteral("projectsItems") && keys.size() == 1) {
        return std::make_shared<MembershipList>(memberships, membershipEntity);
    }
    if (first == QStringLiteral("projectsItems") && keys[1] == QStringLiteral("project")) {
        auto values = sidebar.values(keys, 2);
        return values ? std::optional<ZQColumn>(std::make_shared<ProjectList>(memberships, std::move(*values)))
                      : std::nullopt;
    }
    return keys.size() == 1 ? attribute(first) : std::nullopt;
}

bool LibraryColumns::hasResemblances(const QStringList &keys) const
{
    return keys == QStringList{pictureHashKey} || keys == QStringList{paletteKey};
}

std::optional<ZQRowSet> LibraryColumns::resembling(const QStringList &keys, const QString &text,
                                                   const ZQRowSet &among) const
{
    const bool isOfHash = keys.first() == pictureHashKey;
    const auto picture = isOfHash ? PictureCondition::fromText(text) : std::nullopt;
    const auto color = isOfHash ? std::nullopt : ColorCondition::fromText(text);
    if (picture) {
        return zqPicturesWithin(items.pictures, picture->hash, picture->farthest, among);
    }
    return color ? zqPicturesWithColor(items.pictures, color->nearness(), among) : ZQRowSet(among.rowCount());
}

std::optional<IndexTitles> LibraryColumns::titlesAfter(const Changes &changes) const
{
    QHash<quint32, std::optional<std::string>> changed;
    size_t rows = items.size();
    for (size_t i = 0; i < changes.items.size(); ++i) {
        const auto known = items.keys.rowOf(changes.items.keys[i]);
        auto title = copyAt(changes.items.title, i);
        if (!known || title != copyAt(items.title, *known)) {
            changed.insert(known.value_or(quint32(rows)), std::move(title));
            rows += known ? 0 : 1;
        }
    }
    return changed.isEmpty() ? std::nullopt : std::optional(titles.updated(items.title, changed, rows));
}

void LibraryColumns::applySidebar(const Changes &changes)
{
    for (auto entry = changes.sidebar.cbegin(); entry != changes.sidebar.cend(); ++entry) {
        sidebar.set(entry.key(), entry.value());
    }
}

void LibraryColumns::applyTags(const Changes &changes, const std::vector<quint32> &rows)
{
    QHash<quint32, std::vector<quint32>> lists;
    for (size_t i = 0; i < rows.size(); ++i) {
        std::vector<quint32> &list = lists[rows[i]];
        for (const qint64 tag : changes.tags.value(changes.items.keys[i])) {
            list.push_back(sidebar.numberFor(tag));
        }
    }
    for (const qint64 key : changes.goneItems) {
        if (const auto row = items.keys.rowOf(key)) {
            lists.insert(*row, {});
        }
    }
    tags.set(lists, items.size(), sidebar.size());
    for (auto entry = changes.sidebar.cbegin(); entry != changes.sidebar.cend(); ++entry) {
        const auto number = entry->has_value() ? std::nullopt : sidebar.numberOf(entry.key());
        if (number) {
            tags.removeTag(*number);
        }
    }
}

void LibraryColumns::applyMemberships(const Changes &changes, std::vector<quint32> gone)
{
    std::vector<IndexMemberships::Values> changed;
    for (const Changes::Membership &membership : changes.memberships) {
        const auto item = items.keys.rowOf(membership.item);
        changed.push_back({membership.key, item && items.present.contains(*item) ? *item : IndexMemberships::none,
                           membership.project ? sidebar.numberFor(membership.project) : IndexSidebar::none,
                           membership.order});
    }
    for (const qint64 key : changes.goneMemberships) {
        if (const auto membership = memberships.keys().rowOf(key)) {
            gone.push_back(*membership);
        }
    }
    memberships.change(changed, gone, items.size(), sidebar.size());
}

void LibraryColumns::apply(Changes changes, std::optional<IndexTitles> newTitles)
{
    applySidebar(changes);
    for (const qint64 folder : changes.items.folderKeys) {
        if (folder) {
            sidebar.numberFor(folder);
        }
    }
    changes.items.resolveFolders(sidebar);
    const std::vector<quint32> rows = items.take(changes.items);
    applyTags(changes, rows);
    std::vector<quint32> goneMemberships;
    for (const qint64 key : changes.goneItems) {
        if (const auto row = items.keys.rowOf(key)) {
            items.remove(*row);
        }
    }
    for (const qint64 key : changes.goneItems) {
        const auto row = items.keys.rowOf(key);
        if (row && *row < memberships.itemCount()) {
            memberships.ofItem(*row, [&](quint32 membership) {
                goneMemberships.push_back(membership);
                return false;
            });
        }
    }
    for (auto entry = changes.sidebar.cbegin(); entry != changes.sidebar.cend(); ++entry) {
        const auto number = entry->has_value() ? std::nullopt : sidebar.numberOf(entry.key());
        if (number && *number < memberships.projectCount()) {
            const std::vector<quint32> &members = memberships.ofProject(*number);
            goneMemberships.insert(goneMemberships.end(), members.begin(), members.end());
        }
    }
    applyMemberships(changes, std::move(goneMemberships));
    if (newTitles) {
        titles = std::move(*newTitles);
    }
}

size_t LibraryColumns::bytes() const
{
    return items.bytes() + sidebar.bytes() + tags.bytes() + memberships.bytes() + titles.bytes();
}
