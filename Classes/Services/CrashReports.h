#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QDateTime>
#include <QList>
#include <QString>

// The reports of crashes on this machine: a folder of the person's state with the newest five. Main thread.
class CrashReports
{
public:
    explicit CrashReports(QString folder = usualFolder());
    static QString usualFolder(); // $XDG_STATE_HOME/Zelto/crash-reports

    struct Report
    {
        QString path;
        QDateTime date;
        bool isNew = false; // nobody has seen it
    };
    static constexpr qsizetype mostKept = 5;
    static constexpr qint64 largest = 256 << 10; // bytes; what is behind is not read

    bool make();               // the folder, for this person alone
    QList<Report> all() const; // the newest first
    QString text(const Report &report) const;
    void removeOld() const; // but the newest ones
    bool setSeen(const Report &report) const;
    bool remove(const Report &report, ZQError *error = nullptr) const;

private:
    QString m_folder;
};
