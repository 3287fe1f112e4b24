#include "Classes/Interface/Preferences/BackupBox.h"

#include "Classes/Application/BackupSchedule.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Interface/Preferences/PreferencesPane.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

#include <algorithm>
#include <utility>

BackupBox::BackupBox(tamberin_AppDelegate &delegate, BackupSchedule &backups, PreferencesPane &pane, QWidget *parent)
    : QWidget(parent), m_delegate(delegate), m_backups(backups), m_pane(pane), m_directory(new QLabel(this)),
      m_last(new QLabel(this)), m_state(new QLabel(this)), m_backUp(new QPushButton(this)), m_keep(new QSpinBox(this)),
      m_interval(new QComboBox(this)), m_progress(new QProgressBar(this))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 12, 0, 0);
    auto *heading = new QLabel(zqLocalized("BACKUP"), this);
    heading->setObjectName(QStringLiteral("Caption"));
    column->addWidget(heading);
    for (QLabel *label : {m_directory, m_last, m_state}) {
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setFocusPolicy(Qt::NoFocus);
        column->addWidget(label);
    }
    m_last->setObjectName(QStringLiteral("SmallMuted"));
    m_state->setObjectName(QStringLiteral("SmallMuted"));
    m_progress->setAccessibleName(zqLocalized("Progress of the backup"));
    column->addWidget(m_progress);
    addSettings();
    BackupWork &work = backups.work();
    connect(&work, &BackupWork::progressed, this, [this](LibraryBackup::Stage stage, qint64 done, qint64 total) {
        constexpr int whole = 1000;
        m_progress->setRange(0, whole);
        m_progress->setValue(total > 0 ? int(done * whole / total) : 0);
        m_state->setText(zqFormat(zqLocalized("%@: %@ of %@ items"),
                                  {BackupWork::stageText(stage), QLocale().toString(done), QLocale().toString(total)}));
    });
    connect(&work, &BackupWork::ended, this, [this] {
        m_state->setText(m_backups.work().result().lines().join(u'\n'));
        showState();
        showLast();
    });
    showState();
    showLast();
}

void BackupBox::addSettings()
{
    auto *buttons = new QHBoxLayout;
    auto *choose = new QPushButton(zqLocalized("&Folder…"), this);
    choose->setAccessibleDescription(zqLocalized("Where backups are put; best on another disk"));
    for (QPushButton *button : {choose, m_backUp}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    static_cast<QVBoxLayout *>(layout())->addLayout(buttons);
    connect(choose, &QPushButton::clicked, this, &BackupBox::chooseDirectory);
    connect(m_backUp, &QPushButton::clicked, this, &BackupBox::backUpOrStop);

    m_keep->setRange(0, BackupSchedule::mostKept);
    m_keep->setSpecialValueText(zqLocalized("All"));
    m_keep->setKeyboardTracking(false);
    m_keep->setButtonSymbols(QSpinBox::NoButtons); // the theme draws none
    for (const auto &[text, days] :
         {std::pair(zqLocalized("Never"), 0), {zqLocalized("Every day"), 1}, {zqLocalized("Every week"), 7}}) {
        m_interval->addItem(text, qint64(days));
    }
    showSettings();
    auto *form = new QFormLayout;
    form->addRow(zqLocalized("&Keep"), m_keep);
    form->addRow(zqLocalized("By &itself"), m_interval);
    m_keep->setAccessibleName(zqLocalized("How many backups stay"));
    m_interval->setAccessibleName(zqLocalized("How often a backup is made by itself"));
    static_cast<QVBoxLayout *>(layout())->addLayout(form);
    connect(m_keep, &QSpinBox::valueChanged, this, [this](int count) { store(count, BackupSchedule::keepKey); });
    connect(m_interval, &QComboBox::activated, this,
            [this] { store(m_interval->currentData(), BackupSchedule::intervalKey); });
}

void BackupBox::store(const QVariant &value, const QString &key)
{
    ZQError error;
    if (!ZQUserDefaults::standardUserDefaults().storeObjectForKey(value, key, &error)) {
        Q_EMIT m_pane.refused(error);
        showSettings();
    }
}

void BackupBox::showSettings()
{
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    const QSignalBlocker quiet(m_keep); // nobody chose it
    m_keep->setValue(BackupSchedule::keptCount());
    const qint64 days = std::max<qint64>(0, defaults.integerForKey(BackupSchedule::intervalKey));
    if (m_interval->findData(days) < 0) { // set elsewhere
        m_interval->addItem(zqCounted({"Every day", "Every %@ days"}, days), days);
    }
    m_interval->setCurrentIndex(m_interval->findData(days));
}

void BackupBox::chooseDirectory()
{
    FileChoice choice;
    choice.title = zqLocalized("Please choose the folder for backups");
    choice.prompt = zqLocalized("Choose");
    if (m_answering == BackupSchedule::directory()) { // else the list of files would wait for it
        choice.startFolder = m_answering;
    }
    choice.directory = true;
    const QStringList chosen = m_delegate.userInteraction().chooseFilesToOpen(choice);
    if (chosen.isEmpty()) {
        return;
    }
    const ZQError refusal = LibraryBackup::refusal(m_delegate.libraryBundleDirectory(), chosen.first());
    if (!refusal.isNull()) {
        m_delegate.userInteraction().presentError(refusal);
        return;
    }
    store(chosen.first(), BackupSchedule::directoryKey);
    if (!m_backups.work().isRunning()) {
        m_state->clear(); // what it says is of the folder before
    }
    showState();
    showLast();
}

void BackupBox::backUpOrStop()
{
    if (m_backups.work().isRunning()) {
        m_backups.work().stop();
        return;
    }
    if (BackupSchedule::directory().isEmpty()) {
        chooseDirectory();
    }
    if (BackupSchedule::directory().isEmpty()) {
        return;
    }
    m_state->setText(zqLocalized("Copying the database"));
    if (const ZQError refusal = m_backups.backUpNow(); !refusal.isNull()) {
        m_state->setText(refusal.localizedDescription());
    }
    showState();
}

void BackupBox::showState()
{
    const bool isRunning = m_backups.work().isRunning();
    const QString directory = BackupSchedule::directory();
    m_directory->setText(directory.isEmpty() ? zqLocalized("No folder was chosen.") : directory);
    m_backUp->setText(isRunning ? zqLocalized("Stop &Backup") : zqLocalized("&Back Up Now"));
    m_progress->setVisible(isRunning);
    if (!isRunning) {
        m_progress->setRange(0, 0);
    }
    m_state->setVisible(!m_state->text().isEmpty());
}

void BackupBox::showLast()
{
    const QString directory = BackupSchedule::directory();
    m_last->setHidden(directory.isEmpty());
    m_last->setText(zqLocalized("Looking at the folder…"));
    m_backups.findLast([self = QPointer(this), directory](const BackupLook::Found &found) {
        if (self && directory == BackupSchedule::directory()) {
            self->m_answering = directory;
            self->showFound(found.last);
        }
    });
}

void BackupBox::showFound(const std::optional<BackupRecord> &last)
{
    const QLocale locale;
    m_last->setText(last ? zqFormat(zqLocalized("The last one: %@, %@, of which new: %@"),
                                    {locale.toString(last->ended.toLocalTime(), QLocale::ShortFormat),
                                     locale.formattedDataSize(last->bytes), locale.formattedDataSize(last->newBytes)})
                         : zqLocalized("There is no backup of this library in that folder."));
}
