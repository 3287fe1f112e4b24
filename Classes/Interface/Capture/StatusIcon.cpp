#include "Classes/Interface/Capture/StatusIcon.h"

#include "Classes/Application/HotKeyCommand.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/Capture/CaptureActions.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QPointer>

StatusIcon::StatusIcon(tamberin_AppDelegate &delegate) : m_delegate(delegate)
{
    for (const CaptureActions::Action &action : CaptureActions::all()) {
        QAction *const entry = m_menu.addAction(QString());
        connect(entry, &QAction::triggered, &m_delegate, [&action, this] { CaptureActions::run(action, m_delegate); });
    }
    m_menu.addSeparator();
    m_menu.addAction(QString(), &m_delegate, [this] { m_delegate.reopenMainWindow(); });
    m_menu.addSeparator();
    m_menu.addAction(zqLocalized("Quit"), &m_delegate, [this] { m_delegate.terminate(); });
    m_icon.setIcon(ZQIcon::application());
    m_icon.setToolTip(QStringLiteral("Zelto"));
    m_icon.setContextMenu(&m_menu);
    connect(&m_menu, &QMenu::aboutToShow, this, &StatusIcon::update);
    connect(&m_icon, &QSystemTrayIcon::activated, &m_delegate, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger) {
            m_delegate.reopenMainWindow();
        }
    });
    update();
    m_token = ZQUserDefaults::standardUserDefaults().observe([self = QPointer(this)](const QString & /*key*/) {
        zqOnMainThread([self] {
            if (self) {
                self->update();
            }
        });
    });
}

void StatusIcon::update()
{
    QList<QAction *> entries = m_menu.actions();
    for (const CaptureActions::Action &action : CaptureActions::all()) {
        QAction *const entry = entries.takeFirst();
        entry->setText(CaptureActions::titleWithHotKey(zqFormat(zqLocalized("Capture %@"), {zqLocalized(action.title)}),
                                                       action.hotKey));
        entry->setEnabled(CaptureActions::isPossible(m_delegate));
    }
    entries.value(1)->setText(CaptureActions::titleWithHotKey(zqLocalized("Open Zelto"), HotKeyCommand::showZelto));
    // Where the desktop has no status area it waits, unseen, for one to come.
    m_icon.setVisible(ZQUserDefaults::standardUserDefaults().boolForKey(QLatin1StringView(preference)));
}
