#pragma once

#include <QLoggingCategory>

#include <chrono>

// One category for each subsystem; `QT_LOGGING_RULES` turns them on and off.
Q_DECLARE_LOGGING_CATEGORY(zqLogApplication) // zelto.application
Q_DECLARE_LOGGING_CATEGORY(zqLogStore)       // zelto.store
Q_DECLARE_LOGGING_CATEGORY(zqLogFiles)       // zelto.files
Q_DECLARE_LOGGING_CATEGORY(zqLogImport)      // zelto.import
Q_DECLARE_LOGGING_CATEGORY(zqLogImaging)     // zelto.imaging
Q_DECLARE_LOGGING_CATEGORY(zqLogTags)        // zelto.tags
Q_DECLARE_LOGGING_CATEGORY(zqLogInterface)   // zelto.interface
// zelto.features: which features are used, by name. Silent unless it is turned on, and nothing of it leaves the
// machine.
Q_DECLARE_LOGGING_CATEGORY(zqLogFeatures)

// Prints how long its scope took, when the environment's ZELTO_TRACE (a comma list of subsystems, or "all") names
// `subsystem`. Costs one comparison otherwise.
class ZQTrace
{
public:
    ZQTrace(const char *subsystem, const char *what);
    ~ZQTrace();
    ZQTrace(const ZQTrace &) = delete;
    ZQTrace &operator=(const ZQTrace &) = delete;

private:
    const char *m_subsystem;
    const char *m_what;
    std::chrono::steady_clock::time_point m_start;
    bool m_enabled;
};
