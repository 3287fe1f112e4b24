#pragma once

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Content/SavedSearchText.h"
#include "Classes/Editing/SidebarCommands.h"
#include "Classes/Interface/WindowCommand.h"
#include "Classes/Interface/WindowContext.h"

#include <QObject>

class BrowserViewController;
class ProjectsSidebarViewController;
class QLineEdit;

// Smart folders as the window makes and changes them: what is saved is the search with the place where it was typed, as
// far as a text can say that place, and where the smart folder finds something else than was shown, the person is told
// right afterwards. Main thread.
class SavedSearchActions : public QObject
{
    Q_OBJECT
public:
    // `search`: the field.
    SavedSearchActions(WindowContext &window, BrowserViewController &browser, ProjectsSidebarViewController &sidebar,
                       QLineEdit &search, QObject *parent = nullptr);

    void saveSearch();   // as a new smart folder, whose name is then edited
    void editSearch();   // puts the text of the smart folder that is shown into the field
    void updateSearch(); // the smart folder that is shown finds what is shown from now on
    QList<WindowCommand> commands();

Q_SIGNALS:
    void changed();          // what can be done
    void sidebarRequested(); // a row of it is about to be named

private:
    void update();
    void endEditing();
    ZQRef<ZQSidebarBaseItem> shownSmartFolder() const; // null for none
    QString savedText() const;                         // of it
    bool isEditing() const;                            // its text
    bool canSave() const;
    bool canUpdate() const; // not of a text that the field had to cut
    QString wholeText() const;
    SavedSearchText::Shown shown() const;
    // Says so, once it is counted, where the text does not find what was shown.
    void compare(const SavedSearchText::Shown &shown, const QString &text);

    WindowContext &m_window;
    SidebarCommands m_commands;
    BrowserViewController &m_browser;
    ProjectsSidebarViewController &m_sidebar;
    QLineEdit &m_search;
    QList<ZQObjectID> m_place; // that was shown last
    bool m_couldSave = false;
    bool m_couldUpdate = false;
    bool m_couldEdit = false;
    ContentFetcher::Ticket m_ticket;
};
