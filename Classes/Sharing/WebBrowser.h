#pragma once

#include <QUrl>

#include <memory>

// The person's web browser. Main thread.
class WebBrowser
{
public:
    virtual ~WebBrowser() = default;
    static WebBrowser &shared();
    static void setShared(std::unique_ptr<WebBrowser> browser); // for tests; null: the desktop's again
    virtual bool open(const QUrl &url) = 0;                     // false: there is none
};
