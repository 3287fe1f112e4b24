#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

// Writers of the formats that sample files come in. Each answers whether the file was written; folders must exist.
namespace SampleFormats {

bool writeBytes(const QByteArray &bytes, const QString &path);

struct JPEGOptions
{
    int orientation = 1;
    int quality = 88;
    bool progressive = false;
};
bool writeJPEG(const QImage &image, const QString &path, const JPEGOptions &options = {});
bool writePNG(const QImage &image, const QString &path);
bool writePNG16(const QImage &image, const QString &path);
bool writeGrayPNG(const QImage &image, const QString &path);
bool writeCMYKJPEG(const QImage &image, const QString &path);
bool writeCMYKTIFF(const QImage &image, const QString &path);
bool writeTIFF(const QList<QImage> &pages, const QString &path); // pages of one size
bool writeGIF(const QList<QImage> &frames, const QString &path); // frames of one size
bool writeJPEG2000(const QImage &image, const QString &path);
bool writeWebP(const QImage &image, const QString &path);
bool writeAnimatedWebP(const QList<QImage> &frames, const QString &path); // frames of one size, 120 ms each

struct ModernOptions
{
    int bits = 8;             // HEIC: 8 or 10; AVIF: 8; JPEG XL: 8 or 16
    QByteArray profile = {};  // ICC; empty: none
    QByteArray metadata = {}; // EXIF; empty: none
};
bool writeHEIC(const QImage &image, const QString &path, const ModernOptions &options = {});
bool writeAVIF(const QImage &image, const QString &path, const ModernOptions &options = {});
bool writeJPEGXL(const QImage &image, const QString &path, const ModernOptions &options = {});
// A HEIC or AVIF file that is shown turned by so many quarters, counterclockwise, as cameras say it in the container.
QByteArray turnedHEIF(QByteArray file, int quarters);
bool writeBMP(const QImage &image, const QString &path);
// A flat-coloured picture with a few shapes, written row by row.
bool writeHugePNG(int side, const QString &path);

enum class Packing { None, RunLength };
QByteArray tgaFile(const QImage &image, Packing packing);
QByteArray psdFile(const QImage &image, Packing packing, int depth = 8); // RGB, or RGBA when the image has alpha
QByteArray icoFile(const QList<QImage> &images);
QByteArray icnsFile(const QList<QImage> &images); // squares of 128, 256, 512 pixels
// One page of `size` points with a content stream.
QByteArray pdfFile(QSize size, const QByteArray &content);
QByteArray epsFile(QSize size, const QByteArray &content);
// A PNG header of that size with hardly any data after it.
QByteArray lyingPNG(quint32 width, quint32 height);

bool setKeywords(const QString &path, const QStringList &keywords);
bool writeAcorn(const QByteArray &composite, const QString &path);

} // namespace SampleFormats
