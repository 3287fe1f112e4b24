#include "Classes/Capture/XWindows.h"

#include <QFile>
#include <QHash>
#include <QMargins>
#include <QSet>
#include <QSysInfo>

#include <algorithm>
#include <array>

namespace {

constexpr int panelLayer = 20;

struct LayerOfType
{
    const char *type;
    int layer;
};
constexpr std::array layers{
    LayerOfType{"_NET_WM_WINDOW_TYPE_DESKTOP", -1},
    LayerOfType{"_NET_WM_WINDOW_TYPE_DOCK", panelLayer},
    LayerOfType{"_NET_WM_WINDOW_TYPE_TOOLBAR", panelLayer},
    LayerOfType{"_NET_WM_WINDOW_TYPE_NOTIFICATION", panelLayer + 5},
    LayerOfType{"_NET_WM_WINDOW_TYPE_MENU", 101},
    LayerOfType{"_NET_WM_WINDOW_TYPE_DROPDOWN_MENU", 101},
    LayerOfType{"_NET_WM_WINDOW_TYPE_POPUP_MENU", 101},
    LayerOfType{"_NET_WM_WINDOW_TYPE_COMBO", 101},
    LayerOfType{"_NET_WM_WINDOW_TYPE_TOOLTIP", 102},
    LayerOfType{"_NET_WM_WINDOW_TYPE_DND", 103},
};
constexpr int layerAbove = 3;
constexpr xcb_window_t none = XCB_WINDOW_NONE;

// In the order of the properties that tell them: left, right, top, bottom. None where they cannot be true.
std::optional<QMargins> marginsFrom(const QList<quint32> &numbers, const QSize &size)
{
    constexpr quint32 most = 1000;
    const bool isSensible = numbers.size() == 4 &&
                            std::all_of(numbers.begin(), numbers.end(), [](quint32 number) { return number < most; });
    if (!isSensible) {
        return std::nullopt;
    }
    const auto at = [&numbers](qsizetype index) { return int(numbers[index]); };
    const QMargins margins(at(0), at(2), at(1), at(3));
    const bool leavesSome =
        margins.left() + margins.right() < size.width() && margins.top() + margins.bottom() < size.height();
    return leavesSome ? std::optional(margins) : std::nullopt;
}

QString commandOfProcess(quint32 pid)
{
    QFile file(QStringLiteral("/proc/%1/comm").arg(pid));
    constexpr qint64 longest = 64;
    return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.read(longest)).trimmed() : QString();
}

} // namespace

QVariantMap XWindow::description() const
{
    QVariantMap map{{QStringLiteral("kCGWindowNumber"), number},
                    {QStringLiteral("kCGWindowLayer"), layer},
                    {QStringLiteral("kCGWindowBounds"), bounds},
                    {QStringLiteral("kCGWindowOwnerName"), owner}};
    if (!title.isEmpty()) {
        map.insert(QStringLiteral("kCGWindowName"), title);
    }
    return map;
}

QList<xcb_window_t> XWindows::children(xcb_window_t parent)
{
    const auto cookie = xcb_query_tree(m_connection.get(), parent);
    const ZQXReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(m_connection.get(), cookie, nullptr));
    if (!tree) {
        return {};
    }
    const xcb_window_t *const first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

std::optional<XWindows::Attributes> XWindows::attributes(xcb_window_t window)
{
    const auto cookie = xcb_get_window_attributes(m_connection.get(), window);
    const ZQXReply<xcb_get_window_attributes_reply_t> reply(
        xcb_get_window_attributes_reply(m_connection.get(), cookie, nullptr));
    if (!reply) {
        return std::nullopt;
    }
    return Attributes{reply->map_state == XCB_MAP_STATE_VIEWABLE, reply->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      reply->override_redirect != 0};
}

