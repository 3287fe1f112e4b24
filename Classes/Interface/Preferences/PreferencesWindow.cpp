#include "Classes/Interface/Preferences/PreferencesWindow.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/Preferences/CloudPane.h"
#include "Classes/Interface/Preferences/LibraryPane.h"
#include "Classes/Interface/Preferences/PreferencesPanes.h"
#include "Classes/Interface/Preferences/PrivacyPane.h"
#include "Classes/Interface/Preferences/ScreenshotsPane.h"
#include "Classes/Interface/Preferences/ServicesPane.h"
#include "Classes/Interface/Sheets/Sheet.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQNotificationBubble.h"
#include "Kit/Widgets/ZQWindowPlace.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStackedWidget>

namespace {

const QString geometryKey = QStringLiteral("PreferencesGeometry");
const QString paneKey = QStringLiteral("PreferencesPane");
constexpr int namesWidth = 190;

} // namespace

PreferencesWindow::PreferencesWindow(tamberin_AppDelegate &delegate, BackupSchedule &backups, QWidget *mainWindow)
    : QDialog(mainWindow), m_mainWindow(mainWindow), m_names(new QListWidget(this)), m_stack(new QStackedWidget(this)),
      m_bubble(new ZQNotificationBubble(this))
{
    setObjectName(QStringLiteral("Preferences"));
    setAttribute(Qt::WA_DeleteOnClose);
    setProperty(Sheet::hasOwnProperty, true);
    setWindowTitle(zqLocalized("Preferences"));
    setMinimumSize(640, 320); // panes scroll, on a screen on which everything is drawn twice as large, too
    m_names->setObjectName(QStringLiteral("PaneNames"));
    m_names->setAccessibleName(zqLocalized("Panes"));
    m_names->setFixedWidth(namesWidth);
    m_names->setIconSize({ZQMeasure::iconSize, ZQMeasure::iconSize});
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(m_names);
    row->addWidget(m_stack, 1);
    for (const PreferencesPanes::Plan &plan : PreferencesPanes::all()) {
        auto *pane = new PreferencesPane(zqLocalized(plan.title));
        plan.fill(*pane);
        addPane(pane, QLatin1StringView(plan.icon));
    }
    addPane(new ScreenshotsPane(delegate), QStringLiteral("screenshots"));
    auto *cloud = new CloudPane(delegate.userInteraction());
    cloud->setObjectName(cloudPane);
    addPane(cloud, QStringLiteral("cloud"));
    addPane(new ServicesPane, QStringLiteral("recent"));
    addPane(new PrivacyPane(delegate.userInteraction()), QStringLiteral("info"));
    m_library = new LibraryPane(delegate, backups);
    m_library->setObjectName(libraryPane);
    addPane(m_library, QStringLiteral("library"));
    connect(m_names, &QListWidget::currentRowChanged, this, [this](int index) {
        m_stack->setCurrentIndex(index);
        ZQUserDefaults::standardUserDefaults().setObjectForKey(index, paneKey);
    });
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    m_names->setCurrentRow(std::clamp(int(defaults.integerForKey(paneKey)), 0, m_names->count() - 1));
    if (!zqRestoreGeometry(*this, defaults.dataForKey(geometryKey))) {
        resize(QSize(760, 560).boundedTo(screen()->availableSize()));
    }
    m_names->setFocus();
    auto *close = new QAction(this);
    close->setShortcut(Qt::CTRL | Qt::Key_W);
    connect(close, &QAction::triggered, this, &QWidget::close);
    addAction(close);
    auto *quit = new QAction(this);
    quit->setShortcut(Qt::CTRL | Qt::Key_Q);
    connect(quit, &QAction::triggered, this, [&delegate] { delegate.terminate(); });
    addAction(quit);
    mainWindow->installEventFilter(this);
    m_token = ZQUserDefaults::standardUserDefaults().observe([self = QPointer(this)](const QString &key) {
        zqOnMainThread([self, key] {
            if (self) {
                self->preferenceDidChange(key);
            }
        });
    });
}

void PreferencesWindow::addPane(PreferencesPane *pane, const QString &icon)
{
    constexpr ZQColorRole shown = ZQColorRole::Text; // on the ground of what is selected, in both themes
    auto *name =
        new QListWidgetItem(ZQIcon::icon(icon, ZQColorRole::TextMuted, shown, shown), pane->accessibleName(), m_names);
    name->setSizeHint({0, ZQMeasure::rowHeight});
    auto *scroll = new QScrollArea;
    scroll->setFocusPolicy(Qt::NoFocus); // what is in the pane takes it, and is scrolled to
    scroll->setWidgetResizable(true);
    scroll->setWidget(pane);
    scroll->viewport()->setAutoFillBackground(false);
    pane->setAutoFillBackground(false);
    m_stack->addWidget(scroll);
    m_panes.append(pane);
    connect(pane, &PreferencesPane::refused, this, [this](const ZQError &error) {
        m_bubble->showText(error.localizedDescription(), m_stack, false, PreferencesPane::refusalTime);
    });
}

void PreferencesWindow::showPane(const QString &objectName)
{
    for (qsizetype i = 0; i < m_panes.size(); ++i) {
        if (m_panes[i]->objectName() == objectName) {
            m_names->setCurrentRow(int(i));
        }
    }
}

void PreferencesWindow::verifyLibrary()
{
    showPane(libraryPane);
    m_library->startVerifying();
}

void PreferencesWindow::preferenceDidChange(const QString &key)
{
    for (PreferencesPane *const pane : m_panes) {
        pane->showPreference(key);
    }
}

// Return presses the button that has the focus, and no other.
void PreferencesWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QDialog::keyPressEvent(event);
    } else if (auto *button = qobject_cast<QPushButton *>(QApplication::focusWidget())) {
        button->click();
    }
}

// Whoever asked waits for the answer in a loop above.
void PreferencesWindow::closeEvent(QCloseEvent *event)
{
    if (property(Sheet::isShownProperty).toInt() > 0) {
        event->ignore();
    } else {
        QDialog::closeEvent(event);
    }
}

void PreferencesWindow::hideEvent(QHideEvent *event)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(saveGeometry(), geometryKey);
    QDialog::hideEvent(event);
}

bool PreferencesWindow::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_mainWindow && event->type() == QEvent::DynamicPropertyChange) {
        const bool isAsking = m_mainWindow->property(Sheet::isShownProperty).toBool();
        if (isAsking && isVisible()) {
            m_makesRoom = true;
            hide();
            m_mainWindow->activateWindow();
        } else if (!isAsking && std::exchange(m_makesRoom, false)) {
            show();
        }
    }
    return QDialog::eventFilter(object, event);
}
