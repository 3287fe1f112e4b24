#pragma once

#include "Kit/Imaging/ZQVips.h"

// Where an encoder of libvips writes: an open file, from its beginning. Remembers why the system refused, which the
// library tells only in words. Private to the folders of imaging.
class ZQFileTarget
{
public:
    explicit ZQFileTarget(int descriptor); // open for reading and writing; stays the caller's
    ZQFileTarget(const ZQFileTarget &) = delete;
    ZQFileTarget &operator=(const ZQFileTarget &) = delete;

    VipsTarget *get() const { return VIPS_TARGET(m_target.get()); }
    int systemError() const { return m_systemError; } // 0: none

private:
    static gint64 write(VipsTargetCustom *, const void *data, gint64 size, ZQFileTarget *self);
    static gint64 read(VipsTargetCustom *, void *data, gint64 size, ZQFileTarget *self);
    static gint64 seek(VipsTargetCustom *, gint64 offset, int whence, ZQFileTarget *self);
    gint64 noted(gint64 result);

    int m_descriptor;
    int m_systemError = 0;
    std::unique_ptr<VipsTargetCustom, ZQVipsUnref> m_target;
};
