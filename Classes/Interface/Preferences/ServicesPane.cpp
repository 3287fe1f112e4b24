#include "Classes/Interface/Preferences/ServicesPane.h"

#include "Classes/Application/Launch.h"
#include "Classes/Application/UpdateChannel.h"
#include "Classes/Services/SoftwareUpdater.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

ServicesPane::ServicesPane(QWidget *parent) : PreferencesPane(zqLocalized("Services"), parent)
{
    addLogin();
    addUpdates();
}

void ServicesPane::addLogin()
{
    addHeading(zqLocalized("AT LOGIN"));
    m_login = new QCheckBox(zqLocalized("&Start Zelto when you log in"), this);
    m_login->setChecked(m_launchAtLogin.isOn());
    column()->addWidget(m_login);
    connect(m_login, &QCheckBox::clicked, this, &ServicesPane::setLaunchAtLogin);
}

// The box shows what holds: it is asked again, whatever came of it.
void ServicesPane::setLaunchAtLogin(bool isOn)
{
    m_launchAtLogin.set(isOn, [self = QPointer(this)](const ZQError &error) {
        if (self) {
            self->m_login->setChecked(self->m_launchAtLogin.isOn());
            if (!error.isNull()) {
                Q_EMIT self->refused(error);
            }
        }
    });
}

void ServicesPane::addUpdates()
{
    addHeading(zqLocalized("NEW VERSIONS"));
    QCheckBox *const looks =
        addSwitch(SoftwareUpdater::checksKey, zqLocalized("&Look for new versions once a day"),
                  zqLocalized("Nothing about you or your library is sent, and nothing is installed."));
    QCheckBox *const takesBeta = addSwitch(UpdateChannel::betaKey, zqLocalized("Take part in &beta versions"));
    m_updates = {looks, takesBeta, addButtonRow(zqLocalized("Check for &Updates..."), [] {
                     if (SoftwareUpdater *const updater = SoftwareUpdater::current()) {
                         updater->checkForUpdates();
                     }
                 })};
    connect(takesBeta, &QCheckBox::toggled, this, [] {
        if (SoftwareUpdater *const updater = SoftwareUpdater::current()) {
            updater->configure(Launch::appCastURL(false));
        }
    });
    m_whyNot = new QLabel(this);
    m_whyNot->setObjectName(QStringLiteral("SmallMuted"));
    m_whyNot->setWordWrap(true);
    m_whyNot->hide();
    column()->addWidget(m_whyNot);
    setUpdatesEnabled(false); // until it is known that there is something to choose
    if (SoftwareUpdater *const updater = SoftwareUpdater::current()) {
        updater->findWhyNot([self = QPointer(this)](const QString &reason) {
            if (self) {
                self->showUpdates(reason);
            }
        });
    }
}

void ServicesPane::setUpdatesEnabled(bool isEnabled)
{
    for (QWidget *control : std::as_const(m_updates)) {
        control->setEnabled(isEnabled);
    }
}

void ServicesPane::showUpdates(const QString &whyNot)
{
    setUpdatesEnabled(whyNot.isEmpty());
    m_whyNot->setText(whyNot);
    m_whyNot->setVisible(!whyNot.isEmpty());
}
