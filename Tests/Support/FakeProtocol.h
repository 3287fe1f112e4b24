#pragma once

#include "Classes/Application/ControllerInterfaces.h"

#include <QStringList>

// Keeps the addresses that it is to handle.
class FakeProtocol : public ProtocolHandling
{
public:
    explicit FakeProtocol(QStringList &urls) : m_urls(urls) {}
    void handleURL(const QString &url) override { m_urls.append(url); }

private:
    QStringList &m_urls;
};
