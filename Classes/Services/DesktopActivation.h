#pragma once

#include "Classes/Application/ControllerInterfaces.h"

#include <QObject>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <functional>

// The desktop's way to start or wake a single application: org.freedesktop.Application.
class DesktopActivation : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    DesktopActivation(std::function<void(const QStringList &)> open, QObject *parent)
        : QObject(parent), m_open(std::move(open))
    {
    }

public Q_SLOTS:
    void Activate(const QVariantMap &) { m_open({}); }
    void Open(const QStringList &uris, const QVariantMap &)
    {
        QStringList paths;
        for (const QString &uri : uris) {
            const QUrl url(uri);
            if (ProtocolHandling::isProtocolURL(uri)) {
                paths.append(uri); // it knows more spellings than addresses have
            } else if (url.isLocalFile()) {
                paths.append(url.toLocalFile());
            }
        }
        m_open(paths);
    }
    void ActivateAction(const QString &, const QVariantList &, const QVariantMap &) { m_open({}); }

private:
    std::function<void(const QStringList &)> m_open;
};
