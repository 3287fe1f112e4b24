#pragma once

#include "Classes/Application/LibraryCheck.h"
#include "Classes/Interface/Preferences/PreferencesPane.h"

#include <memory>

class BackupSchedule;
class QBoxLayout;
class QPlainTextEdit;
class QPushButton;
class ZQOperationQueue;
class tamberin_AppDelegate;

// The open library: where it is, another one in its place, and whether it is whole. A look at all of it goes on beside
// the window and ends with the pane. Main thread.
class LibraryPane : public PreferencesPane
{
    Q_OBJECT
public:
    LibraryPane(tamberin_AppDelegate &delegate, BackupSchedule &backups, QWidget *parent = nullptr);
    ~LibraryPane() override;

    bool isVerifying() const { return m_isVerifying; }
    void startVerifying(); // as the button does, unless it goes on already

private:
    QPushButton *addButton(QBoxLayout *row, const QString &text, std::function<void()> run);
    void verify();
    void showFindings(const LibraryFindings &findings);
    void setVerifying(bool isVerifying);

    tamberin_AppDelegate &m_delegate;
    QCheckBox *m_deep;
    QPushButton *m_verify;
    QLabel *m_state;
    QPlainTextEdit *m_findings; // to be read and copied
    QLabel *m_advice;           // what to do about them
    bool m_isVerifying = false;
    std::stop_source m_stop;
    std::unique_ptr<ZQOperationQueue> m_queue; // last: it goes first, and waits for what runs
};
