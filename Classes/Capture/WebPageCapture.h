#pragma once

#include "Classes/Capture/WebCaptureRequest.h"
#include "Kit/Operations/ZQOperation.h"

#include <QRect>

#include <chrono>
#include <functional>

class WebPage;

// Captures one web page into a file, with a browser of its own that is started for it. Cancelled, it leaves nothing. It
// takes as long as `timeLimit` at most; a page that does not come to an end is captured as it stands by then.
class WebPageCapture : public ZQOperation
{
public:
    // How much is done, 0 to 1, and what is being done, localized; on the operation's thread.
    using Progress = std::function<void(double done, const QString &what)>;

    static constexpr std::chrono::seconds timeLimit{60};

    explicit WebPageCapture(WebCaptureRequest request, Progress progress = {});

    void main() override;
    // Once it has finished. A cancelled one has an error, WebCaptureErrors::Cancelled.
    const WebCaptureResult &result() const { return m_result; }

private:
    bool capture(const QString &folder, ZQError *error);
    bool findRect(WebPage &page, ZQError *error);
    bool writePicture(WebPage &page, const QString &path, ZQError *error);
    bool writeLayers(WebPage &page, const QString &path, ZQError *error);
    void tell(double done, const QString &what) const;

    const WebCaptureRequest m_request;
    const Progress m_progress;
    QRect m_rect; // of the page, in points
    WebCaptureResult m_result;
};