std::optional<QPoint> XWindows::originOnRoot(xcb_window_t window)
{
    const auto cookie = xcb_translate_coordinates(m_connection.get(), window, m_connection.root(), 0, 0);
    const ZQXReply<xcb_translate_coordinates_reply_t> reply(
        xcb_translate_coordinates_reply(m_connection.get(), cookie, nullptr));
    return reply ? std::optional(QPoint(reply->dst_x, reply->dst_y)) : std::nullopt;
}

std::optional<QRect> XWindows::outerRect(xcb_window_t window, const QPoint &innerOrigin)
{
    const auto cookie = xcb_get_geometry(m_connection.get(), window);
    const ZQXReply<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(m_connection.get(), cookie, nullptr));
    if (!reply) {
        return std::nullopt;
    }
    const int border = reply->border_width;
    return QRect(innerOrigin, QSize(reply->width, reply->height)).adjusted(-border, -border, border, border);
}

std::optional<xcb_window_t> XWindows::frameOf(xcb_window_t window)
{
    constexpr int deepest = 8;
    for (int depth = 0; depth < deepest; ++depth) {
        const auto cookie = xcb_query_tree(m_connection.get(), window);
        const ZQXReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(m_connection.get(), cookie, nullptr));
        if (!tree || tree->parent == XCB_WINDOW_NONE) {
            return std::nullopt;
        }
        if (tree->parent == m_connection.root()) {
            return window;
        }
        window = tree->parent;
    }
    return std::nullopt;
}

std::optional<xcb_window_t> XWindows::clientWithin(xcb_window_t frame, int depth)
{
    if (!m_connection.numbers(frame, "WM_STATE").isEmpty()) {
        return frame;
    }
    for (const xcb_window_t child : depth > 0 ? children(frame) : QList<xcb_window_t>()) {
        if (const auto client = clientWithin(child, depth - 1)) {
            return client;
        }
    }
    return std::nullopt;
}

bool XWindows::isHidden(xcb_window_t client)
{
    constexpr quint32 everyDesktop = 0xffffffff;
    if (m_connection.numbers(client, "_NET_WM_STATE").contains(m_connection.atom("_NET_WM_STATE_HIDDEN"))) {
        return true;
    }
    const QList<quint32> desktop = m_connection.numbers(client, "_NET_WM_DESKTOP");
    const QList<quint32> current = m_connection.numbers(m_connection.root(), "_NET_CURRENT_DESKTOP");
    return !desktop.isEmpty() && !current.isEmpty() && desktop.first() != everyDesktop &&
           desktop.first() != current.first();
}

int XWindows::layerOf(xcb_window_t client)
{
    for (const quint32 type : m_connection.numbers(client, "_NET_WM_WINDOW_TYPE")) { // the best known one first
        for (const LayerOfType &entry : layers) {
            if (type == m_connection.atom(entry.type)) {
                return entry.layer;
            }
        }
    }
    const bool isAbove =
        m_connection.numbers(client, "_NET_WM_STATE").contains(m_connection.atom("_NET_WM_STATE_ABOVE"));
    return isAbove ? layerAbove : 0;
}

QString XWindows::ownerOf(xcb_window_t client)
{
    const QList<QByteArray> names = m_connection.bytes(client, "WM_CLASS").split('\0'); // instance and class
    for (const qsizetype index : {1, 0}) {
        if (names.size() > index && !names[index].isEmpty()) {
            return QString::fromUtf8(names[index]);
        }
    }
    const QList<quint32> pid = m_connection.numbers(client, "_NET_WM_PID");
    const QByteArray machine = m_connection.bytes(client, "WM_CLIENT_MACHINE");
    const bool isHere = machine.isEmpty() || machine == QSysInfo::machineHostName().toUtf8();
    return pid.isEmpty() || !isHere ? QString() : commandOfProcess(pid.first());
}

