#pragma once

#include "Classes/Interface/WindowCommand.h"
#include "Classes/Interface/WindowContext.h"

class BrowserViewController;

// Importing by command: through a dialogue or from the clipboard, into what the browser shows when that takes items,
// else into the library. Main thread.
class ImportActions
{
public:
    ImportActions(WindowContext &window, BrowserViewController &browser) : m_window(window), m_browser(browser) {}

    void importWithDialog();
    void pasteFromClipboard();
    QList<WindowCommand> commands();

private:
    // What the browser shows when `takes` says so, else the library.
    ZQRef<ZQSidebarBaseItem> target(bool (*takes)(const ZQSidebarBaseItem *)) const;
    void tellWhereItGoes(const ZQSidebarBaseItem *into) const; // when that is not what the browser shows

    WindowContext &m_window;
    BrowserViewController &m_browser;
};
