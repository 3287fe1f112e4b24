#pragma once

#include "Classes/Editing/SidebarTargetRules.h"
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
    // Where files go that come by a command.
    ZQRef<ZQSidebarBaseItem> targetForFiles(const QStringList &paths) const { return target(forFiles(paths)); }
    QList<WindowCommand> commands();

private:
    void link(const QList<ZQObjectID> &items); // of this library, to what is shown
    using Rule = std::function<SidebarTargetRules::Answer(const ZQSidebarBaseItem *target)>;
    static Rule forFiles(const QStringList &paths);
    // What the browser shows when that takes it, else the library, which is told.
    ZQRef<ZQSidebarBaseItem> target(const Rule &rule) const;

    WindowContext &m_window;
    BrowserViewController &m_browser;
};
