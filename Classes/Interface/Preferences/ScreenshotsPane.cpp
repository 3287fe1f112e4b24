#include "Classes/Interface/Preferences/ScreenshotsPane.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/HotKeyCommand.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/Capture/CaptureEffects.h"
#include "Classes/Interface/Capture/StatusIcon.h"
#include "Classes/Interface/Preferences/HotKeyField.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QAccessible>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

namespace {

constexpr int nameWidth = 150;

std::optional<HotKey> hotKeyOf(const QString &key)
{
    return HotKey::fromSetting(ZQUserDefaults::standardUserDefaults().objectForKey(key).toMap());
}

} // namespace

ScreenshotsPane::ScreenshotsPane(tamberin_AppDelegate &delegate, QWidget *parent)
    : PreferencesPane(zqLocalized("Screenshots"), parent), m_delegate(delegate)
{
    addKeys();
    addHeading(zqLocalized("AFTER A SCREENSHOT"));
    addSwitch(QStringLiteral("AfterScreenshotOpenZelto"), zqLocalized("&Bring Zelto forward"));
    addSwitch(QStringLiteral("AfterScreenshotGotToScreenshots"), zqLocalized("&Show Screenshots in the sidebar"));
    addSwitch(QLatin1StringView(CaptureEffects::preference), zqLocalized("&Play a sound and flash the screen"));
    addHeading(zqLocalized("MENU"));
    addSwitch(
        QLatin1StringView(StatusIcon::preference), zqLocalized("Show the status &icon"),
        QSystemTrayIcon::isSystemTrayAvailable()
            ? zqLocalized("Your desktop shows status icons. The same commands are in the menu, and as “zelto snap "
                          "area”.")
            : zqLocalized("Your desktop shows no status icons. The commands are in the menu, and as “zelto snap "
                          "area”."));
    m_token = ZQNotificationCenter::defaultCenter().addObserver(HotKeyRegistering::stateDidChange, nullptr,
                                                                [this](const ZQNotification &) { showProblems(); });
    showProblems();
}

ScreenshotsPane::~ScreenshotsPane()
{
    for (const Row &row : std::as_const(m_rows)) {
        row.field->disconnect(this); // fields outlive what they would tell
    }
    setPaused(false);
}

void ScreenshotsPane::addKeys()
{
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(3);
    grid->setColumnMinimumWidth(0, nameWidth);
    grid->setColumnStretch(1, 1);
    column()->addSpacing(6);
    column()->addLayout(grid);
    for (const HotKeyCommand &command : HotKeyCommand::all()) {
        m_rows.append(addRow(grid, command.preference, zqLocalized(command.name)));
    }
    for (const Row &row : std::as_const(m_rows)) {
        setShown(row.key, [field = row.field, key = row.key] { field->setHotKey(hotKeyOf(key)); });
        connect(row.field, &HotKeyField::chosen, this,
                [this, row](const std::optional<HotKey> &hotKey) { choose(row, hotKey); });
        connect(row.field, &HotKeyField::refused, this,
                [this, row](const QString &reason) { showProblem(row, reason); });
        connect(row.field, &HotKeyField::recordingChanged, this, [this](bool isRecording) {
            setPaused(isRecording);
            showProblems();
        });
    }
}

ScreenshotsPane::Row ScreenshotsPane::addRow(QGridLayout *grid, const QString &key, const QString &text)
{
    const QString name = QString(text).remove(u'&');
    auto *label = new QLabel(text, this);
    label->setObjectName(QStringLiteral("Muted"));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *field = new HotKeyField(name, this);
    label->setBuddy(field);
    auto *problem = new QLabel(this);
    problem->setObjectName(QStringLiteral("Problem"));
    problem->setWordWrap(true);
    problem->hide();
    const int line = grid->rowCount();
    grid->addWidget(label, line, 0);
    grid->addWidget(field, line, 1, Qt::AlignLeft);
    grid->addWidget(problem, line + 1, 1);
    return {key, name, field, problem};
}

QString ScreenshotsPane::otherWithKeys(const Row &row, const HotKey &hotKey) const
{
    for (const Row &other : m_rows) {
        if (other.key != row.key && hotKeyOf(other.key) == hotKey) {
            return other.name;
        }
    }
    return {};
}

void ScreenshotsPane::choose(const Row &row, const std::optional<HotKey> &hotKey)
{
    if (const QString other = hotKey ? otherWithKeys(row, *hotKey) : QString(); !other.isEmpty()) {
        showProblem(row, zqFormat(zqLocalized("“%@” has these keys."), {other}));
    } else if (store(hotKey ? hotKey->setting() : QVariantMap(), row.key)) {
        row.field->setHotKey(hotKey);
        showProblems();
    }
}

void ScreenshotsPane::setPaused(bool paused)
{
    ScreenCaptureControlling *const capture = m_delegate.zeltoKunViewController();
    if (capture && paused != m_isPaused) {
        m_isPaused = paused;
        capture->setHotKeysPaused(paused);
    }
}

void ScreenshotsPane::showProblem(const Row &row, const QString &problem)
{
    row.problem->setText(problem);
    row.problem->setVisible(!problem.isEmpty());
    if (!problem.isEmpty()) {
        row.problem->setAccessibleName(problem);
        QAccessibleEvent event(row.problem, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

void ScreenshotsPane::showProblems()
{
    const ScreenCaptureControlling *const capture = m_delegate.zeltoKunViewController();
    for (const Row &row : std::as_const(m_rows)) {
        const bool isAsked = capture && !m_isPaused && hotKeyOf(row.key).has_value();
        const QString problem = isAsked ? capture->problemOfHotKey(row.key) : QString();
        if (problem != row.problem->text()) {
            showProblem(row, problem);
        }
    }
}
