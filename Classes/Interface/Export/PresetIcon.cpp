#include "Classes/Interface/Export/PresetIcon.h"

#include "Classes/Export/ExportItem.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QFile>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QSvgRenderer>

namespace {

// Registered when it is first used, and once.
QString family()
{
    static const QString name = [] {
        ZQTheme::current(); // brings the resources in
        const int id = QFontDatabase::addApplicationFont(QStringLiteral(":/zelto/fonts/RobotoCondensed-Bold.ttf"));
        return QFontDatabase::applicationFontFamilies(id).value(0);
    }();
    return name;
}

struct Label
{
    int pointSize;
    double bottom; // above the lower edge
    double height;
    double shadow; // opacities
    double light;
};

constexpr Label extensionLabel{30, 60, 40, 0.5, 0.9};
constexpr Label sizeLabel{12, 16, 20, 0.35, 0.8};
constexpr QPointF archiveMark{20, 100}; // its lower left corner
constexpr QSizeF archiveMarkSize{106, 26};

void drawLabel(QPainter &painter, const QString &text, const Label &label)
{
    QFont font(family());
    font.setPixelSize(label.pointSize);
    font.setBold(true);
    font.setStyleStrategy(QFont::StyleStrategy(QFont::NoSubpixelAntialias | QFont::PreferAntialias));
    painter.setFont(font);
    const QString shown = QFontMetricsF(font).elidedText(text, Qt::ElideRight, PresetIcon::size.width());
    const double top = PresetIcon::size.height() - label.bottom - label.height;
    const QRectF place(0, top, PresetIcon::size.width(), label.height);
    painter.setPen(QColor::fromRgbF(0, 0, 0, float(label.shadow)));
    painter.drawText(place.translated(0, -1), Qt::AlignCenter | Qt::TextSingleLine, shown);
    painter.setPen(QColor::fromRgbF(1, 1, 1, float(label.light)));
    painter.drawText(place, Qt::AlignCenter | Qt::TextSingleLine, shown);
}

} // namespace

QImage PresetIcon::baseImage(const QString &name, QSize pixels)
{
    ZQTheme::current();
    QFile file(QStringLiteral(":/zelto/export/") + name + QStringLiteral(".svg"));
    if (name.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer(file.readAll()).render(&painter);
    return image;
}

QImage PresetIcon::dragImage(const ExportItem &preset, qreal scale)
{
    const QSize pixels = (QSizeF(size) * scale).toSize();
    QImage image = baseImage(preset.iconName(), pixels);
    if (image.isNull()) {
        image = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
    }
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(scale, scale);
    drawLabel(painter, preset.extensionString(), extensionLabel);
    drawLabel(painter, preset.sizeString(), sizeLabel);
    if (preset.archive) {
        const QPointF upperLeft(archiveMark.x(), size.height() - archiveMark.y() - archiveMarkSize.height());
        painter.drawImage(QRectF(upperLeft, archiveMarkSize),
                          baseImage(QStringLiteral("zipExportIconAddition"), (archiveMarkSize * scale).toSize()));
    }
    painter.end();
    image.setDevicePixelRatio(scale);
    return image;
}
