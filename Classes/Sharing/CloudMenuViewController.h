#pragma once

#include "Classes/Application/ControllerInterfaces.h"

// The cloud session and its menu. Without an account there is no session and nothing to list.
class CloudMenuViewController : public CloudMenuControlling
{
public:
    void createSharedSession() override { m_hasSession = false; }
    void updateCloudMenu() override {}
    bool hasSession() const { return m_hasSession; }

private:
    bool m_hasSession = false;
};
