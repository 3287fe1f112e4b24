#include "Classes/Sharing/WebBrowser.h"

#include <QDesktopServices>

namespace {

class DesktopBrowser final : public WebBrowser
{
public:
    bool open(const QUrl &url) override { return QDesktopServices::openUrl(url); }
};

std::unique_ptr<WebBrowser> &current()
{
    static std::unique_ptr<WebBrowser> browser;
    return browser;
}

} // namespace

WebBrowser &WebBrowser::shared()
{
    if (!current()) {
        current() = std::make_unique<DesktopBrowser>();
    }
    return *current();
}

void WebBrowser::setShared(std::unique_ptr<WebBrowser> browser)
{
    current() = std::move(browser);
}
