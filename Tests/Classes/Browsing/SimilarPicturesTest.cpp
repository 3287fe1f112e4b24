#include "Classes/Browsing/Index/SimilarPictures.h"

#include "Classes/Browsing/Content/LookAlikes.h"
#include "Classes/Browsing/Content/NearDuplicates.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Browsing/Index/NearGroups.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

#include <algorithm>
#include <bit>
#include <random>

namespace {

int distance(const HashWords &a, const HashWords &b)
{
    int bits = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        bits += std::popcount(a[i] ^ b[i]);
    }
    return bits;
}

class SimilarPicturesTest : public testing::Test
{
protected:
    HashWords anyHash()
    {
        HashWords hash;
        std::generate(hash.begin(), hash.end(), std::ref(random));
        return hash;
    }
    // That differs in so many bits, spread over all of it or side by side.
    HashWords changed(HashWords hash, int bits, bool isSpread)
    {
        const auto start = unsigned(random() % 256);
        for (int i = 0; i < bits; ++i) {
            const unsigned bit = (start + unsigned(isSpread ? i * 256 / bits : i)) % 256;
            hash[bit / 64] ^= quint64(1) << (bit % 64);
        }
        return hash;
    }
    static IndexPictures::Value valueOf(const HashWords &hash) { return {hash, {}}; }
    void expectRightGroups(const std::vector<HashWords> &hashes, int farthest);

    std::mt19937_64 random{7};
};

// Whatever is near to something is in a group, unless another group took that; and no group is a chain.
void SimilarPicturesTest::expectRightGroups(const std::vector<HashWords> &hashes, int farthest)
{
    constexpr size_t few = 1024; // so that both ways are gone
    const auto groups = NearGroups::of(hashes, farthest, nullptr, few);
    ASSERT_TRUE(groups.has_value());
    std::vector<int> taken(hashes.size());
    for (const auto &group : *groups) {
        EXPECT_GT(group.size(), 1U);
        EXPECT_TRUE(std::is_sorted(group.begin() + 1, group.end()));
        for (const quint32 each : group) {
            EXPECT_LE(distance(hashes[each], hashes[group[0]]), farthest);
            ++taken[each];
        }
    }
    for (size_t a = 0; a < hashes.size(); ++a) {
        EXPECT_LE(taken[a], 1) << "in two groups";
        for (size_t b = 0; b < a; ++b) {
            EXPECT_TRUE(distance(hashes[a], hashes[b]) > farthest || taken[a] || taken[b])
                << a << " and " << b << " are " << distance(hashes[a], hashes[b]) << " apart";
        }
    }
}

} // namespace

TEST_F(SimilarPicturesTest, TheNearestAreThoseOfALookAtEachOne)
{
    constexpr size_t count = 3000;
    IndexPictures pictures;
    std::vector<std::optional<HashWords>> hashes(count);
    const HashWords wanted = anyHash();
    for (size_t row = 0; row < count; ++row) {
        pictures.append({});
    }
    for (int round = 0; round < 9000; ++round) { // rows get their pictures in any order, lose them and get others
        const size_t row = random() % count;
        hashes[row] = round % 5 == 4 ? std::nullopt : std::optional(changed(wanted, int(random() % 120), round % 2));
        pictures.set(row, {hashes[row], {}});
    }
    ZQRowSet among(count, true);
    for (size_t row = 0; row < count; row += 7) {
        among.remove(row);
    }
    for (const auto &[limit, farthest] : {std::pair<size_t, int>{10, 256}, {5000, 256}, {5000, 60}, {1, 0}, {0, 256}}) {
        std::vector<std::pair<int, quint32>> expected;
        for (quint32 row = 0; row < count; ++row) {
            if (among.contains(row) && hashes[row] && distance(*hashes[row], wanted) <= farthest) {
                expected.emplace_back(distance(*hashes[row], wanted), row);
            }
        }
        std::sort(expected.begin(), expected.end());
        expected.resize(std::min(limit, expected.size()));
        std::vector<std::pair<int, quint32>> found;
        for (const SimilarPicture &each : zqNearestPictures(pictures, ZQPictureHash{wanted}, among, limit, farthest)) {
            found.emplace_back(each.distance, each.row);
        }
        EXPECT_EQ(found, expected) << limit << " within " << farthest;
    }
}

