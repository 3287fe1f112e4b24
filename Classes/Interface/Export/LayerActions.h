#pragma once

#include "Classes/Interface/WindowCommand.h"
#include "Classes/Interface/WindowContext.h"

class BrowserViewController;

// The selected assets as the layers of one document. Main thread.
class LayerActions
{
public:
    LayerActions(WindowContext &window, BrowserViewController &browser) : m_window(window), m_browser(browser) {}

    void exportWithDialog();
    QList<WindowCommand> commands();

private:
    WindowContext &m_window;
    BrowserViewController &m_browser;
};
