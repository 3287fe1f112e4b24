#include "Kit/Imaging/ZQImagingLibraries.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQVips.h"

#include <array>
#include <cstring>
#include <mutex>
#include <utility>

namespace {

void logFromGLib(const gchar *domain, GLogLevelFlags, const gchar *message, gpointer)
{
    qCDebug(zqLogImaging, "%s: %s", domain ? domain : "library", message);
}

void startVips(const char *programName)
{
    for (const char *domain : {"VIPS", "librsvg", "Rsvg", "Poppler", "GLib-GIO", "GLib-GObject"}) {
        g_log_set_handler(domain, GLogLevelFlags(G_LOG_LEVEL_MASK), logFromGLib, nullptr);
    }
    if (VIPS_INIT(programName)) {
        qCWarning(zqLogImaging, "libvips cannot start: %s", vips_error_buffer());
        return;
    }
    vips_concurrency_set(1); // imports decode several files at once already
    vips_cache_set_max(0);
    vips_block_untrusted_set(TRUE);
    for (const char *wanted : {"VipsForeignLoadJp2k", "VipsForeignLoadPdf", "VipsForeignLoadSvg"}) {
        vips_operation_block_set(wanted, FALSE);
    }
}

struct VipsThread
{
    ~VipsThread() { vips_thread_shutdown(); }
};

} // namespace

void zqInitializeImagingLibraries(const char *programName)
{
    static std::once_flag once;
    std::call_once(once, [programName] { startVips(programName); });
}

void zqEnterVips()
{
    zqInitializeImagingLibraries("zelto");
    thread_local const VipsThread thread;
    static_cast<void>(thread);
}

namespace {

thread_local bool memoryRanOut = false;

} // namespace

bool zqTakeVipsMemoryShortage()
{
    return std::exchange(memoryRanOut, false);
}

void zqLogVipsError(const QString &path)
{
    char *text = vips_error_buffer_copy();
    if (text && *text) {
        memoryRanOut = memoryRanOut || std::strstr(text, "out of memory");
        qCDebug(zqLogImaging, "%s: %s", qUtf8Printable(path), text);
    }
    g_free(text);
}
