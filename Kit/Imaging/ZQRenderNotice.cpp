#include "Kit/Imaging/ZQRenderNotice.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQRenderProtocol.h"

#include <mutex>
#include <utility>

namespace {

struct Notice
{
    std::mutex mutex;
    std::function<void()> handler;
    bool isKnown = false;
};

Notice &notice()
{
    static auto *const made = new Notice; // workers may still start while the program ends
    return *made;
}

void callWhenKnown(std::unique_lock<std::mutex> lock)
{
    const std::function<void()> handler =
        notice().isKnown ? std::exchange(notice().handler, nullptr) : std::function<void()>();
    lock.unlock();
    if (handler) {
        handler();
    }
}

} // namespace

void zqNoteRestrictions(const ZQRenderAnswer &hello)
{
    if (hello.restrictsFiles && hello.restrictsCalls) {
        return;
    }
    std::unique_lock lock(notice().mutex);
    if (!notice().isKnown) {
        qCWarning(zqLogImaging, "this system cannot confine zelto-render: files %s (Landlock), calls %s (seccomp)",
                  hello.restrictsFiles ? "yes" : "no", hello.restrictsCalls ? "yes" : "no");
    }
    notice().isKnown = true;
    callWhenKnown(std::move(lock));
}

void zqSetUnconfinedHandler(std::function<void()> handler)
{
    std::unique_lock lock(notice().mutex);
    notice().handler = std::move(handler);
    callWhenKnown(std::move(lock));
}
