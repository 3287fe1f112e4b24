#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>

// The desktop's way to start or wake a single application: org.freedesktop.Application. Main thread.
class DesktopActivation : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    struct Uses
    {
        std::function<void(const QStringList &paths)> open;  // none: only the window
        std::function<void(const QString &action)> doAction; // one of those in the application's desktop file
    };
    explicit DesktopActivation(Uses uses, QObject *parent = nullptr) : QObject(parent), m_uses(std::move(uses)) {}

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &uris, const QVariantMap &platformData);
    void ActivateAction(const QString &name, const QVariantList &parameters, const QVariantMap &platformData);

private:
    Uses m_uses;
};
