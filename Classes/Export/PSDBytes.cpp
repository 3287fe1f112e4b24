#include "Classes/Export/PSDBytes.h"

#include "Kit/Imaging/ZQPackBits.h"

#include <algorithm>

void PSDBytes::putValue(char *at, qint64 value, int withLength)
{
    for (int i = 0; i < withLength; ++i) {
        at[i] = char(quint64(value) >> (8 * (withLength - 1 - i)));
    }
}

void PSDBytes::appendValue(QByteArray &data, qint64 value, int withLength)
{
    const int length = std::clamp(withLength, 0, 8);
    const qsizetype at = data.size();
    data.resize(at + length);
    putValue(data.data() + at, value, length);
}

QByteArray PSDBytes::packedBitsForRange(const QByteArray &data, Range range, qsizetype skip)
{
    if (skip < 1 || range.location < 0 || range.location >= data.size()) {
        return {};
    }
    const qsizetype length = std::clamp<qsizetype>(range.length, 0, data.size() - range.location);
    QByteArray samples;
    samples.reserve(length / skip + 1);
    for (qsizetype i = 0; i < length; i += skip) {
        samples.append(data[range.location + i]);
    }
    QByteArray packed(ZQPackBits::mostPacked(samples.size()), Qt::Uninitialized);
    const char *const end = ZQPackBits::pack(
        {reinterpret_cast<const uchar *>(samples.constData()), std::size_t(samples.size())}, packed.data());
    packed.truncate(end - packed.constData());
    return packed;
}