TEST_F(SimilarPicturesTest, JoinedColumnsHoldWhatBothHeld)
{
    IndexPictures parts[2];
    std::vector<HashWords> hashes;
    for (int row = 0; row < 40; ++row) {
        hashes.push_back(anyHash());
        parts[row / 20].append(row % 3 == 0 ? IndexPictures::Value() : valueOf(hashes.back()));
    }
    for (IndexPictures &part : parts) {
        part.set(1, {}); // leaves a slot unused
    }
    parts[0].appendAll(parts[1]);
    parts[0].set(0, valueOf(hashes[0]));
    ASSERT_EQ(parts[0].size(), 40U);
    for (size_t row = 0; row < 40; ++row) {
        const bool isEmpty = row % 20 == 1 || (row != 0 && row % 3 == 0);
        EXPECT_EQ(parts[0].value(row).hash, isEmpty ? std::nullopt : std::optional(hashes[row])) << row;
    }
}

TEST_F(SimilarPicturesTest, EveryPairThatIsNearIsFoundWhereverItsBitsDiffer)
{
    for (const int farthest : {0, 16, 31, 47}) {
        SCOPED_TRACE(farthest);
        std::vector<HashWords> hashes;
        for (int i = 0; i < 600; ++i) {
            hashes.push_back(anyHash());
        }
        for (int i = 0; i < 600; ++i) { // just near enough, or just not
            hashes.push_back(changed(hashes[random() % 600], farthest + i % 2, i % 3 != 0));
        }
        for (int i = 0; i < 60; ++i) {
            hashes.push_back(hashes[random() % hashes.size()]);
        }
        std::shuffle(hashes.begin(), hashes.end(), random);
        expectRightGroups(hashes, farthest);
        hashes.resize(500);
        expectRightGroups(hashes, farthest);
    }
}

// All there are would take minutes among a million.
TEST_F(SimilarPicturesTest, OfManyNearlyAllPairsAreFoundThatAreJustNearEnough)
{
    constexpr int pairs = 1500;
    std::vector<HashWords> hashes;
    for (int i = 0; i < pairs; ++i) {
        hashes.push_back(anyHash());
        HashWords other = hashes.back();
        for (int left = ZQPictureHash::alikeDistance; left > 0;) {
            const auto bit = random() % ZQPictureHash::bitCount;
            const quint64 mask = quint64(1) << (bit % 64);
            const bool isNew = ((other[bit / 64] ^ hashes.back()[bit / 64]) & mask) == 0;
            other[bit / 64] ^= isNew ? mask : 0;
            left -= isNew ? 1 : 0;
        }
        hashes.push_back(other);
    }
    const auto groupsOf = [&hashes](size_t few) {
        return NearGroups::of(hashes, ZQPictureHash::alikeDistance, nullptr, few).value_or(NearGroups::Groups());
    };
    EXPECT_EQ(groupsOf(hashes.size()).size(), size_t(pairs));
    EXPECT_GT(groupsOf(0).size(), size_t(pairs * 85 / 100));
}

