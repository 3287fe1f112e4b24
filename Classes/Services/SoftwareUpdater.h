#pragma once

#include "Classes/Application/ControllerInterfaces.h"

#include <QString>

// Knows where updates are announced. On this desktop the package manager installs them, so nothing is fetched: the
// check tells the person how to get a newer version.
class SoftwareUpdater : public SoftwareUpdating
{
public:
    bool areTestKeysHeld() const override;
    void configure(const QString &appCastURL) override { m_appCastURL = appCastURL; }
    void setAutomaticChecks(bool automatic) override { m_checksAutomatically = automatic; }

    QString appCastURL() const { return m_appCastURL; }
    bool checksAutomatically() const { return m_checksAutomatically; }

private:
    QString m_appCastURL;
    bool m_checksAutomatically = false;
};
