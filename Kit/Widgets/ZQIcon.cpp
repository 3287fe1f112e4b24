#include "Kit/Widgets/ZQIcon.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace {

QString resourcePath(const QString &name)
{
    return QStringLiteral(":/zelto/icons/") + name + QStringLiteral(".svg");
}

QByteArray svgFor(const QString &name)
{
    static QHash<QString, QByteArray> cache;
    auto found = cache.constFind(name);
    if (found == cache.constEnd()) {
        ZQTheme::current(); // brings the resources in
        QFile file(resourcePath(name));
        found = cache.insert(name, file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
    }
    return *found;
}

QPixmap pixmapFor(const QString &name, const QColor &color, const QSize &pixels)
{
    const QString key = QStringLiteral("zqicon/%1/%2/%3x%4")
                            .arg(name, color.name(QColor::HexArgb))
                            .arg(pixels.width())
                            .arg(pixels.height());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) {
        return pixmap;
    }
    QByteArray svg = svgFor(name);
    pixmap = QPixmap(pixels);
    pixmap.fill(Qt::transparent);
    if (!svg.isEmpty()) {
        svg.replace("currentColor", color.name(QColor::HexRgb).toLatin1());
        QSvgRenderer renderer(svg);
        QPainter painter(&pixmap);
        painter.setOpacity(color.alphaF());
        renderer.render(&painter);
    }
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

class LineIconEngine : public QIconEngine
{
public:
    LineIconEngine(QString name, ZQColorRole role, ZQColorRole checkedRole, ZQColorRole selectedRole)
        : m_name(std::move(name)), m_role(role), m_checkedRole(checkedRole), m_selectedRole(selectedRole)
    {
    }
    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        ZQIcon::paint(*painter, rect, m_name, color(mode, state));
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return pixmapFor(m_name, color(mode, state), size);
    }
    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State state, qreal scale) override
    {
        QPixmap result = pixmapFor(m_name, color(mode, state), size);
        result.setDevicePixelRatio(scale);
        return result;
    }
    QIconEngine *clone() const override { return new LineIconEngine(*this); }

private:
    QColor color(QIcon::Mode mode, QIcon::State state) const
    {
        QColor result = zqColor(mode == QIcon::Selected ? m_selectedRole : state == QIcon::On ? m_checkedRole : m_role);
        if (mode == QIcon::Disabled) {
            result.setAlphaF(0.45F);
        }
        return result;
    }

    QString m_name;
    ZQColorRole m_role;
    ZQColorRole m_checkedRole;
    ZQColorRole m_selectedRole;
};

} // namespace

QIcon ZQIcon::icon(const QString &name, ZQColorRole role, ZQColorRole checkedRole, ZQColorRole selectedRole)
{
    return QIcon(new LineIconEngine(name, role, checkedRole, selectedRole));
}

void ZQIcon::paint(QPainter &painter, const QRectF &rect, const QString &name, const QColor &color)
{
    const qreal ratio = painter.device()->devicePixelRatioF();
    const QSize pixels = (rect.size() * ratio).toSize();
    if (pixels.isEmpty()) {
        return;
    }
    QPixmap pixmap = pixmapFor(name, color, pixels);
    pixmap.setDevicePixelRatio(ratio);
    painter.drawPixmap(rect.topLeft(), pixmap);
}

QIcon ZQIcon::application()
{
    ZQTheme::current();
    QFile file(QStringLiteral(":/zelto/application.svg"));
    QSvgRenderer renderer(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128, 256}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QStringList ZQIcon::names()
{
    ZQTheme::current();
    QStringList result;
    for (const QString &file : QDir(QStringLiteral(":/zelto/icons")).entryList()) {
        result.append(file.chopped(4));
    }
    return result;
}
