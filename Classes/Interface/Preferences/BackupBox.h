#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QWidget>

#include <optional>

class BackupSchedule;
class PreferencesPane;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QSpinBox;
class tamberin_AppDelegate;
struct BackupRecord;

// The backups in the preferences: where to, how many stay, how often, the last one, and one now with its progress. It
// goes on when the preferences are closed. Main thread.
class BackupBox : public QWidget
{
    Q_OBJECT
public:
    BackupBox(tamberin_AppDelegate &delegate, BackupSchedule &backups, PreferencesPane &pane,
              QWidget *parent = nullptr);

private:
    void addSettings();
    void chooseDirectory();
    void backUpOrStop();
    void store(const QVariant &value, const QString &key); // what cannot be written goes back
    void showSettings();
    void showState();
    void showLast();
    void showFound(const std::optional<BackupRecord> &last);

    tamberin_AppDelegate &m_delegate;
    BackupSchedule &m_backups;
    PreferencesPane &m_pane; // tells what could not be written
    QString m_answering;     // the folder that was looked at; it may be another by now
    QLabel *m_directory;
    QLabel *m_last;
    QLabel *m_state;
    QPushButton *m_backUp;
    QSpinBox *m_keep;
    QComboBox *m_interval;
    QProgressBar *m_progress;
};
