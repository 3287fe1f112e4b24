#include "Classes/Export/ExportItem.h"

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Imaging/ZQImageExport.h"

#include <gtest/gtest.h>

namespace {

ExportItem preset(std::optional<int> type, std::optional<int> width = {}, std::optional<int> height = {},
                  std::optional<int> percentage = {})
{
    ExportItem item;
    item.imageFileType = type;
    item.imageWidth = width;
    item.imageHeight = height;
    item.imagePercentage = percentage;
    return item;
}

} // namespace

TEST(ExportItemTest, LabelsSayFormatAndSize)
{
    const struct
    {
        ExportItem item;
        const char *extension;
        const char *size;
    } cases[] = {
        {preset({}), "orig", "Original size"},
        {preset(JPEG, {}, {}, 50), "jpg", "50%"},
        {preset(PNG, 800), "png", "800xAuto"},
        {preset(PNG, {}, 600), "png", "Autox600"},
        {preset(JPEG, 8, 6, 50), "jpg", "8x6"},
        {preset(TIFF), "", "Original size"},
        {preset(BMP), "", "Original size"},
        {preset(99), "", "Original size"},
        {preset(WebP), "webp", "Original size"},
        {preset(AVIF), "avif", "Original size"},
        {preset(TIFFWithExtension), "tif", "Original size"},
    };
    for (const auto &each : cases) {
        EXPECT_EQ(each.item.extensionString(), QLatin1String(each.extension));
        EXPECT_EQ(each.item.sizeString(), QLatin1String(each.size));
    }
    const char *const icons[] = {"",
                                 "redExportIcon",
                                 "orangeExportIcon",
                                 "orangeExportIcon",
                                 "greenExportIcon",
                                 "blueExportIcon",
                                 "violetExportIcon",
                                 ""};
    for (int color = -1; color <= 6; ++color) {
        ExportItem item;
        item.iconColor = color;
        EXPECT_EQ(item.iconName(), QLatin1String(icons[color + 1])) << color;
    }
}

TEST(ExportItemTest, StoredPresetsComeBackWithoutTitlesAndOnlyWhatIsSetIsStored)
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    defaults.removeObjectForKey(ExportItem::storageKey);
    QList<ExportItem> items = ExportItem::exportItems();
    ASSERT_EQ(items.size(), 3);
    EXPECT_EQ(items[0].title, QStringLiteral("Jpeg export"));
    EXPECT_EQ(items[0].imageSizePercentage(), 50);
    EXPECT_EQ(items[1].iconColor, 4);
    EXPECT_TRUE(items[2].archive && !items[2].imageFileType);
    EXPECT_FALSE(defaults.isSet(ExportItem::storageKey)) << "only a change of a person's stores them";

    ExportItem full = preset(WebP, 300, 200, 10);
    full.imageQuality = 60;
    full.namePattern = QStringLiteral("{title}@2x");
    full.iconColor = 5;
    items.append(full);
    ASSERT_TRUE(ExportItem::storeExportItems(items));
    const QList<ExportItem> read = ExportItem::exportItems();
    ASSERT_EQ(read.size(), 4);
    for (qsizetype i = 0; i < read.size(); ++i) {
        EXPECT_EQ(read[i].dictionary(), items[i].dictionary());
        EXPECT_TRUE(read[i].title.isEmpty());
        EXPECT_NE(read[i].identifier, items[i].identifier);
    }
    EXPECT_EQ(read[1].dictionary().keys(), (QStringList{QStringLiteral("iconColor"), QStringLiteral("imageFileType")}));
    EXPECT_EQ(read[3].imageSize(), QSizeF(300, 200));
    EXPECT_FALSE(read[3].imageSizePercentage()) << "a percentage beside a size is not used";

    ASSERT_TRUE(ExportItem::storeExportItems({}));
    EXPECT_TRUE(ExportItem::exportItems().isEmpty()) << "who deletes all has none";
    defaults.setObjectForKey(
        QVariantList{QStringLiteral("no preset"), QVariantMap{{QStringLiteral("imageWidth"), -5},
                                                              {QStringLiteral("imageFileType"), QStringLiteral("jpeg")},
                                                              {QStringLiteral("imageQuality"), 1000}}},
        ExportItem::storageKey);
    ASSERT_EQ(ExportItem::exportItems().size(), 1);
    EXPECT_EQ(ExportItem::exportItems().first().dictionary(), ExportItem().dictionary());
    defaults.removeObjectForKey(ExportItem::storageKey);
}
