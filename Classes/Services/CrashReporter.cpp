#include "Classes/Services/CrashReporter.h"

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Network/ZQHTTPTask.h"
#include "Kit/Network/ZQNetworkError.h"
#include "Kit/Network/ZQPrivateAddress.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QPointer>
#include <QTimer>

using namespace std::chrono_literals;

CrashReporter::CrashReporter(CrashReports reports) : m_reports(std::move(reports)) {}

void CrashReporter::start(Callbacks callbacks, bool automaticSubmission)
{
    m_callbacks = std::move(callbacks);
    QTimer::singleShot(0, this, [this, automaticSubmission] {
        const QString log = m_callbacks.applicationLog ? m_callbacks.applicationLog() : QString();
        qCDebug(zqLogApplication) << "crash reporter ready, log of" << log.size() << "characters";
        if (automaticSubmission) {
            showNew();
        }
    });
}

// The newest tells most; of a row of crashes the others are seen with it.
void CrashReporter::showNew()
{
    QList<CrashReports::Report> reports = m_reports.all();
    reports.removeIf([](const CrashReports::Report &report) { return !report.isNew; });
    if (reports.isEmpty() || !m_presenter) {
        return;
    }
    if (m_callbacks.showMainApplicationWindow) {
        m_callbacks.showMainApplicationWindow();
    }
    m_presenter(m_reports.text(reports.first()), [self = QPointer(this), reports] {
        if (self) {
            for (const CrashReports::Report &report : reports) {
                self->m_reports.setSeen(report);
            }
        }
    });
}

QUrl CrashReporter::address()
{
    const QUrl url(ZQUserDefaults::standardUserDefaults().stringForKey(QStringLiteral("CrashReportAddress")));
    return zqIsSafeOnTheWay(url) ? url : QUrl();
}

ZQHTTPRequest CrashReporter::requestFor(const QString &text)
{
    ZQHTTPRequest request;
    request.url = address();
    request.method = "POST";
    request.headers = {{"Content-Type", "text/plain; charset=utf-8"}};
    request.body = text.toUtf8();
    request.maximumSize = 64 << 10;
    request.wholeTime = 60s;
    request.mayMoveBody = false;
    request.mayGoTo = [](const QUrl &url) {
        return zqIsSafeOnTheWay(url) ? ZQError()
                                     : zqNetworkError(ZQNetworkErrorCode::NotAllowed,
                                                      zqLocalized("The server of the reports leads to an address "
                                                                  "that is not encrypted. Nothing was sent."));
    };
    return request;
}

void CrashReporter::send(const QString &text, std::function<void(const ZQError &)> done)
{
    ZQHTTPTask::start(requestFor(text), [done = std::move(done)](const ZQHTTPResponse &response) {
        zqOnMainThread([done, error = response.error] { done(error); });
    });
}
