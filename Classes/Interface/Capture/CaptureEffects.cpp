#include "Classes/Interface/Capture/CaptureEffects.h"

#include "Classes/Interface/Capture/ScreenFlash.h"
#include "Classes/Interface/Capture/SnapSound.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Widgets/ZQTheme.h"

namespace {

bool isWanted()
{
    return ZQUserDefaults::standardUserDefaults().boolForKey(QLatin1StringView(CaptureEffects::preference));
}

} // namespace

void CaptureEffects::playSound()
{
    if (isWanted()) {
        SnapSound::play();
    }
}

void CaptureEffects::flash(const QList<QRect> &frames)
{
    const int time = ZQTheme::current().animationMilliseconds();
    if (isWanted() && time > 0) {
        for (const QRect &frame : frames) {
            ScreenFlash::show(frame, time);
        }
    }
}

bool CaptureEffects::endFlash()
{
    return ScreenFlash::endAll();
}
