#include "Classes/Sharing/MainThreadAdapter.h"

#include "Kit/Operations/ZQMainThread.h"

#include <QFileInfo>

namespace {

constexpr qsizetype longestName = 180; // UTF-16 units, so that it has room in the 255 bytes or so of most servers
constexpr qsizetype longestInUTF8 = 240;

bool isForbidden(QChar each)
{
    return each == u'/' || each == u'\\' || each.category() == QChar::Other_Control ||
           each.category() == QChar::Separator_Line || each.category() == QChar::Separator_Paragraph;
}

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

QString MainThreadAdapter::nameForUpload() const
{
    const QString suffix = QFileInfo(fileToUploadURL()).suffix();
    QString stem = fileToUploadName().left(longestName);
    for (QChar &each : stem) {
        if (isForbidden(each)) {
            each = u'_';
        }
    }
    const QString ending = suffix.isEmpty() ? QString() : u'.' + suffix;
    while (!stem.isEmpty() && (stem + ending).toUtf8().size() > longestInUTF8) {
        stem.chop(stem.size() > 1 && stem.back().isLowSurrogate() ? 2 : 1);
    }
    if (!stem.isEmpty() && stem.back().isHighSurrogate()) {
        stem.chop(1);
    }
    const bool isOnlyDots = stem.count(u'.') == stem.size();
    return (isOnlyDots ? u'_' + stem : stem) + ending;
}
