#include "Classes/Export/ExportItem.h"

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageExport.h"

#include <QUuid>
#include <QVariantList>

#include <algorithm>
#include <array>
#include <limits>

namespace {

const QString fileTypeKey = QStringLiteral("imageFileType");
const QString widthKey = QStringLiteral("imageWidth");
const QString heightKey = QStringLiteral("imageHeight");
const QString percentageKey = QStringLiteral("imagePercentage");
const QString qualityKey = QStringLiteral("imageQuality");
const QString patternKey = QStringLiteral("namePattern");
const QString colorKey = QStringLiteral("iconColor");
const QString archiveKey = QStringLiteral("archive");

constexpr int violet = 5;
const std::array iconNames = {"redExportIcon",   "orangeExportIcon", "orangeExportIcon",
                              "greenExportIcon", "blueExportIcon",   "violetExportIcon"};

std::optional<int> number(const QVariantMap &dictionary, const QString &key, int least, int most)
{
    const QVariant value = dictionary.value(key);
    const int type = value.typeId();
    const bool isNumber = type == QMetaType::Int || type == QMetaType::LongLong || type == QMetaType::Double;
    bool isWhole = false;
    const qlonglong whole = value.toLongLong(&isWhole);
    return isNumber && isWhole && whole >= least && whole <= most ? std::optional(int(whole)) : std::nullopt;
}

void put(QVariantMap &dictionary, const QString &key, std::optional<int> value)
{
    if (value) {
        dictionary.insert(key, *value);
    }
}

} // namespace

ExportItem::ExportItem() : identifier(QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper()) {}

QList<ExportItem> ExportItem::firstExportItems()
{
    ExportItem jpeg;
    jpeg.title = zqLocalized("Jpeg export");
    jpeg.imageFileType = JPEG;
    jpeg.imagePercentage = 50;
    ExportItem png;
    png.title = zqLocalized("Png export");
    png.imageFileType = PNG;
    png.iconColor = 4;
    ExportItem zip;
    zip.title = zqLocalized("Zip export");
    zip.archive = true;
    zip.iconColor = 3;
    return {jpeg, png, zip};
}

QList<ExportItem> ExportItem::exportItems()
{
    const QVariant stored = ZQUserDefaults::standardUserDefaults().objectForKey(storageKey);
    if (!stored.isValid()) {
        return firstExportItems();
    }
    QList<ExportItem> items;
    const QVariantList list = stored.toList();
    for (const QVariant &entry : list) {
        if (entry.typeId() == QMetaType::QVariantMap) {
            items.append(exportItemWithDictionary(entry.toMap()));
        }
    }
    return items;
}

bool ExportItem::storeExportItems(const QList<ExportItem> &items, ZQError *error)
{
    QVariantList list;
    for (const ExportItem &item : items) {
        list.append(item.dictionary());
    }
    return ZQUserDefaults::standardUserDefaults().storeObjectForKey(list, storageKey, error);
}

QVariantMap ExportItem::dictionary() const
{
    QVariantMap dictionary{{colorKey, iconColor}};
    put(dictionary, fileTypeKey, imageFileType);
    put(dictionary, widthKey, imageWidth);
    put(dictionary, heightKey, imageHeight);
    put(dictionary, percentageKey, imagePercentage);
    put(dictionary, qualityKey, imageQuality);
    if (archive) {
        dictionary.insert(archiveKey, true);
    }
    if (!namePattern.isEmpty()) {
        dictionary.insert(patternKey, namePattern);
    }
    return dictionary;
}

ExportItem ExportItem::exportItemWithDictionary(const QVariantMap &dictionary)
{
    ExportItem item;
    item.imageFileType = number(dictionary, fileTypeKey, 0, std::numeric_limits<int>::max());
    item.imageWidth = number(dictionary, widthKey, 1, mostPixels);
    item.imageHeight = number(dictionary, heightKey, 1, mostPixels);
    item.imagePercentage = number(dictionary, percentageKey, 1, mostPercent);
    item.imageQuality = number(dictionary, qualityKey, 1, mostQuality);
    item.iconColor = number(dictionary, colorKey, 0, std::numeric_limits<int>::max()).value_or(0);
    item.archive = dictionary.value(archiveKey).toBool();
    item.namePattern = dictionary.value(patternKey).toString();
    return item;
}

std::optional<QSizeF> ExportItem::imageSize() const
{
    return imageWidth || imageHeight ? std::optional(QSizeF(imageWidth.value_or(0), imageHeight.value_or(0)))
                                     : std::nullopt;
}

std::optional<double> ExportItem::imageSizePercentage() const
{
    return imagePercentage && !imageSize() ? std::optional(double(*imagePercentage)) : std::nullopt;
}

QString ExportItem::extensionString() const
{
    if (!imageFileType) {
        return zqLocalized("orig");
    }
    return zqFileTypeNamesItself(*imageFileType) ? zqExtensionOfFileType(*imageFileType) : QString();
}

QString ExportItem::sizeString() const
{
    if (imageWidth || imageHeight) {
        const QString automatic = zqLocalized("Auto");
        return zqFormat(QStringLiteral("%@x%@"), {imageWidth ? QString::number(*imageWidth) : automatic,
                                                  imageHeight ? QString::number(*imageHeight) : automatic});
    }
    return imagePercentage ? zqFormat(QStringLiteral("%@%%"), {QString::number(*imagePercentage)})
                           : zqLocalized("Original size");
}

QString ExportItem::iconName() const
{
    return iconColor >= 0 && iconColor <= violet ? QString::fromLatin1(iconNames.at(std::size_t(iconColor)))
                                                 : QString();
}

bool ExportItem::hasQuality(std::optional<int> imageFileType)
{
    return imageFileType && zqFileTypeHasQuality(*imageFileType);
}
