#include "Kit/Imaging/ZQFileTarget.h"

#include "Kit/Files/ZQSystemFile.h"

#include <cerrno>
#include <unistd.h>

ZQFileTarget::ZQFileTarget(int descriptor) : m_descriptor(descriptor), m_target(vips_target_custom_new())
{
    // One that was written to before, and failed, leaves nothing behind.
    if (::ftruncate(descriptor, 0) != 0 || ::lseek(descriptor, 0, SEEK_SET) != 0) {
        m_systemError = errno;
    }
    g_signal_connect(m_target.get(), "write", G_CALLBACK(write), this);
    g_signal_connect(m_target.get(), "read", G_CALLBACK(read), this);
    g_signal_connect(m_target.get(), "seek", G_CALLBACK(seek), this);
}

gint64 ZQFileTarget::noted(gint64 result)
{
    if (result < 0) {
        m_systemError = errno;
    }
    return result;
}

gint64 ZQFileTarget::write(VipsTargetCustom *, const void *data, gint64 size, ZQFileTarget *self)
{
    return self->noted(zqWriteAll(self->m_descriptor, static_cast<const char *>(data), size) ? size : -1);
}

gint64 ZQFileTarget::read(VipsTargetCustom *, void *data, gint64 size, ZQFileTarget *self)
{
    return self->noted(::read(self->m_descriptor, data, size_t(size)));
}

gint64 ZQFileTarget::seek(VipsTargetCustom *, gint64 offset, int whence, ZQFileTarget *self)
{
    return self->noted(::lseek(self->m_descriptor, offset, whence));
}
