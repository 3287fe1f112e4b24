#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QDate>
#include <QMap>
#include <QString>
#include <QTimer>

#include <functional>

// How often features are used, day by day, where the person has turned that on: a file of their state that they can see
// and erase, and that goes nowhere. What is counted are names that stand in the code. Counts are kept for a year. Any
// thread; several processes may count.
class UsageCounts
{
public:
    static inline const QString countsKey = QStringLiteral("CountsUsage"); // the preference, off at first
    static QString usualPath();                                            // $XDG_STATE_HOME/Zelto/usage.json

    explicit UsageCounts(QString path = usualPath());
    ~UsageCounts(); // writes what is not on the disk yet
    UsageCounts(const UsageCounts &) = delete;
    UsageCounts &operator=(const UsageCounts &) = delete;

    using Days = QMap<QDate, QMap<QString, qint64>>;
    // Counts what is used from here on, until this ends, and writes it a moment later; one of them at a time. Main
    // thread.
    void follow();
    static UsageCounts *following();                                          // that one; null: none does
    void count(const QString &name, const QDate &day = QDate::currentDate()); // nothing while it is off
    bool write(ZQError *error = nullptr);                                     // what was counted since the last time
    Days days(ZQError *error = nullptr); // with what is not written yet; an error where the file cannot be read
    bool erase(ZQError *error = nullptr);

private:
    void writeOrLog();
    Days read(ZQError *error) const;
    bool change(const std::function<bool(ZQError *)> &change, ZQError *error) const;

    const QString m_path;
    ZQMutex m_lock;
    Days m_new ZQ_GUARDED_BY(m_lock);
    QTimer m_soon;
    ZQOperationQueue m_queue; // that writes; last: it goes first, and waits for what runs
};
