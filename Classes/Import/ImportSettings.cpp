#include "Classes/Import/ImportSettings.h"

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>
#include <limits>

ImportSettings ImportSettings::current()
{
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    const auto integer = [&defaults](const char *key) {
        return int(std::clamp<qint64>(defaults.integerForKey(QLatin1String(key)), 0, std::numeric_limits<int>::max()));
    };
    return {
        .useAutoTagging = defaults.boolForKey(QStringLiteral("UseAutoTagging")),
        .importIPTCTags = defaults.boolForKey(QStringLiteral("ImportIPTCTags")),
        .importOpenMetaTags = defaults.boolForKey(QStringLiteral("ImportOpenMetaTags")),
        .iconTagSize = integer("IconTagSize"),
        .smallTagSize = integer("SmallTagSize"),
        .mediumTagSize = integer("MediumTagSize"),
        .firstSaveAfter = std::chrono::milliseconds(integer("ImportShowsAfter")),
    };
}

QString ImportSettings::sizeTag(int width, int height) const
{
    int iconLimit = iconTagSize < 1 ? 32 : iconTagSize;
    if (mediumTagSize < 1) { // without the larger limits, whatever they bounded counts as an icon
        iconLimit = 512;
    } else if (smallTagSize < 1) {
        iconLimit = 128;
    }
    const int longerSide = std::max(width, height);
    if (longerSide <= iconLimit) {
        return QLatin1StringView(zqKey("icon"));
    }
    if (longerSide > smallTagSize) {
        return longerSide <= mediumTagSize ? QLatin1StringView(zqKey("medium")) : QLatin1StringView(zqKey("large"));
    }
    return QLatin1StringView(zqKey("small"));
}
