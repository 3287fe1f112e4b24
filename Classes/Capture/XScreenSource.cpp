#include "Classes/Capture/XScreenSource.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <QGuiApplication>
#include <QPainter>
#include <QRegion>
#include <QScreen>
#include <QTimer>

#include <xcb/composite.h>
#include <xcb/randr.h>
#include <xcb/shape.h>

#include <algorithm>
#include <chrono>

namespace {

const QString errorDomain = QStringLiteral("ScreenCapture");
constexpr std::chrono::milliseconds drawingTime(60); // until a program drew what others covered
constexpr int mostLooks = 12;

ZQError errorSaying(const QString &text)
{
    return ZQError::with(errorDomain, 1, text);
}

ZQError goneError()
{
    return errorSaying(zqLocalized("That window was closed or hidden before it could be taken. Choose another one."));
}

ZQError unreadableError()
{
    return errorSaying(zqLocalized("The display gave no picture. Try again; if it stays so, log out and in."));
}

qint64 area(const QRect &rect)
{
    return rect.isEmpty() ? 0 : qint64(rect.width()) * rect.height();
}

// The toolkit leaves a screen's corner where the display has it, and divides its size.
const QScreen *toolkitScreenAt(const QPoint &corner)
{
    const auto screens = qGuiApp ? QGuiApplication::screens() : QList<QScreen *>();
    const auto found = std::find_if(screens.begin(), screens.end(), [&corner](const QScreen *screen) {
        return QRect(screen->geometry().topLeft(), screen->geometry().size() * screen->devicePixelRatio())
            .contains(corner);
    });
    return found == screens.end() ? nullptr : *found;
}

ScreenInfo screenInfo(const QString &name, const QRect &pixels)
{
    ScreenInfo info{name, pixels, pixels, 1};
    if (const QScreen *const screen = toolkitScreenAt(pixels.topLeft())) {
        info.scale = screen->devicePixelRatio();
        info.frame = screen->geometry().topLeft() == pixels.topLeft() &&
                             qRound(pixels.width() / info.scale) == screen->geometry().width()
                         ? screen->geometry()
                         : QRect(pixels.topLeft(), (QSizeF(pixels.size()) / info.scale).toSize());
    }
    return info;
}

} // namespace

// Has the server keep a window's pixels apart from the screen's for as long as this lives.
class XScreenSource::Redirection
{
public:
    Redirection(ZQXConnection &connection, xcb_window_t window) : m_connection(connection), m_window(window)
    {
        m_isDone = m_connection.wasDone(
            xcb_composite_redirect_window_checked(m_connection.get(), m_window, XCB_COMPOSITE_REDIRECT_AUTOMATIC));
    }
    ~Redirection()
    {
        if (m_isDone) {
            m_connection.wasDone(xcb_composite_unredirect_window_checked(m_connection.get(), m_window,
                                                                         XCB_COMPOSITE_REDIRECT_AUTOMATIC));
        }
    }
    Redirection(const Redirection &) = delete;
    Redirection &operator=(const Redirection &) = delete;

private:
    ZQXConnection &m_connection;
    const xcb_window_t m_window;
    bool m_isDone = false;
};

struct XScreenSource::WindowShot
{
    quint32 number;
    Taken taken;
    std::unique_ptr<Redirection> redirection = {};
    QImage last = {};
    int looks = 0;
};

XScreenSource::~XScreenSource() = default;

XScreenSource::XScreenSource(std::unique_ptr<ZQXConnection> connection)
    : m_connection(std::move(connection)), m_windows(std::make_unique<XWindows>(*m_connection)),
      m_pixels(std::make_unique<XPixels>(*m_connection))
{
    xcb_connection_t *const display = m_connection->get();
    const auto isThere = [display](xcb_extension_t &extension) {
        const auto *const data = xcb_get_extension_data(display, &extension);
        return data && data->present != 0;
    };
    if (isThere(xcb_composite_id)) { // pixels of windows come with 0.2
        const ZQXReply<xcb_composite_query_version_reply_t> version(
            xcb_composite_query_version_reply(display, xcb_composite_query_version(display, 0, 4), nullptr));
        m_hasComposite = version && (version->major_version > 0 || version->minor_version >= 2);
    }
    if (isThere(xcb_randr_id)) { // monitors come with 1.5
        const ZQXReply<xcb_randr_query_version_reply_t> version(
            xcb_randr_query_version_reply(display, xcb_randr_query_version(display, 1, 5), nullptr));
        m_hasMonitors = version && (version->major_version > 1 || version->minor_version >= 5);
    }
    m_hasShape = isThere(xcb_shape_id);
}

QRect XScreenSource::rootRect() const
{
    const auto cookie = xcb_get_geometry(m_connection->get(), m_connection->root());
    const ZQXReply<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(m_connection->get(), cookie, nullptr));
    return root ? QRect(0, 0, root->width, root->height) : QRect();
}

