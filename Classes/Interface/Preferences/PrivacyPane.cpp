#include "Classes/Interface/Preferences/PrivacyPane.h"

#include "Classes/Interface/Sheets/CrashReportSheet.h"
#include "Classes/Services/CrashReports.h"
#include "Classes/Services/UsageCounts.h"
#include "Kit/Foundation/ZQFeatures.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

PrivacyPane::PrivacyPane(UserInteraction &user, QWidget *parent)
    : PreferencesPane(zqLocalized("Privacy"), parent), m_user(user)
{
    addReports();
    addUsage();
}

void PrivacyPane::addReports()
{
    addHeading(zqLocalized("CRASH REPORTS"));
    addNote(zqLocalized("When Zelto ends unexpectedly it keeps a report, and shows it when it is opened again. The "
                        "last five are kept. A report has nothing of your library, and is sent only if you send it."));
    QPushButton *const show = addButtonRow(zqLocalized("Show Last &Report…"), [this] { showReport(); });
    show->setEnabled(!CrashReports().all().isEmpty());
}

// On the main window, for which the preferences make room until it is closed.
void PrivacyPane::showReport()
{
    const CrashReports reports;
    const auto all = reports.all();
    QWidget *const mainWindow = window()->parentWidget();
    if (!all.isEmpty() && mainWindow) {
        QTimer::singleShot(0, mainWindow, [mainWindow, user = &m_user, reports, report = all.first()] {
            CrashReportSheet::show(mainWindow, *user, reports.text(report),
                                   [reports, report] { reports.setSeen(report); });
        });
    }
}

void PrivacyPane::addUsage()
{
    addHeading(zqLocalized("USAGE"));
    addSwitch(UsageCounts::countsKey, zqLocalized("&Count which features are used, day by day"),
              zqLocalized("The counts stay on this machine. Here is all there is:"));
    m_counts = new QPlainTextEdit(this);
    m_counts->setReadOnly(true);
    m_counts->setTabChangesFocus(true);
    m_counts->setAccessibleName(zqLocalized("What was counted"));
    m_counts->setMinimumHeight(90);
    column()->addWidget(m_counts);
    m_erase = addButtonRow(zqLocalized("&Erase Counts"), [this] { eraseCounts(); });
    showCounts();
}

void PrivacyPane::showCounts()
{
    UsageCounts ofDisk;
    UsageCounts *const counts = UsageCounts::following();
    ZQError error;
    const UsageCounts::Days days = (counts ? counts : &ofDisk)->days(&error);
    QStringList lines;
    for (auto day = days.cend(); day != days.cbegin();) { // the last one first
        --day;
        for (auto count = day->cbegin(); count != day->cend(); ++count) {
            const QString times = zqCounted({"%@ time", "%@ times"}, count.value());
            lines.append(zqFormat(zqLocalized("%@: %@, %@"), {QLocale().toString(day.key(), QLocale::ShortFormat),
                                                              zqTitleOfFeature(count.key()), times}));
        }
    }
    m_counts->setPlainText(!error.isNull()   ? error.localizedDescription()
                           : lines.isEmpty() ? zqLocalized("Nothing was counted.")
                                             : lines.join(u'\n'));
    m_erase->setEnabled(!lines.isEmpty() || !error.isNull());
}

void PrivacyPane::eraseCounts()
{
    UsageCounts ofDisk;
    UsageCounts *const counts = UsageCounts::following();
    ZQError error;
    if (!(counts ? counts : &ofDisk)->erase(&error)) {
        Q_EMIT refused(error);
    }
    showCounts();
}
