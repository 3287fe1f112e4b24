#include "Classes/Interface/Window/WindowFollower.h"

#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/InfoPanel/InfoPanelViewController.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"

#include <QPointer>

#include <algorithm>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto infoDelay = 30ms; // moving through items with a held key reads only where it stops
constexpr auto sidebarDelay = 60ms;
constexpr auto editDelay = 250ms; // between two looks at what an edit of many items has changed

bool touchesSidebar(const QList<ZQObjectID> &ids)
{
    const QString sidebarEntity = ZQSidebarBaseItem::entityName();
    return std::any_of(ids.begin(), ids.end(),
                       [&](const ZQObjectID &id) { return id.rootEntity() && id.rootEntity()->name == sidebarEntity; });
}

} // namespace

WindowFollower::WindowFollower(WindowContext &window, ProjectsSidebarViewController &sidebar,
                               BrowserViewController &browser, InfoPanelViewController &info, QObject *parent)
    : QObject(parent), m_window(window), m_sidebar(sidebar), m_browser(browser)
{
    m_infoTimer.setSingleShot(true);
    m_infoTimer.setInterval(infoDelay);
    connect(&m_infoTimer, &QTimer::timeout, this, [this, &info] {
        const bool isShown = info.refresh();
        m_infoTimer.setInterval(isShown ? infoDelay : editDelay);
        if (!isShown) {
            m_infoTimer.start();
        }
    });
    connect(&browser, &BrowserViewController::selectionChanged, this, &WindowFollower::refreshInfo);
    m_sidebarTimer.setSingleShot(true);
    m_sidebarTimer.setInterval(sidebarDelay);
    connect(&m_sidebarTimer, &QTimer::timeout, this, [this] {
        if (m_sidebar.isEditing()) {
            m_sidebarTimer.start(); // the editor would close
            return;
        }
        m_sidebar.reload();
        Q_EMIT sidebarReloaded();
    });
    m_editTimer.setSingleShot(true);
    m_editTimer.setInterval(editDelay);
    connect(&m_editTimer, &QTimer::timeout, this, [this] {
        m_sidebarTimer.start();
        refreshContent();
    });
    m_contextToken =
        window.context.observeObjectsDidChange([this](const ZQContextDidSave &change) { contextDidChange(change); });
    window.whenStepBrings = [this] { return whenStepBrings(); };
    auto &center = ZQNotificationCenter::defaultCenter();
    for (const QString &name :
         {QStringLiteral("ImportManagerDidFinishImportOperation"), ZQLibraryBaseItem::didDeleteNotification}) {
        m_tokens.append(center.addObserver(name, nullptr, [this](const ZQNotification &) { refreshContent(); }));
    }
    m_tokens.append(
        center.addObserver(ZQLibraryBaseItem::dataDidUpdateNotification, nullptr, [this](const ZQNotification &) {
            m_browser.redrawVisible();
            m_infoTimer.start();
        }));
}

EditContext::Brought WindowFollower::whenStepBrings()
{
    return [self = QPointer(this), select = m_browser.selectionOfWhatComes()](const QList<ZQObjectID> &ids) {
        if (self && touchesSidebar(ids)) {
            self->m_sidebar.selectReturned(ids);
        } else if (self && !ids.isEmpty()) {
            select(ids);
        }
    };
}

void WindowFollower::refreshContent()
{
    m_browser.refetch();
    m_sidebar.reloadCounts();
}

void WindowFollower::contextDidChange(const ZQContextDidSave &change)
{
    // A batch follows the other; the last one is still part of the edit. The sidebar shows nothing that is gone.
    if (m_window.isBusy() && !touchesSidebar(change.deleted)) {
        for (QTimer *timer : {&m_infoTimer, &m_editTimer}) {
            if (!timer->isActive()) {
                timer->start();
            }
        }
        return;
    }
    m_infoTimer.start();
    if (touchesSidebar(change.inserted) || touchesSidebar(change.updated) || touchesSidebar(change.deleted)) {
        m_sidebarTimer.start();
    } else {
        m_sidebar.reloadCounts();
    }
    m_browser.refetch();
}