TEST_F(SimilarPicturesTest, AChainIsCutAroundThePicturesWithTheMostNeighbours)
{
    constexpr int farthest = 20;
    const auto along = [](int bits) { // so many bits from the first
        HashWords hash{};
        for (int bit = 0; bit < bits; ++bit) {
            hash[size_t(bit / 64)] |= quint64(1) << (bit % 64);
        }
        return hash;
    };
    std::vector<HashWords> chain;
    for (int link = 0; link < 10; ++link) {
        chain.push_back(along(16 * link));
    }
    expectRightGroups(chain, farthest);
    const std::vector<HashWords> star = {along(0), along(16), along(32), along(64), along(34)};
    const auto groups = NearGroups::of(star, farthest, nullptr);
    ASSERT_TRUE(groups.has_value());
    ASSERT_EQ(groups->size(), 1U);
    EXPECT_EQ(groups->front(), (std::vector<quint32>{1, 0, 2, 4})) << "the one in the middle comes first";
}

TEST_F(SimilarPicturesTest, GroupingTellsHowFarItIsAndEndsWhenItIsCancelled)
{
    std::vector<HashWords> hashes;
    for (int i = 0; i < 2000; ++i) {
        hashes.push_back(anyHash());
    }
    for (const size_t few : {hashes.size(), size_t(0)}) {
        SCOPED_TRACE(few);
        std::vector<double> told;
        ASSERT_TRUE(NearGroups::of(
                        hashes, 48, [&told](double done) { told.push_back(done); }, few)
                        .has_value());
        EXPECT_GT(told.size(), 100U);
        EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
        EXPECT_EQ(told.back(), 1);
        const auto cancellation = std::make_shared<ZQCancellation>();
        const ZQCancellation::Scope scope(cancellation);
        told.clear();
        const auto cancelInTheMiddle = [&](double done) {
            told.push_back(done);
            if (told.size() == 20) {
                cancellation->cancel();
            }
        };
        EXPECT_FALSE(NearGroups::of(hashes, 48, cancelInTheMiddle, few).has_value());
        EXPECT_LT(told.back(), 0.9);
    }
}

TEST_F(SimilarPicturesTest, AColorIsNearInShadesAndOfLittleOnlyWhenItIsNearer)
{
    const auto paletteOf = [](QRgb rgb, quint8 share) {
        const QByteArray bytes = ZQPalette{{{rgb, share}}}.bytes();
        return PictureColors::of({bytes.constData(), size_t(bytes.size())});
    };
    struct Case
    {
        QRgb wanted;
        float tolerance;
        QRgb has;
        int share;
        bool isNear;
    };
    constexpr Case cases[] = {
        {0x3366cc, 0, 0x3366cc, 255, true},     {0x3366cc, 0, 0x3366cc, 1, true},
        {0x3366cc, 0.1F, 0x2f60c4, 100, true},  {0x3366cc, 0.1F, 0xcc6633, 255, false},
        {0x3366cc, 0.1F, 0x4f7fdd, 100, true},  {0x3366cc, 0.1F, 0x4f7fdd, 2, false},
        {0x000000, 1, 0xffffff, 255, true},     {0x000000, 0.98F, 0xffffff, 255, false},
        {0xffffff, 0.02F, 0xfafafa, 255, true}, {0x808080, 0.1F, 0x3366cc, 255, false},
        {0x70c0b5, 0.1F, 0xa8a8a8, 255, false},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(ColorNearness(ZQOklab::of(each.wanted), each.tolerance)(paletteOf(each.has, quint8(each.share))),
                  each.isNear)
            << std::hex << each.wanted << " and " << each.has;
    }
    EXPECT_FALSE(ColorNearness(ZQOklab::of(0x000000), 1)(PictureColors())) << "no color is not black";
    EXPECT_TRUE(PictureColors::of("abc").isEmpty());
    EXPECT_TRUE(PictureColors::of(std::string(24, 'x')).isEmpty());
    constexpr QRgb rainbow[] = {0xe03131, 0xf08c00, 0xfcc419, 0x2f9e44, 0x1c6ed4,
                                0x8e44ad, 0xffffff, 0x808080, 0x000000};
    int last = -1;
    for (const QRgb color : rainbow) {
        EXPECT_GT(paletteOf(color, 100).huePlace(), last) << std::hex << color;
        last = paletteOf(color, 100).huePlace();
    }
    EXPECT_GT(PictureColors().huePlace(), last);
}