QList<ScreenInfo> XScreenSource::screens() const
{
    QList<ScreenInfo> screens;
    if (m_hasMonitors) {
        const auto cookie = xcb_randr_get_monitors(m_connection->get(), m_connection->root(), 1);
        const ZQXReply<xcb_randr_get_monitors_reply_t> monitors(
            xcb_randr_get_monitors_reply(m_connection->get(), cookie, nullptr));
        for (auto each = monitors ? xcb_randr_get_monitors_monitors_iterator(monitors.get())
                                  : xcb_randr_monitor_info_iterator_t{};
             each.rem > 0; xcb_randr_monitor_info_next(&each)) {
            const auto asked = xcb_get_atom_name(m_connection->get(), each.data->name);
            const ZQXReply<xcb_get_atom_name_reply_t> name(
                xcb_get_atom_name_reply(m_connection->get(), asked, nullptr));
            const QRect pixels(each.data->x, each.data->y, each.data->width, each.data->height);
            const bool isMirrored = std::any_of(screens.begin(), screens.end(),
                                                [&](const ScreenInfo &screen) { return screen.pixelFrame == pixels; });
            if (!pixels.isEmpty() && !isMirrored) {
                screens.append(screenInfo(name ? QString::fromUtf8(xcb_get_atom_name_name(name.get()),
                                                                   xcb_get_atom_name_name_length(name.get()))
                                               : QString(),
                                          pixels));
            }
        }
    }
    if (screens.isEmpty() && !rootRect().isEmpty()) {
        screens.append(screenInfo({}, rootRect()));
    }
    return screens;
}

QList<QVariantMap> XScreenSource::onScreenWindows() const
{
    m_connection->dropEvents();
    QList<QVariantMap> descriptions;
    for (const XWindow &window : m_windows->onScreen()) {
        descriptions.append(window.description());
    }
    return descriptions;
}

std::optional<QVariantMap> XScreenSource::windowDescription(quint32 number) const
{
    const auto window = m_windows->window(number);
    return window ? std::optional(window->description()) : std::nullopt;
}

double XScreenSource::scaleAt(const QRect &rect) const
{
    const QList<ScreenInfo> all = screens();
    const auto best = std::max_element(all.begin(), all.end(), [&rect](const ScreenInfo &a, const ScreenInfo &b) {
        return area(a.pixelFrame & rect) < area(b.pixelFrame & rect);
    });
    return best == all.end() ? 1 : best->scale;
}

void XScreenSource::give(QImage image, const QRect &rect, const Taken &taken) const
{
    if (image.isNull()) {
        taken({}, m_connection->isAlive() ? unreadableError()
                                          : errorSaying(zqLocalized("The display is gone. Start Zelto again.")));
        return;
    }
    image.setDevicePixelRatio(scaleAt(rect));
    taken(image, {});
}

QImage XScreenSource::screenPixels(const QRect &rect) const
{
    const QRect there = rect & rootRect();
    const QImage pixels = m_pixels->image(m_connection->root(), there, m_connection->screen().root_visual);
    QRegion missing(rect);
    for (const ScreenInfo &screen : screens()) {
        missing -= screen.pixelFrame;
    }
    if (pixels.isNull() || (missing.isEmpty() && there == rect)) {
        return pixels;
    }
    QImage image(rect.size(), QImage::Format_ARGB32_Premultiplied);
    if (!image.isNull()) {
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.translate(-rect.topLeft());
        painter.setClipRegion(QRegion(there) - missing);
        painter.drawImage(there.topLeft(), pixels);
    }
    return image;
}

void XScreenSource::captureRect(const QRect &rect, Taken taken)
{
    m_connection->dropEvents();
    QRegion seen;
    for (const ScreenInfo &screen : screens()) {
        seen += screen.pixelFrame;
    }
    if (!seen.intersects(rect)) {
        taken({}, errorSaying(zqLocalized("That area lies on no screen. Choose another one.")));
        return;
    }
    constexpr qint64 mostPixels = qint64(1) << 28; // far outside of all screens there is nothing but empty memory
    const QRect within = area(rect) > mostPixels ? rect & seen.boundingRect() : rect;
    give(screenPixels(within), within, taken);
}

void XScreenSource::captureAllScreens(Taken taken)
{
    QRect all;
    for (const ScreenInfo &screen : screens()) {
        all |= screen.pixelFrame;
    }
    captureRect(all, std::move(taken));
}

