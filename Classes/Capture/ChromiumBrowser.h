#pragma once

#include "Classes/Capture/DevToolsPipe.h"
#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>
#include <sys/types.h>

// A browser that is started for one page, without a window and with a profile of its own in the temporary area: it
// knows nothing of the person, keeps nothing, and is gone with all its processes and files when this object is. The
// system ends it when the thread that started it ends.
class ChromiumBrowser
{
public:
    // The user default that names the program to use; without it the usual names are looked for in PATH.
    static inline const QString programKey = QStringLiteral("WebCaptureBrowser");

    // Empty, with an error that says what to install, when there is none.
    static QString program(ZQError *error = nullptr);
    static std::unique_ptr<ChromiumBrowser> start(ZQError *error = nullptr);
    ~ChromiumBrowser();
    ChromiumBrowser(const ChromiumBrowser &) = delete;
    ChromiumBrowser &operator=(const ChromiumBrowser &) = delete;

    DevToolsPipe &pipe() { return *m_pipe; }
    pid_t processID() const { return m_process; }

private:
    ChromiumBrowser() = default;
    bool spawn(const QString &program);

    QByteArray m_folder;
    QByteArray m_shortFolder; // for its own temporary files: the same, or another one
    pid_t m_process = -1;
    std::optional<DevToolsPipe> m_pipe;
};