TEST_F(SimilarPicturesTest, TheBestOfAGroupIsTheSharpestThenTheLargestThenWhatLosesLeast)
{
    using Worth = NearDuplicates::Worth;
    struct Case
    {
        Worth first, second;
        const char *reason;
    };
    const auto item = [](const char *extension, qint64 width, qint64 rating, qint64 imported) {
        return Worth{{}, QLatin1StringView(extension), width, 100, rating, imported};
    };
    const Case cases[] = {
        {item("SVG", 0, 0, 9), item("png", 4000, 5, 1), "As SVG it is sharp in any size"},
        {item("jpg", 480, 0, 9), item("png", 400, 5, 1), "The largest: 480 × 100 pixels"},
        {item("jpg", 400, 0, 1), item("jpg", 440, 0, 9), "As good as the others, and in the library for longest"},
        {item("psd", 400, 0, 9), item("png", 400, 5, 1), "As large as the others, and PSD keeps more of a picture"},
        {item("png", 400, 0, 9), item("jpg", 400, 5, 1), "As large as the others, and PNG keeps more of a picture"},
        {item("jpg", 400, 2, 9), item("webp", 400, 1, 1), "As good as the others, and rated highest"},
        {item("jpg", 400, 2, 1), item("jpg", 400, 2, 2), "As good as the others, and in the library for longest"},
    };
    for (const Case &each : cases) {
        Worth first = each.first;
        Worth second = each.second;
        first.item.key = 2;
        second.item.key = 1;
        for (const QList<Worth> &order : {QList<Worth>{first, second}, QList<Worth>{second, first}}) {
            const NearDuplicateGroup group = NearDuplicates::groupOf(order);
            EXPECT_EQ(group.items.value(group.best), first.item) << each.reason;
            EXPECT_EQ(group.reason, QString::fromUtf8(each.reason));
        }
    }
}

class NearDuplicatesTest : public BrowsingFixture
{
protected:
    NearDuplicatesTest() { index.follow(library.context()); }
    ZQRef<ZQLibraryImage> add(const char *title, int width, quint64 bits)
    {
        const auto item = library.addImage(QLatin1StringView(title), QStringLiteral("jpg"));
        item->setSHA1(QLatin1StringView(title));
        item->setPixelWidth(width);
        item->setPixelHeight(100);
        ZQPictureHash hash;
        hash.words = {bits, 0, bits & 1 ? ~quint64(0) : 0, bits & 1 ? ~quint64(0) : 0};
        item->setPictureHash(hash.bytes());
        return item;
    }
    QList<ZQObjectID> foundOf(const QList<ZQObjectID> &arrived, qint64 mostComparisons)
    {
        LookAlikes looking(arrived, mostComparisons);
        EXPECT_TRUE(looking.look(index, library.context(), [] { return true; }));
        return looking.arrived();
    }

    LibraryIndex index{library.coordinator()};
};

TEST_F(NearDuplicatesTest, WhatArrivesIsComparedWithWhatWasThereUnlessThatTakesTooLong)
{
    const QList first = {add("first", 100, 2), add("its twin", 200, 4)};
    ASSERT_TRUE(library.context().save());
    EXPECT_TRUE(foundOf({first[0]->objectID(), first[1]->objectID()}, 100).isEmpty()) << "nothing was there before";
    const QList then = {add("like them", 300, 2), add("other", 100, 1)};
    ASSERT_TRUE(library.context().save());
    const QList<ZQObjectID> came = {then[0]->objectID(), then[1]->objectID()};
    EXPECT_EQ(foundOf(came, 8), came.first(1));
    EXPECT_TRUE(foundOf(came, 7).isEmpty()) << "two with each of four";
}

