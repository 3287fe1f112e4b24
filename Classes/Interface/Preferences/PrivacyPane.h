#pragma once

#include "Classes/Interface/Preferences/PreferencesPane.h"

class QPlainTextEdit;
class QPushButton;
class UserInteraction;

// What is kept of how the program is used, all of it for the person to see: reports of crashes, and counts of what is
// used. Nothing of it leaves the machine by itself. Main thread.
class PrivacyPane : public PreferencesPane
{
    Q_OBJECT
public:
    explicit PrivacyPane(UserInteraction &user, QWidget *parent = nullptr);

private:
    void addReports();
    void addUsage();
    void showReport();
    void showCounts();
    void eraseCounts();

    UserInteraction &m_user;
    QPlainTextEdit *m_counts = nullptr;
    QPushButton *m_erase = nullptr;
};
