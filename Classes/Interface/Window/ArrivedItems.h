#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Interface/WindowCommand.h"
#include "Classes/Interface/WindowContext.h"
#include "Kit/Widgets/ZQNotificationBubble.h"

#include <QHash>
#include <QObject>
#include <QUuid>

class BrowserViewController;
class LookAlikes;
class ProjectsSidebarViewController;
class WindowUserInteraction;

// What the window says at the end of an import: how much came and how much did not, with a way to the items unless they
// are in view, and to the reasons; how much of it looks like what was there before. The parts of one are told as one
// that grows. What the last import brought can be asked for until the next one. Main thread.
class ArrivedItems : public QObject
{
    Q_OBJECT
public:
    // `showEverything` takes the search of the tab away.
    ArrivedItems(WindowContext &window, WindowUserInteraction &user, ProjectsSidebarViewController &sidebar,
                 BrowserViewController &browser, std::function<void()> showEverything, QObject *parent = nullptr);
    ~ArrivedItems() override;

    // Goes to where the items are, and selects those that are still there; says so when none is, or it is not known.
    void show(const QList<ZQObjectID> &items, const ZQObjectID &target);
    // Lists what was refused, with a way to what came; goes there at once when nothing was refused.
    void showLastImport();
    QList<WindowCommand> commands();

Q_SIGNALS:
    void lastImportChanged();

private:
    ImportOutcome withEarlierParts(const ImportOutcome &part);
    void tellWhenShown(const ImportOutcome &outcome, int count, int looks);
    void tell(const ImportOutcome &outcome);
    bool areInView(const QList<ZQObjectID> &items) const;
    void showLeft(const QList<ZQObjectID> &left, const ZQObjectID &target);
    void lookForAlike(const ImportOutcome &outcome);
    void didLookForAlike(const QUuid &import, const LookAlikes &looked);
    ZQNotificationAction showingAlike(const QString &title);
    ZQObjectID placeOf(const ZQObjectID &target) const;
    void showRefused(const ImportOutcome &outcome);

    WindowContext &m_window;
    WindowUserInteraction &m_user;
    ProjectsSidebarViewController &m_sidebar;
    BrowserViewController &m_browser;
    std::function<void()> m_showEverything;
    ContentFetcher::Ticket m_ticket;
    ContentFetcher::Ticket m_alikeTicket;
    std::optional<ImportOutcome> m_last;
    QHash<QUuid, ImportOutcome> m_unfinished; // imports of which parts are still to come, as far as they are
    QUuid m_lastTold;
    int m_toldCount = 0;
    struct Alike
    {
        QUuid import;
        qsizetype count = 0;
        QList<ZQObjectID> items; // those that came and those they look like
    };
    Alike m_alike;
    QUuid m_saidOf; // the import whose notice was shown, or needed none
};