bool XScreenSource::hasCompositingManager() const
{
    const xcb_atom_t selection = m_connection->atom("_NET_WM_CM_S" + QByteArray::number(m_connection->screenNumber()));
    const auto cookie = xcb_get_selection_owner(m_connection->get(), selection);
    const ZQXReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(m_connection->get(), cookie, nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

bool XScreenSource::isCovered(const XWindow &window) const
{
    const auto cookie = xcb_query_tree(m_connection->get(), m_connection->root());
    const ZQXReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(m_connection->get(), cookie, nullptr));
    if (!tree || !rootRect().contains(window.bounds)) {
        return true;
    }
    const xcb_window_t *const first = xcb_query_tree_children(tree.get());
    const xcb_window_t *const last = first + xcb_query_tree_children_length(tree.get());
    const xcb_window_t *above = std::find(first, last, window.frame);
    while (above != last && ++above != last) {
        const ZQXReply<xcb_get_window_attributes_reply_t> is(xcb_get_window_attributes_reply(
            m_connection->get(), xcb_get_window_attributes(m_connection->get(), *above), nullptr));
        const ZQXReply<xcb_get_geometry_reply_t> place(
            xcb_get_geometry_reply(m_connection->get(), xcb_get_geometry(m_connection->get(), *above), nullptr));
        const bool isSeen =
            is && place && is->map_state == XCB_MAP_STATE_VIEWABLE && is->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
        if (isSeen && window.bounds.intersects({place->x, place->y, place->width + 2 * place->border_width,
                                                place->height + 2 * place->border_width})) {
            return true;
        }
    }
    return false;
}

QImage XScreenSource::shaped(QImage image, const XWindow &window, const QPoint &origin) const
{
    if (!m_hasShape) {
        return image;
    }
    const auto cookie = xcb_shape_get_rectangles(m_connection->get(), window.frame, XCB_SHAPE_SK_BOUNDING);
    const ZQXReply<xcb_shape_get_rectangles_reply_t> shape(
        xcb_shape_get_rectangles_reply(m_connection->get(), cookie, nullptr));
    if (!shape) {
        return image;
    }
    QRegion region;
    const xcb_rectangle_t *const rects = xcb_shape_get_rectangles_rectangles(shape.get());
    for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(shape.get()); ++i) {
        region += QRect(rects[i].x, rects[i].y, rects[i].width, rects[i].height);
    }
    // Counted from the window's inside; the picture may begin at its border.
    const QRegion outside = QRegion(image.rect()) - region.translated(-origin);
    if (region.isEmpty() || outside.isEmpty()) {
        return image;
    }
    image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Clear);
    painter.setClipRegion(outside);
    painter.fillRect(image.rect(), Qt::transparent);
    return image;
}

QImage XScreenSource::windowPixels(const XWindow &window) const
{
    xcb_connection_t *const display = m_connection->get();
    const ZQXReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(display, xcb_get_window_attributes(display, window.frame), nullptr));
    const ZQXReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(display, xcb_get_geometry(display, window.frame), nullptr));
    const xcb_pixmap_t pixmap = xcb_generate_id(display);
    if (!attributes || !geometry ||
        !m_connection->wasDone(xcb_composite_name_window_pixmap_checked(display, window.frame, pixmap))) {
        return {};
    }
    const QRect wanted = window.bounds.translated(-window.frameRect.topLeft());
    const QImage image = m_pixels->image(pixmap, wanted, attributes->visual);
    xcb_free_pixmap(display, pixmap);
    xcb_flush(display);
    const int border = geometry->border_width;
    return image.isNull() ? image : shaped(image, window, wanted.topLeft() - QPoint(border, border));
}

void XScreenSource::takeWhenSettled(const std::shared_ptr<WindowShot> &shot)
{
    QTimer::singleShot(drawingTime, &m_context, [this, waiting = std::weak_ptr(shot)] {
        const auto due = waiting.lock();
        const auto window = m_windows->window(due->number);
        const QImage image = window ? windowPixels(*window) : QImage();
        ++due->looks;
        if (!image.isNull() && image != due->last && due->looks < mostLooks) {
            due->last = image;
            takeWhenSettled(due);
            return;
        }
        m_shots.removeOne(due);
        due->redirection.reset();
        if (!window) {
            due->taken({}, goneError());
        } else {
            give(image, window->bounds, due->taken);
        }
    });
}

void XScreenSource::captureWindow(quint32 number, Taken taken)
{
    m_connection->dropEvents();
    const auto window = m_windows->window(number);
    if (!window) {
        taken({}, goneError());
        return;
    }
    if (!m_hasComposite) {
        give(screenPixels(window->bounds), window->bounds, taken);
        return;
    }
    auto redirection = hasCompositingManager() ? nullptr : std::make_unique<Redirection>(*m_connection, window->frame);
    if (redirection && isCovered(*window)) {
        m_shots.append(std::make_shared<WindowShot>(WindowShot{number, std::move(taken), std::move(redirection)}));
        takeWhenSettled(m_shots.last());
        return;
    }
    const QImage image = windowPixels(*window);
    if (image.isNull() && !m_windows->window(number)) {
        taken({}, goneError());
        return;
    }
    give(image.isNull() ? screenPixels(window->bounds) : image, window->bounds, taken);
}
