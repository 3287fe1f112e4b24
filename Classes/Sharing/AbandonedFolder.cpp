#include "Classes/Sharing/AbandonedFolder.h"

#include "Kit/Network/ZQHTTPTask.h"

#include <QUuid>

namespace {
constexpr std::chrono::seconds longestTime{10};
constexpr qint64 largestAnswer = qint64(1) << 20;
} // namespace

bool AbandonedFolder::isOne(const QString &name)
{
    const QUuid identifier = QUuid::fromString(name);
    return !identifier.isNull() && identifier.toString(QUuid::WithoutBraces) == name;
}

void AbandonedFolder::remove(ZQHTTPRequest request)
{
    request.wholeTime = longestTime;
    request.maximumSize = largestAnswer;
    request.mostRedirects = 0;
    ZQHTTPTask::start(request, [](const ZQHTTPResponse & /*response*/) {});
}
