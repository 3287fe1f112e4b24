#pragma once

#include "Classes/Interface/WindowCommand.h"
#include "Classes/Interface/WindowContext.h"

#include <QObject>

#include <memory>
#include <vector>

class BrowserViewController;
class CloudButton;
class CloudMenu;

// Sharing as the window has it: what is selected goes to the uploader, by the button, its menu, the keys or a preset
// that is dropped, and the button follows what the uploader announces. Main thread.
class CloudActions : public QObject
{
    Q_OBJECT
public:
    CloudActions(WindowContext &window, BrowserViewController &browser, CloudButton &button, QObject *parent = nullptr);

    void share(); // what is selected; or cancels what is being shared
    QList<WindowCommand> commands();
    CloudMenu &menu() { return *m_menu; }

Q_SIGNALS:
    void preferencesRequested();
    void changed(); // what can be done

private:
    void follow();

    WindowContext &m_window;
    BrowserViewController &m_browser;
    CloudButton &m_button;
    CloudMenu *m_menu;
    std::vector<std::shared_ptr<void>> m_tokens;
};
