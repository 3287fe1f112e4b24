#pragma once

#include "Classes/Browsing/Content/SelectionSummary.h"

#include <QTimer>

// Programs that replace a file take it away for a moment: that files of a selection are missing is said once they were
// missed for a while. Main thread.
class MissedFiles : public QObject
{
    Q_OBJECT
public:
    explicit MissedFiles(QObject *parent = nullptr);
    // What is to be shown of `found` where `shown` is; `isSame`: it is of the same selection. Another one says at once
    // what is missing.
    SelectionSummary settled(SelectionSummary found, const SelectionSummary &shown, bool isSame);
    void forget() { m_missed.stop(); } // nothing is selected

Q_SIGNALS:
    void becameSure(); // look again

private:
    QTimer m_missed;
    bool m_isSure = false;
};
