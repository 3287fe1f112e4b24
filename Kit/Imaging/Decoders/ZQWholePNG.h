#pragma once

#include "Kit/Imaging/Decoders/ZQSourceFile.h"

#include <QSize>

#include <memory>
#include <optional>

// A large PNG inflated at once: in a fraction of the time that it takes row by row, for the memory of all its pixels.
// Only for a whole file of 8 bits a channel that is neither interlaced nor has a palette, a profile, an orientation or
// a transparent colour, and in which everything is right; all others go the long way, to the same pixels.
class ZQWholePNG
{
public:
    static constexpr qint64 mostPixels = qint64(1) << 26;

    // Whether it is such a file is known when this has answered; only the rows are still to be computed.
    // `mayHaveProfile`: a file with a colour profile is one, too; the pixels are as they are stored.
    static std::optional<ZQWholePNG> inflated(const ZQSourceFile &file, bool mayHaveProfile = false);

    QSize size() const { return m_size; }
    int channels() const { return m_channels; } // gray; gray and alpha; R, G, B; or R, G, B, A
    // The rows in their order, without gaps. Valid as long as the object.
    const uchar *nextRow();
    // All of them, after the last was asked for. They live on in what it answers.
    std::shared_ptr<uchar> pixels() const { return m_pixels; }

private:
    ZQWholePNG() = default;

    QSize m_size;
    int m_channels = 0;
    int m_row = 0;
    std::shared_ptr<uchar> m_pixels; // what was inflated from the row at hand on, what is finished before it
};
