#include "Classes/Interface/Export/DirectSaveSource.h"

#include <QGuiApplication>
#include <QSysInfo>
#include <QUrl>

#include <cstdlib>
#include <xcb/xcb.h>

namespace {

struct Freeing
{
    void operator()(void *reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, Freeing>;

constexpr quint32 longestAddress = 16384; // bytes; each byte of a path may be three there
constexpr quint8 bitsOfText = 8;

class XSource : public DirectSaveSource
{
public:
    explicit XSource(xcb_connection_t *connection) : m_connection(connection), m_property(atom(format.toLatin1())) {}

    void propose(const QString &name) override
    {
        m_window = owner();
        const QByteArray bytes = name.toUtf8();
        if (m_window != XCB_WINDOW_NONE) {
            xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, m_property, atom("text/plain"),
                                bitsOfText, quint32(bytes.size()), bytes.constData());
            xcb_flush(m_connection);
        }
    }

    QString address() override
    {
        if (m_window == XCB_WINDOW_NONE) {
            return {};
        }
        const auto asked = xcb_get_property(m_connection, false, m_window, m_property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                                            longestAddress / 4);
        const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_connection, asked, nullptr));
        if (!reply || reply->format != bitsOfText || reply->bytes_after > 0) {
            return {};
        }
        return pathOfAddress(QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                                        xcb_get_property_value_length(reply.get())));
    }

private:
    xcb_atom_t atom(const QByteArray &name) const
    {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            m_connection, xcb_intern_atom(m_connection, false, quint16(name.size()), name.constData()), nullptr));
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    // The toolkit's window that the drag goes by.
    xcb_window_t owner() const
    {
        const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
            m_connection, xcb_get_selection_owner(m_connection, atom("XdndSelection")), nullptr));
        return reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
    }

    xcb_connection_t *const m_connection;
    const xcb_atom_t m_property;
    xcb_window_t m_window = XCB_WINDOW_NONE;
};

} // namespace

std::unique_ptr<DirectSaveSource> DirectSaveSource::make()
{
    const auto *const x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 && x11->connection() ? std::make_unique<XSource>(x11->connection()) : nullptr;
}

QString DirectSaveSource::pathOfAddress(const QByteArray &address)
{
    QUrl url = QUrl::fromEncoded(address.trimmed(), QUrl::StrictMode);
    const QString host = url.host();
    if (!url.isLocalFile() || (!host.isEmpty() && host != QStringLiteral("localhost") &&
                               host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) != 0)) {
        return {};
    }
    url.setHost({});
    const QString path = url.toLocalFile();
    return path.startsWith(u'/') && !path.contains(QChar::Null) ? path : QString();
}
