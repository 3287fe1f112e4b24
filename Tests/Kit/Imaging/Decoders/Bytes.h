#pragma once

#include "Kit/Imaging/Decoders/ZQImageDecoding.h"

#include <QByteArray>
#include <QtEndian>

// Files made byte by byte, and what is read of them as text that can be compared.

template <class T>
QByteArray little(T value)
{
    QByteArray out(sizeof(T), Qt::Uninitialized);
    qToLittleEndian(value, out.data());
    return out;
}

template <class T>
QByteArray big(T value)
{
    QByteArray out(sizeof(T), Qt::Uninitialized);
    qToBigEndian(value, out.data());
    return out;
}

inline ZQSourceFile fileOf(const QByteArray &bytes, const char *name)
{
    return ZQSourceFile::ofBytes(bytes, QString::fromUtf8(name));
}

// "2x1 ff0000ff 00000000", with " incomplete" behind when it is; of nothing, the reason why.
inline std::string drawn(const ZQDecoder &decoder, const ZQDecodeRequest &request)
{
    ZQError error;
    const ZQBitmap bitmap = decoder.decode(request, &error);
    if (bitmap.isNull()) {
        return error.userInfo.value(ZQError::failureReasonKey).toString().toStdString();
    }
    QString out = QStringLiteral("%1x%2").arg(bitmap.width()).arg(bitmap.height());
    for (int y = 0; y < bitmap.height(); ++y) {
        for (int x = 0; x < bitmap.width(); ++x) {
            const QByteArray pixel(reinterpret_cast<const char *>(bitmap.constScanLine(y)) + x * 4, 4);
            out += u' ' + QString::fromLatin1(pixel.toHex());
        }
    }
    return (out + (bitmap.isIncomplete() ? QStringLiteral(" incomplete") : QString())).toStdString();
}

// "2x1 8 bits RGB", with " alpha" behind; of nothing, the reason why.
inline std::string described(const ZQDecoder &decoder, const ZQSourceFile &file)
{
    ZQError error;
    const auto properties = decoder.properties(file, &error);
    if (!properties) {
        return error.userInfo.value(ZQError::failureReasonKey).toString().toStdString();
    }
    return QStringLiteral("%1x%2 %3 bits %4%5")
        .arg(properties->pixelWidth)
        .arg(properties->pixelHeight)
        .arg(properties->bitsPerSample)
        .arg(properties->colorModel, properties->hasAlpha ? QStringLiteral(" alpha") : QString())
        .toStdString();
}

inline constexpr char damaged[] = "The file is damaged or incomplete.";
