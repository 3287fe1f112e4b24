#pragma once

#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/ZQPackedPicture.h"

#include <QByteArray>

#include <array>
#include <vector>

// The planes of a part of a picture, packed as its rows come; see ZQPackedPicture, which reads what is written.
class ZQPlanes
{
public:
    ZQPlanes(QSize size, QRect part); // of the picture, and what of it
    bool hasMemory() const;

    // A row of the part: R, G, B, A. From the top; no more than there are.
    void add(const uchar *pixels);
    void addAgain(); // the last one once more

    QSize size() const { return m_size; }
    QRect part() const { return m_part; }
    bool isIncomplete() const { return m_isIncomplete; }
    void setIncomplete(bool isIncomplete) { m_isIncomplete = isIncomplete; }
    bool write(int descriptor) const; // false with errno

private:
    struct Plane
    {
        QByteArray counts;
        std::shared_ptr<uchar> memory;
        char *last = nullptr; // the row that came last
        char *end = nullptr;
        std::vector<uchar> samples;
    };
    void split(const uchar *pixels);
    void count(Plane &plane) const;

    QSize m_size;
    QRect m_part;
    int m_row = 0;
    bool m_isIncomplete = false;
    std::array<Plane, ZQPackedPicture::channelCount> m_planes;
};

// At full size, upright, sRGB. Nothing and an error when it cannot be decoded or there is not enough memory.
std::optional<ZQPlanes> zqPlanesOfFile(const ZQSourceFile &file, const QRect &window, ZQError *error);
