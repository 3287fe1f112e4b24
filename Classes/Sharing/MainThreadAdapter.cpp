#include "Classes/Sharing/MainThreadAdapter.h"

#include "Kit/Files/ZQFreeName.h"

#include <QFileInfo>

#include <algorithm>

namespace {
constexpr qsizetype longestName = 240; // bytes; servers have 255 or so, and some put something behind it
} // namespace

void MainThreadAdapter::onMainThread(std::function<void()> block)
{
    if (zqIsMainThread()) {
        block();
    } else {
        zqOnMainThread([self = shared_from_this(), block = std::move(block)] { block(); });
    }
}

void MainThreadAdapter::start()
{
    onMainThread([this] {
        if (isCancelled()) {
            finish();
            return;
        }
        setExecuting(true);
        begin();
    });
}

void MainThreadAdapter::cancel()
{
    CloudAdapter::cancel();
    onMainThread([this] {
        if (isExecuting() && !isFinished()) {
            abandon();
            finish();
        }
    });
}

// Not `zqSafeName`, which is for files of this machine: at a service a name may begin with a dot, hides nothing, and is
// otherwise the title as it stands.
QString MainThreadAdapter::nameForUpload() const
{
    QString stem = fileToUploadName();
    std::replace_if(
        stem.begin(), stem.end(), [](QChar each) { return each == u'\\' || !zqIsSafeInName(each); }, u'_');
    if (stem.count(u'.') == stem.size()) { // "..", which leads elsewhere
        stem.prepend(u'_');
    }
    const QString suffix = QFileInfo(fileToUploadURL()).suffix();
    return zqNumberedName(suffix.isEmpty() ? stem : stem + u'.' + suffix, 0, longestName);
}
