#pragma once

#include "Classes/Application/ControllerInterfaces.h"

#include <QString>

// The session with the service that has one, and word for whoever draws the cloud menu that what it lists has changed.
// Main thread.
class CloudMenuViewController : public CloudMenuControlling
{
public:
    static inline const QString menuDidUpdate = QStringLiteral("CloudMenuDidUpdate"); // posted with no object

    void createSharedSession() override; // asks no account for anything
    void updateCloudMenu() override;     // a menu that is open follows, others read the list when they open
};
