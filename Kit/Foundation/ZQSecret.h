#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

// A password on its way: all copies share one piece of memory, which is overwritten when the last of them goes. Never
// printed. Any thread.
class ZQSecret
{
public:
    ZQSecret() = default;
    ZQSecret(const QString &text); // what it is made of stays as it is: see `zqWipe`
    ZQSecret(const QByteArray &UTF8);
    bool operator==(const ZQSecret &other) const { return UTF8() == other.UTF8(); }

    bool isEmpty() const { return UTF8().isEmpty(); }
    // Shares the memory: it goes before the secret, and is not changed.
    QByteArray UTF8() const;

private:
    std::shared_ptr<const QByteArray> m_held;
};

// Overwrites what nobody shares with it, and empties it.
void zqWipe(QByteArray &bytes);
void zqWipe(QString &text);
