#include "Kit/Imaging/ZQPaletteFiles.h"

#include <QtEndian>

#include <bit>

namespace {

constexpr quint16 groupStart = 0xC001;
constexpr quint16 groupEnd = 0xC002;
constexpr quint16 colorEntry = 0x0001;
constexpr quint16 normalColor = 2; // neither global nor spot
constexpr qsizetype longestName = 255;

template <typename T>
void append(QByteArray &bytes, T value)
{
    const T big = qToBigEndian(value);
    bytes.append(reinterpret_cast<const char *>(&big), sizeof big);
}

QString plainName(const QString &name)
{
    QString plain = name;
    for (QChar &c : plain) {
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator) {
            c = u' ';
        }
    }
    plain = plain.trimmed().left(longestName);
    if (!plain.isEmpty() && plain.back().isHighSurrogate()) {
        plain.chop(1);
    }
    return plain;
}

QString hexName(QRgb rgb)
{
    return QStringLiteral("#%1").arg(rgb & 0xFFFFFF, 6, 16, QLatin1Char('0')).toUpper();
}

QByteArray encodedName(const QString &name)
{
    QByteArray bytes;
    append(bytes, quint16(name.size() + 1));
    for (const QChar c : name) {
        append(bytes, quint16(c.unicode()));
    }
    append(bytes, quint16(0));
    return bytes;
}

void appendBlock(QByteArray &bytes, quint16 kind, const QByteArray &content)
{
    append(bytes, kind);
    append(bytes, quint32(content.size()));
    bytes.append(content);
}

} // namespace

QByteArray zqASEPalette(const ZQPalette &palette, const QString &name)
{
    QByteArray bytes("ASEF");
    append(bytes, quint16(1));
    append(bytes, quint16(0));
    append(bytes, quint32(palette.colors.size() + 2));
    appendBlock(bytes, groupStart, encodedName(plainName(name)));
    for (const ZQPalette::Color &color : palette.colors) {
        QByteArray content = encodedName(hexName(color.rgb));
        content.append("RGB ");
        for (const int channel : {qRed(color.rgb), qGreen(color.rgb), qBlue(color.rgb)}) {
            append(content, std::bit_cast<quint32>(float(channel) / 255));
        }
        append(content, normalColor);
        appendBlock(bytes, colorEntry, content);
    }
    appendBlock(bytes, groupEnd, {});
    return bytes;
}

QByteArray zqGPLPalette(const ZQPalette &palette, const QString &name)
{
    QByteArray bytes("GIMP Palette\nName: ");
    bytes.append(plainName(name).toUtf8()).append("\nColumns: ");
    bytes.append(QByteArray::number(qMax(palette.colors.size(), qsizetype(1)))).append("\n#\n");
    for (const ZQPalette::Color &color : palette.colors) {
        bytes.append(QStringLiteral("%1 %2 %3\t%4\n")
                         .arg(qRed(color.rgb), 3)
                         .arg(qGreen(color.rgb), 3)
                         .arg(qBlue(color.rgb), 3)
                         .arg(hexName(color.rgb))
                         .toUtf8());
    }
    return bytes;
}
