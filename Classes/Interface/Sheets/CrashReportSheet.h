#pragma once

#include "Classes/Interface/Sheets/Sheet.h"

class UserInteraction;

// A report of a crash, whole, and what a person may do with it: send it where there is an address, copy it, save it.
// Nothing of it leaves the machine otherwise. Main thread.
class CrashReportSheet : public Sheet
{
    Q_OBJECT
public:
    CrashReportSheet(QWidget *window, UserInteraction &user, const QString &text);
    // `seen` is called once the person has closed it.
    static void show(QWidget *window, UserInteraction &user, const QString &text, std::function<void()> seen);

private:
    void addFooterButton(const QString &title, void (CrashReportSheet::*pressed)());
    void copy();
    void save();
    void send();

    UserInteraction &m_user;
    const QString m_text;
};
