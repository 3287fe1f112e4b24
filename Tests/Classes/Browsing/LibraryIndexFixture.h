#pragma once

#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Index/PictureConditions.h"
#include "Models/DataModel/ZQLibraryPDF.h"
#include "Models/DataModel/ZQLibrarySVG.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

#include <algorithm>
#include <random>

inline const std::vector<QString> texts = {{},
                                           QStringLiteral(""),
                                           QStringLiteral("logo"),
                                           QStringLiteral("Logo 10"),
                                           QStringLiteral("logo 9"),
                                           QStringLiteral("Lögo"),
                                           QStringLiteral("Straße"),
                                           QStringLiteral("STRASSE"),
                                           QStringLiteral("ικον Σ"),
                                           QStringLiteral("夜の街"),
                                           QStringLiteral("a*b"),
                                           QStringLiteral("😀 face")};
inline const std::vector<QString> extensions = {{},
                                                QStringLiteral("png"),
                                                QStringLiteral("PNG"),
                                                QStringLiteral("svg"),
                                                QStringLiteral("ai"),
                                                QStringLiteral("jpg")};
inline const std::vector<QString> digests = {{},
                                             QStringLiteral("0"),
                                             QStringLiteral("da39a3ee5e6b4b0d3255bfef95601890afd80709"),
                                             QStringLiteral("da39a3ee5e6b4b0d3255bfef95601890afd80700"),
                                             QStringLiteral("DA39A3EE5E6B4B0D3255BFEF95601890AFD80709"),
                                             QStringLiteral("ffffffffffffffffffffffffffffffffffffffff")};

// Three pictures that look like nothing of each other.
inline ZQPictureHash picture(size_t number)
{
    std::mt19937_64 bits(number);
    ZQPictureHash hash;
    std::generate(hash.words.begin(), hash.words.end(), bits);
    return hash;
}
inline constexpr int apart = 20; // bits, at most, of those that are made of one

