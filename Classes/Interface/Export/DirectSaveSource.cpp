#include "Classes/Interface/Export/DirectSaveSource.h"

#include <QSysInfo>
#include <QUrl>

namespace Protocol = XDirectSaveProtocol;

namespace {

constexpr quint32 longestAddress = 16384; // bytes; each byte of a path may be three there

class XSource : public DirectSaveSource
{
public:
    explicit XSource(xcb_connection_t *connection)
        : m_connection(connection), m_property(Protocol::atomNamed(connection, format.toLatin1()))
    {
    }

    void propose(const QString &name) override
    {
        // The toolkit's window that the drag goes by.
        m_window = Protocol::ownerOf(m_connection, Protocol::dragSelection(m_connection));
        if (m_window != XCB_WINDOW_NONE) {
            Protocol::writeText(m_connection, m_window, m_property, name.toUtf8());
        }
    }

    QString address() override
    {
        if (m_window == XCB_WINDOW_NONE) {
            return {};
        }
        const Protocol::Text text = Protocol::textOf(m_connection, m_window, m_property, longestAddress);
        return text.isCutOff ? QString() : pathOfAddress(text.bytes);
    }

private:
    xcb_connection_t *const m_connection;
    const xcb_atom_t m_property;
    xcb_window_t m_window = XCB_WINDOW_NONE;
};

} // namespace

std::unique_ptr<DirectSaveSource> DirectSaveSource::make()
{
    xcb_connection_t *const connection = Protocol::connection();
    return connection ? std::make_unique<XSource>(connection) : nullptr;
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
