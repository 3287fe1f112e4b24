#pragma once

#include "Classes/Application/ControllerInterfaces.h"

// The screen-capture controller, living in this process. Holds no status item and takes no keys by itself.
class ZeltoKunViewController : public ScreenCaptureControlling
{
public:
    void loadView() override { m_isLoaded = true; }
    bool isLoaded() const { return m_isLoaded; }

private:
    bool m_isLoaded = false;
};
