#pragma once

#include "Classes/Application/ControllerInterfaces.h"

#include <QObject>

// Keeps crash reports on this machine, where the desktop's own crash handler collects them; nothing is sent anywhere.
// Asks for the application's log once, when the event loop is next free after `start`.
class CrashReporter : public QObject, public CrashReporting
{
    Q_OBJECT
public:
    void start(Callbacks callbacks, bool automaticSubmission) override;

private:
    Callbacks m_callbacks;
    bool m_submitsAutomatically = false;
};
