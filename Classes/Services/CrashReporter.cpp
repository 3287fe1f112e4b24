#include "Classes/Services/CrashReporter.h"

#include "Kit/Foundation/ZQLog.h"

#include <QTimer>

void CrashReporter::start(Callbacks callbacks, bool automaticSubmission)
{
    m_callbacks = std::move(callbacks);
    m_submitsAutomatically = automaticSubmission;
    QTimer::singleShot(0, this, [this] {
        const QString log = m_callbacks.applicationLog ? m_callbacks.applicationLog() : QString();
        qCDebug(zqLogApplication) << "crash reporter ready, log of" << log.size() << "characters";
    });
}