void XWindows::setDescription(XWindow &window)
{
    QByteArray title = m_connection.bytes(window.number, "_NET_WM_NAME");
    window.title =
        title.isEmpty() ? QString::fromLatin1(m_connection.bytes(window.number, "WM_NAME")) : QString::fromUtf8(title);
    window.owner = ownerOf(window.number);
    window.layer = layerOf(window.number);
}

// Its bounds: what the window manager says it puts around the window, since its own window may be wider; of one that
// draws its frame itself, without the shadow that is part of it.
bool XWindows::setPlace(XWindow &window)
{
    const auto frameOrigin = originOnRoot(window.frame);
    const auto frame = frameOrigin ? outerRect(window.frame, *frameOrigin) : std::nullopt;
    const auto origin = originOnRoot(window.number);
    const auto outer = origin ? outerRect(window.number, *origin) : std::nullopt;
    if (!frame || !outer) {
        return false;
    }
    window.frameRect = *frame;
    const auto shadow = marginsFrom(m_connection.numbers(window.number, "_GTK_FRAME_EXTENTS"), outer->size());
    const auto around =
        marginsFrom(m_connection.numbers(window.number, "_NET_FRAME_EXTENTS"), frame->size() + outer->size());
    if (shadow) {
        window.bounds = outer->marginsRemoved(*shadow);
    } else if (window.frame != window.number && around) {
        window.bounds = outer->marginsAdded(*around) & *frame;
    } else {
        window.bounds = *frame;
    }
    return !window.bounds.isEmpty();
}

std::optional<XWindow> XWindows::managed(xcb_window_t client)
{
    const auto is = attributes(client);
    XWindow window;
    window.number = client;
    window.frame = is && is->isViewable ? frameOf(client).value_or(none) : none;
    if (window.frame == XCB_WINDOW_NONE || isHidden(client) || !setPlace(window)) {
        return std::nullopt;
    }
    setDescription(window);
    return window;
}

// Those of programs that keep their window from the window manager (its own helpers, which nobody sees, name no
// program), and all of them where there is none.
std::optional<XWindow> XWindows::unmanaged(xcb_window_t top, bool hasClientList)
{
    constexpr QSize smallest(100, 100);
    constexpr int deepest = 3;
    const auto is = attributes(top);
    if (!is || !is->isViewable || !is->hasPixels || (hasClientList && !is->isOverrideRedirect)) {
        return std::nullopt;
    }
    XWindow window;
    window.frame = top;
    window.number = is->isOverrideRedirect ? top : clientWithin(top, deepest).value_or(top);
    if (!setPlace(window)) {
        return std::nullopt;
    }
    setDescription(window);
    const bool isPicture = window.bounds.width() >= smallest.width() && window.bounds.height() >= smallest.height() &&
                           !window.owner.isEmpty();
    return isPicture || !is->isOverrideRedirect ? std::optional(window) : std::nullopt;
}

QList<XWindow> XWindows::onScreen()
{
    const QList<xcb_window_t> tops = children(m_connection.root()); // back to front
    const QList<quint32> clients = m_connection.numbers(m_connection.root(), "_NET_CLIENT_LIST_STACKING");
    QHash<xcb_window_t, XWindow> byFrame;
    QSet<xcb_window_t> left(tops.begin(), tops.end());
    for (const quint32 client : clients) {
        if (const auto window = managed(client)) {
            byFrame.insert(window->frame, *window);
        } else {
            left.remove(frameOf(client).value_or(client));
        }
    }
    QList<XWindow> windows;
    for (auto top = tops.rbegin(); top != tops.rend(); ++top) {
        if (const auto found = byFrame.constFind(*top); found != byFrame.constEnd()) {
            windows.append(*found);
        } else if (left.contains(*top)) {
            if (const auto window = unmanaged(*top, !clients.isEmpty())) {
                windows.append(*window);
            }
        }
    }
    return windows;
}

std::optional<XWindow> XWindows::window(quint32 number)
{
    return managed(number);
}
