#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <functional>
#include <memory>

// The desktop's portals: services of the session bus through which a program asks for what only the desktop may give,
// and which may ask the person first. Main thread.
namespace ZQPortal {

inline const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
inline const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
inline const QString errorDomain = QStringLiteral("Portal");
enum ErrorCode { NoBus = 1, NoPortal, Refused, Ended };

QString newToken(); // for the options that name requests and sessions

} // namespace ZQPortal

// One request of a portal: answered once, when the person or the desktop has decided, however long that takes, or when
// the service is gone. Let go before that it is withdrawn and answers nothing. Held by `ZQPortalRequestRef`, which may
// be let go in the answer. Main thread.
class ZQPortalRequest : public QObject
{
    Q_OBJECT
public:
    // `isGranted` false without an error: the person said no.
    using Answer = std::function<void(bool isGranted, const QVariantMap &results, const ZQError &error)>;

    // Calls `method` with `arguments` and, as the last one, `options` with the token of this request.
    ZQPortalRequest(const QString &interface, const QString &method, const QVariantList &arguments, QVariantMap options,
                    Answer answer, QDBusConnection bus = QDBusConnection::sessionBus());
    void withdraw();

private Q_SLOTS:
    void didAnswer(uint response, const QVariantMap &results);

private:
    void listenAt(const QString &path);
    void end(bool isGranted, const QVariantMap &results, const ZQError &error);

    QDBusConnection m_bus;
    QString m_path;
    Answer m_answer;
};

struct ZQPortalRequestRelease
{
    void operator()(ZQPortalRequest *request) const
    {
        request->withdraw();
        request->deleteLater();
    }
};
using ZQPortalRequestRef = std::unique_ptr<ZQPortalRequest, ZQPortalRequestRelease>;