// A library that is filled and changed at random, and what follows it.
class LibraryIndexTest : public BrowsingFixture
{
protected:
    LibraryIndexTest()
    {
        index.follow(library.context());
        for (const char *name : {"One", "Two", "Straße"}) {
            homes.append(addProject(QString::fromUtf8(name)));
        }
        folder = addFolder(QStringLiteral("Folder"));
        homes.append(addProject(QStringLiteral("Inner"), folder));
        const Item label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(library.context());
        for (const char *name : {"draft", "Entwürfe", "final"}) {
            tags.append(add<ZQSidebarTag>(QString::fromUtf8(name), label));
            tags.last()->setIs_Tag(true);
        }
        tags.append(ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind::FirstSize, library.context()));
        const Item live = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context());
        watched.append(add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), live));
        watched.append(add<ZQSidebarWatchedFolder>(QStringLiteral("Lower"), watched.first()));
        library.context().save();
    }

    template <class T>
    T oneOf(const std::vector<T> &values)
    {
        return values[random() % values.size()];
    }
    bool oneIn(unsigned count) { return random() % count == 0; }
    std::optional<QDateTime> date()
    {
        const QDateTime start(QDate(2024, 1, 30), QTime(23, 59, 59), Qt::UTC);
        return oneIn(5) ? std::nullopt : std::optional(start.addSecs(qint64(random() % 8) * 86400 * 11));
    }
    // Now and then nobody looked at it yet, or it shows nothing.
    QByteArray pictureHash()
    {
        if (oneIn(4)) {
            return oneIn(2) ? QByteArray() : QByteArray("");
        }
        ZQPictureHash hash = picture(random() % 3);
        for (auto i = random() % (2 * apart); i > 0; --i) {
            const unsigned bit = random() % ZQPictureHash::bitCount;
            hash.words[bit / 64] ^= quint64(1) << (bit % 64);
        }
        return hash.bytes();
    }
    QByteArray palette()
    {
        const std::vector<QRgb> colors = {0x3366cc, 0x3a6ad0, 0x204080, 0xcc3333, 0xffffff, 0x000000, 0x808080};
        ZQPalette palette;
        for (auto i = random() % (ZQPalette::maximum + 1); i > 0; --i) {
            palette.colors.append({oneOf(colors), quint8(1 + random() % 60)});
        }
        return palette.bytes();
    }
    void change(ZQLibraryBaseItem &item)
    {
        item.setPictureHash(pictureHash());
        item.setPalette(palette());
        item.setTitle(oneOf(texts));
        item.setNotes(oneIn(3) ? oneOf(texts) : QString());
        item.setExtension(oneOf(extensions));
        item.setSHA1(oneOf(digests));
        item.setActive(!oneIn(6));
        item.setManaged(!oneIn(4));
        item.setRating(qint16(random() % 6));
        item.setMainColor(oneIn(4) ? 0 : qint32(1000 + random() % 10));
        const std::vector<qint32> edges = {0, 10, 32, 33, 128, 129, 512, 513, 4000};
        item.setPixelWidth(oneOf(edges));
        item.setPixelHeight(oneOf(edges));
        item.setPixelTotal(qint64(item.pixelWidth()) * item.pixelHeight());
        for (const char *key : {"import_date", "modification_date", "creation_date"}) {
            const auto value = date();
            item.setValueForKey(value ? QVariant(*value) : QVariant(), QLatin1StringView(key));
        }
        for (const char *key : {"pixelWidth", "mainColor", "rating"}) {
            if (oneIn(12)) {
                item.setValueForKey({}, QLatin1StringView(key));
            }
        }
        item.setWatchingFolder(oneIn(4) ? zqCast<ZQSidebarWatchedFolder>(watched[random() % 2]).get() : nullptr);
        for (const Item &tag : tags) {
            if (oneIn(3)) {
                item.addTagsObject(zqCast<ZQSidebarTag>(tag).get());
            } else {
                item.removeTagsObject(zqCast<ZQSidebarTag>(tag).get());
            }
        }
    }
    ZQRef<ZQLibraryBaseItem> addItem()
    {
        ZQManagedObjectContext &context = library.context();
        ZQRef<ZQLibraryBaseItem> item;
        switch (random() % 3) {
        case 0:
            item = context.insertNewObject<ZQLibraryImage>();
            break;
        case 1:
            item = context.insertNewObject<ZQLibraryPDF>();
            break;
        default:
            item = context.insertNewObject<ZQLibrarySVG>();
        }
        change(*item);
        items.append(item);
        for (const Item &home : homes) {
            if (oneIn(3)) {
                const auto membership = context.insertNewObject<ZQProjectItem>();
                membership->setItem(item.get());
                membership->setProject(home.get());
                membership->setOrder(qint32(random() % 4));
            }
        }
        return item;
    }
    void compareColumnOrders(const std::vector<ZQSortValue> &orders);
    void fill(int count)
    {
        for (int i = 0; i < count; ++i) {
            addItem();
        }
        ASSERT_TRUE(library.context().save());
    }

    LibraryIndex::Reading current(LibraryIndex &of)
    {
        EXPECT_TRUE(of.waitUntilOrdered());
        auto reading = of.read();
        EXPECT_TRUE(reading.has_value());
        return std::move(*reading);
    }
    // What the store says, by a context of its own.
    static ZQRelatedIDs stored(ZQManagedObjectContext &context, const ZQFetchRequest &request)
    {
        if (request.entityName == ZQProjectItem::entityName()) {
            return context.fetchObjectIDsWithRelated(request, QStringLiteral("item")).value_or(ZQRelatedIDs());
        }
        const auto ids = context.fetchObjectIDs(request).value_or(QList<ZQObjectID>());
        return {ids, ids};
    }
    QList<ZQFetchRequest> contents()
    {
        QList<ZQFetchRequest> requests;
        for (const ZQSidebarKind kind : {ZQSidebarKind::Library, ZQSidebarKind::Recent, ZQSidebarKind::Screenshots}) {
            requests.append(ZQSidebarBaseItem::specialItemOfKind(kind, library.context())->contentRequest());
        }
        for (const QList<Item> &of : {homes, tags, watched}) {
            for (const Item &each : of) {
                requests.append(each->contentRequest());
            }
        }
        return requests;
    }
    static QStringList searches()
    {
        const auto word = [](const char *text) {
            return QStringLiteral("item.title contains[cd] \"%1\" OR item.notes contains[cd] \"%1\" OR "
                                  "item.extension contains[cd] \"%1\" OR ANY item.tags.title contains[cd] \"%1\"")
                .arg(QString::fromUtf8(text));
        };
        return {word("logo"),
                word("STRASSE"),
                word("ö"),
                word("png"),
                word("entwurfe"),
                QStringLiteral("item.extension LIKE[cd] \"PN?\""),
                QStringLiteral("ANY item.tags.title LIKE[cd] \"dr*\""),
                QStringLiteral("ANY item.projectsItems.project.title contains[cd] \"strasse\""),
                QStringLiteral("item.SHA1 == \"da39a3ee5e6b4b0d3255bfef95601890afd80709\""),
                QStringLiteral("item.SHA1 == \"0\""),
                QStringLiteral("item.pixelWidth > 32"),
                QStringLiteral("item.pixelHeight == 512"),
                QStringLiteral("item.modification_date > CAST(729000000.000000, \"NSDate\")"),
                QStringLiteral("item.import_date >= CAST(728000000.000000, \"NSDate\") AND (item.import_date <= "
                               "CAST(730000000.000000, \"NSDate\"))"),
                QStringLiteral("item.managed == NO"),
                QStringLiteral("ALL item.tags.is_Special == YES"),
                QStringLiteral("item.tags.@count == 0"),
                QStringLiteral("item.projectsItems.@count == 0 OR ALL item.projectsItems.project.active == NO"),
                QStringLiteral("( item.watchingFolder.title contains[cd] \"low\" ) OR "
                               "( item.watchingFolder.father.title contains[cd] \"liv\" )"),
                QStringLiteral("item.rating >= 3 AND NOT (item.mainColor == 1003)"),
                QStringLiteral("item.watchingFolder == nil"),
                QStringLiteral("item.pictureHash RESEMBLES \"%1\"").arg(PictureCondition{picture(1), apart}.text()),
                QStringLiteral("NONE item.pictureHash RESEMBLES \"%1\" AND item.rating > 1")
                    .arg(PictureCondition{picture(2), apart}.text()),
                QStringLiteral("item.palette RESEMBLES \"%1\"").arg(ColorCondition{0x3366cc, 8}.text()),
                QStringLiteral("NOT (item.palette RESEMBLES \"%1\")").arg(ColorCondition{0xfefefe, 1}.text()),
                QStringLiteral("NONE item.tags.title ==[cd] \"final\" AND item.title != nil")};
    }
    void expectTheStoresAnswers(LibraryIndex &of);

    LibraryIndex index{library.coordinator()};
    std::mt19937 random{20240501};
    QList<Item> homes;
    QList<Item> tags;
    QList<Item> watched;
    Item folder;
    QList<ZQRef<ZQLibraryBaseItem>> items;
};
