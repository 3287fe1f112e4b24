#include "Kit/Imaging/ZQRenderNotice.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Imaging/ZQRenderProtocol.h"

#include <utility>

namespace {

struct Notice
{
    ZQMutex mutex;
    std::function<void()> handler ZQ_GUARDED_BY(mutex);
    bool isKnown ZQ_GUARDED_BY(mutex) = false;

    // What is to be called now, without the lock.
    std::function<void()> takeHandlerWhenKnown() ZQ_REQUIRES(mutex)
    {
        return isKnown ? std::exchange(handler, nullptr) : std::function<void()>();
    }
};

Notice &notice()
{
    static auto *const made = new Notice; // workers may still start while the program ends
    return *made;
}

} // namespace

void zqNoteRestrictions(const ZQRenderAnswer &hello)
{
    if (hello.restrictsFiles && hello.restrictsCalls) {
        return;
    }
    Notice &noted = notice();
    std::function<void()> due;
    {
        const ZQLockGuard lock(noted.mutex);
        if (!noted.isKnown) {
            qCWarning(zqLogImaging, "this system cannot confine zelto-render: files %s (Landlock), calls %s (seccomp)",
                      hello.restrictsFiles ? "yes" : "no", hello.restrictsCalls ? "yes" : "no");
        }
        noted.isKnown = true;
        due = noted.takeHandlerWhenKnown();
    }
    if (due) {
        due();
    }
}

void zqSetUnconfinedHandler(std::function<void()> handler)
{
    Notice &noted = notice();
    std::function<void()> due;
    {
        const ZQLockGuard lock(noted.mutex);
        noted.handler = std::move(handler);
        due = noted.takeHandlerWhenKnown();
    }
    if (due) {
        due();
    }
}
