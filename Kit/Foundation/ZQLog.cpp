#include "Kit/Foundation/ZQLog.h"

#include <cstdio>

Q_LOGGING_CATEGORY(zqLogApplication, "zelto.application", QtInfoMsg)
Q_LOGGING_CATEGORY(zqLogStore, "zelto.store", QtInfoMsg)
Q_LOGGING_CATEGORY(zqLogFiles, "zelto.files", QtInfoMsg)
Q_LOGGING_CATEGORY(zqLogImport, "zelto.import", QtInfoMsg)
Q_LOGGING_CATEGORY(zqLogImaging, "zelto.imaging", QtInfoMsg)
Q_LOGGING_CATEGORY(zqLogTags, "zelto.tags", QtInfoMsg)
Q_LOGGING_CATEGORY(zqLogInterface, "zelto.interface", QtInfoMsg)
Q_LOGGING_CATEGORY(zqLogFeatures, "zelto.features", QtWarningMsg)

namespace {
bool isTraced(const char *subsystem)
{
    static const QList<QByteArray> traced = qgetenv("ZELTO_TRACE").split(',');
    return traced.contains(subsystem) || traced.contains("all");
}
} // namespace

ZQTrace::ZQTrace(const char *subsystem, const char *what)
    : m_subsystem(subsystem), m_what(what), m_enabled(isTraced(subsystem))
{
    if (m_enabled) {
        m_start = std::chrono::steady_clock::now();
    }
}

ZQTrace::~ZQTrace()
{
    if (m_enabled) {
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - m_start;
        std::fprintf(stderr, "%s: %s took %.2f ms\n", m_subsystem, m_what, took.count());
    }
}
