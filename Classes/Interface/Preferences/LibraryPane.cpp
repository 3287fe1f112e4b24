#include "Classes/Interface/Preferences/LibraryPane.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/Preferences/BackupBox.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

#include <algorithm>

LibraryPane::LibraryPane(tamberin_AppDelegate &delegate, BackupSchedule &backups, QWidget *parent)
    : PreferencesPane(zqLocalized("Advanced"), parent), m_delegate(delegate), m_deep(new QCheckBox(this)),
      m_state(new QLabel(this)), m_findings(new QPlainTextEdit(this)), m_advice(new QLabel(this)),
      m_queue(std::make_unique<ZQOperationQueue>(QStringLiteral("verify"), 1))
{
    addHeading(zqLocalized("LIBRARY"));
    auto *path = new QLabel(delegate.libraryBundleDirectory(), this);
    path->setObjectName(QStringLiteral("LibraryPath"));
    path->setAccessibleName(zqLocalized("Path of the library"));
    path->setWordWrap(true);
    path->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column()->addWidget(path);
    // Each of them may take the window away.
    const auto later = [&delegate](void (tamberin_AppDelegate::*command)()) {
        return [&delegate, command] { QTimer::singleShot(0, &delegate, command); };
    };
    auto *library = new QHBoxLayout;
    addButton(library, zqLocalized("&New…"), later(&tamberin_AppDelegate::newZeltoLibrary));
    addButton(library, zqLocalized("&Open…"), later(&tamberin_AppDelegate::openZeltoLibrary));
    addButton(library, zqLocalized("&Move…"), later(&tamberin_AppDelegate::moveZeltoLibrary));
    addButton(library, zqLocalized("&Show in Files"), later(&tamberin_AppDelegate::revealLibraryInFinder));
    library->addStretch(1);
    column()->addLayout(library);
    addNote(zqLocalized("Another library, or a move of this one, takes effect when Zelto is opened again."));

    column()->addWidget(new BackupBox(delegate, backups, *this, this));

    addHeading(zqLocalized("IS EVERYTHING THERE?"));
    m_deep->setText(zqLocalized("&Read all of every file, too"));
    m_deep->setAccessibleDescription(zqLocalized("Finds files that were changed; takes a while."));
    column()->addWidget(m_deep);
    auto *check = new QHBoxLayout;
    m_verify = addButton(check, {}, [this] { m_isVerifying ? void(m_stop.request_stop()) : verify(); });
    m_state->setObjectName(QStringLiteral("SmallMuted"));
    check->addWidget(m_state, 1);
    column()->addLayout(check);
    m_findings->setReadOnly(true);
    m_findings->setTabChangesFocus(true);
    m_findings->setAccessibleName(zqLocalized("What was found"));
    m_findings->setMinimumHeight(100);
    m_findings->hide();
    column()->addWidget(m_findings);
    m_advice->setText(zqLocalized("A missing file comes back from a backup: copy it to where it was, under its name. A "
                                  "missing thumbnail is made again when its file changes. For a damaged database, "
                                  "quit Zelto and run “zelto recover” in a terminal."));
    m_advice->setObjectName(QStringLiteral("SmallMuted"));
    m_advice->setWordWrap(true);
    m_advice->hide();
    column()->addWidget(m_advice);
    setVerifying(false);
}

LibraryPane::~LibraryPane()
{
    m_stop.request_stop();
}

QPushButton *LibraryPane::addButton(QBoxLayout *row, const QString &text, std::function<void()> run)
{
    auto *button = new QPushButton(text, this);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, std::move(run));
    row->addWidget(button);
    return button;
}

void LibraryPane::setVerifying(bool isVerifying)
{
    m_isVerifying = isVerifying;
    m_verify->setText(isVerifying ? zqLocalized("Sto&p") : zqLocalized("&Verify"));
    m_deep->setEnabled(!isVerifying);
}

void LibraryPane::startVerifying()
{
    if (!m_isVerifying) {
        verify();
    }
}

void LibraryPane::verify()
{
    m_findings->hide();
    m_advice->hide();
    m_state->setText(zqLocalized("Looking at the store…"));
    setVerifying(true);
    m_stop = {};
    m_queue->addOperationWithBlock([self = QPointer(this), stop = m_stop.get_token(), isDeep = m_deep->isChecked(),
                                    coordinator = m_delegate.persistentStoreCoordinator(),
                                    directory = m_delegate.libraryDirectory()] {
        ZQManagedObjectContext context(coordinator);
        const LibraryFindings findings =
            LibraryCheck(context, directory).run(isDeep, stop, [self](qint64 done, qint64 total) {
                zqOnMainThread([self, done, total] {
                    if (self) {
                        self->m_state->setText(zqFormat(zqLocalized("%@ of %@ items"),
                                                        {QLocale().toString(done), QLocale().toString(total)}));
                    }
                });
            });
        zqOnMainThread([self, findings] {
            if (self) {
                self->showFindings(findings);
            }
        });
    });
}

void LibraryPane::showFindings(const LibraryFindings &findings)
{
    setVerifying(false);
    QStringList lines = findings.lines();
    const bool isFlawless = findings.isWhole && lines.size() == 1;
    m_state->setText(!findings.isWhole ? zqLocalized("Stopped")
                     : isFlawless      ? zqFormat(zqLocalized("%@. Everything is there."), {lines.first()})
                                       : lines.first());
    m_findings->setVisible(lines.size() > 1);
    m_findings->setPlainText(lines.mid(1).join(u'\n'));
    m_advice->setVisible(!findings.problems.isEmpty());
    // What was found would press the rest of the pane together.
    layout()->activate();
    const int missing = layout()->totalHeightForWidth(width()) - height();
    if (missing > 0 && m_findings->isVisible()) {
        window()->resize(window()->width(), std::min(window()->height() + missing, screen()->availableSize().height()));
    }
}
