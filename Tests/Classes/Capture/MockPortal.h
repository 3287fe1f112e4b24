#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>

// The desktop's portals, as a test says, under their name on the session bus while this lives. It answers each call at
// once, as quick portals do: the caller may have the answer of its request before that of its call.
class MockPortal : public QDBusVirtualObject
{
    Q_OBJECT
public:
    MockPortal();
    ~MockPortal() override;

    struct Answer
    {
        uint response = 0;
        QVariantMap results = {};
    };
    std::function<Answer(const QString &method, const QVariantList &arguments)> answer;
    bool answersRequests = true;
    QStringList calls; // methods, in order

    void emitSignal(const QString &interface, const QString &name, const QVariantList &arguments);
    void leave(); // the name is nobody's then

    QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    QDBusConnection m_bus;
};