TEST_F(NearDuplicatesTest, AreFoundAlikeByTheIndexAndByTheStoreAlone)
{
    const auto small = add("small", 100, 2);
    const auto large = add("large", 900, 4);
    const auto deleted = add("deleted", 5000, 2);
    deleted->setActive(false);
    const auto other = add("other", 100, 1);
    const auto another = add("another", 200, 3);
    const auto another2 = add("another", 300, 5);
    library.addImage(QStringLiteral("unknown"), QStringLiteral("png"));
    ASSERT_TRUE(library.context().save());
    ASSERT_TRUE(index.waitUntilCurrent());
    using IDs = QList<ZQObjectID>;
    const IDs pair = {large->objectID(), small->objectID()};
    const IDs three = {another2->objectID(), another->objectID(), other->objectID()};
    for (LibraryIndex *each : {&index, static_cast<LibraryIndex *>(nullptr)}) {
        ZQManagedObjectContext context(library.coordinator());
        ZQError error;
        const auto groups = NearDuplicates::find(context, each, std::nullopt, nullptr, &error);
        ASSERT_TRUE(groups.has_value()) << qPrintable(error.localizedDescription());
        ASSERT_EQ(groups->size(), 2);
        EXPECT_EQ(groups->at(0).items, three);
        EXPECT_EQ(groups->at(1).items, pair);
        EXPECT_EQ(groups->at(1).reason, QStringLiteral("The largest: 900 × 100 pixels"));
        const auto some = NearDuplicates::find(
            context, each, IDs{small->objectID(), large->objectID(), other->objectID()}, nullptr, &error);
        ASSERT_TRUE(some && some->size() == 1);
        EXPECT_EQ(some->first().items, pair);
    }
}

// Views of the window go first, and may do so in the middle of a look.
TEST_F(NearDuplicatesTest, WhatCameLooksLikeTheSameHoweverOftenTheLookIsCutOff)
{
    const auto made = [this](unsigned pictures, const char *digest) {
        QList<ZQRef<ZQLibraryImage>> items;
        std::mt19937_64 bits(pictures);
        for (int i = 0; i < 40; ++i) {
            ZQPictureHash hash;
            std::generate(hash.words.begin(), hash.words.end(), std::ref(bits));
            const auto item = library.addImage(QLatin1StringView(digest), QStringLiteral("jpg"));
            item->setPictureHash(hash.bytes());
            item->setSHA1(QLatin1StringView(digest));
            items.append(item);
        }
        return items;
    };
    made(1, "there");
    made(2, "copied");
    ASSERT_TRUE(library.context().save());
    const auto others = made(1, "other form");
    const auto copies = made(2, "copied"); // were asked about
    const auto strangers = made(3, "like nothing");
    ASSERT_TRUE(library.context().save());
    const auto idsOf = [](const QList<ZQRef<ZQLibraryImage>> &items) {
        QList<ZQObjectID> ids;
        std::transform(items.begin(), items.end(), std::back_inserter(ids),
                       [](const auto &item) { return item->objectID(); });
        return ids;
    };
    ASSERT_TRUE(index.waitUntilCurrent());
    for (const int cutOffAfter : {0, 1, 2}) { // questions whether it is wanted
        SCOPED_TRACE(cutOffAfter);
        LookAlikes looking(idsOf(copies) + idsOf(others) + idsOf(strangers));
        bool isThrough = false;
        for (int turn = 0; turn < 100 && !isThrough; ++turn) {
            ZQManagedObjectContext context(library.coordinator());
            const auto cancellation = std::make_shared<ZQCancellation>();
            const ZQCancellation::Scope scope(cancellation);
            int asked = 0;
            isThrough = looking.look(index, context, [&] {
                const bool isWanted = !cancellation->isCancelled();
                if (++asked == cutOffAfter) {
                    cancellation->cancel();
                }
                return isWanted;
            });
        }
        EXPECT_TRUE(isThrough);
        EXPECT_EQ(looking.arrived(), idsOf(others));
        EXPECT_EQ(looking.before().size(), 40);
    }
}
