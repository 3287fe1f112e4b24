#include "Tools/samples/SampleCollection.h"

#include "Tools/samples/SampleArchives.h"
#include "Tools/samples/SampleFormats.h"
#include "Tools/samples/SampleRaw.h"
#include "Tools/samples/SampleScenes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTransform>

#include <array>

namespace {

using SampleFormats::Packing;
using SampleScenes::Style;

struct Photo
{
    const char *name; // the extension decides the format
    Style style;
    std::array<const char *, 5> palette;
    QSize size;
};

const std::array photos{
    Photo{"Alpine Dawn.jpg", Style::Mountains, {"#f6d5a8", "#f3a683", "#b56576", "#355070", "#fff3d6"}, {1600, 1067}},
    Photo{"Blue Ridge.jpg", Style::Mountains, {"#cfe8ff", "#8fc1e8", "#4b83b6", "#16324f", "#ffffff"}, {1600, 900}},
    Photo{
        "Emerald Valley.jpg", Style::Mountains, {"#e8f5d0", "#a8d5a2", "#4f9d69", "#12422f", "#fff6b0"}, {1200, 1500}},
    Photo{"Violet Dusk.jpg", Style::Mountains, {"#fbc2eb", "#a18cd1", "#6a4c93", "#2b1a4a", "#ffe0f0"}, {1800, 1000}},
    Photo{"Red Canyon.jpg", Style::Mountains, {"#ffd6a5", "#f4845f", "#c8372d", "#4a0f12", "#fff1d0"}, {1500, 1000}},
    Photo{"Ocean Swell.png", Style::Waves, {"#e0fbfc", "#98c1d9", "#3d86c6", "#1d4e89", "#0b2545"}, {1400, 900}},
    Photo{"Desert Dunes.png", Style::Waves, {"#fff1c9", "#fbc687", "#ea907a", "#aa5b3c", "#5c2e1f"}, {1600, 1000}},
    Photo{"Lavender Field.png", Style::Waves, {"#f8edff", "#dcc6f5", "#a97fd8", "#7243b1", "#3c1f70"}, {1200, 1200}},
    Photo{"Tea Terraces.png", Style::Waves, {"#f4f9d9", "#cfe59a", "#8cc152", "#4c8c2b", "#1e4d1a"}, {900, 1350}},
    Photo{"City Lights.jpg", Style::Bokeh, {"#0b0f2a", "#1b1f4b", "#ff7b54", "#ffb26b", "#ffd56f"}, {1600, 1067}},
    Photo{"Rose Lights.jpg", Style::Bokeh, {"#3a0a24", "#7a1144", "#ff4f9a", "#ff8fc0", "#ffd6e8"}, {1067, 1600}},
    Photo{"Firefly Wood.jpg", Style::Bokeh, {"#04150c", "#0b3d20", "#5fbf5f", "#b6e86b", "#f7ffb0"}, {1400, 1400}},
    Photo{"Lagoon Lights.jpg", Style::Bokeh, {"#03203a", "#04547a", "#1fb6d0", "#74e3e8", "#e0ffff"}, {2000, 1000}},
    Photo{"Peach Gradient.png", Style::Mesh, {"#ffecd2", "#fcb69f", "#ff8a80", "#ffd180", "#fff8e1"}, {1200, 800}},
    Photo{"Aurora Gradient.png", Style::Mesh, {"#0f2027", "#00c9a7", "#2c7be5", "#845ec2", "#1a936f"}, {1400, 900}},
    Photo{"Candy Gradient.png", Style::Mesh, {"#ff61d2", "#fe9090", "#ff9ff3", "#feca57", "#f368e0"}, {1000, 1000}},
    Photo{"Citrus Gradient.png", Style::Mesh, {"#f9f871", "#ffc75f", "#ff9671", "#f7f06d", "#ffe066"}, {800, 1200}},
    Photo{"Poster Primary.png", Style::Poster, {"#f1e9d2", "#d62828", "#003049", "#fcbf49", "#1b998b"}, {1200, 1500}},
    Photo{"Poster Forest.png", Style::Poster, {"#e9f0d9", "#588157", "#344e41", "#dad7cd", "#a3b18a"}, {1200, 1200}},
    Photo{"Poster Night.png", Style::Poster, {"#14213d", "#fca311", "#274690", "#576ca8", "#e5e5e5"}, {1600, 1200}},
    Photo{"Rose Marble.jpg", Style::Marble, {"#fff0f3", "#ffb3c1", "#ff758f", "#c9184a", "#590d22"}, {1000, 1000}},
    Photo{"Ink Marble.jpg", Style::Marble, {"#f8f9fa", "#ced4da", "#6c757d", "#343a40", "#101214"}, {1300, 860}},
    Photo{"Malachite.jpg", Style::Marble, {"#d8f3dc", "#74c69d", "#2d6a4f", "#1b4332", "#081c15"}, {860, 1300}},
    Photo{"Amber Marble.jpg", Style::Marble, {"#fff3b0", "#e09f3e", "#b5651d", "#7f3b08", "#2f1500"}, {1200, 800}},
    Photo{"Sapphire.jpg", Style::Marble, {"#caf0f8", "#48cae4", "#0077b6", "#023e8a", "#03045e"}, {1200, 900}},
    Photo{"Panorama.jpg", Style::Mountains, {"#ffe5d9", "#ffcad4", "#9d8189", "#3f3244", "#fff8f0"}, {2400, 700}},
};

const QByteArray drawing("0.85 0.2 0.25 rg 40 40 220 220 re f 0.1 0.35 0.75 rg 150 120 m 360 120 l 255 280 l h f");
const QByteArray
    postScript("0.9 0.5 0.1 setrgbcolor 20 20 160 110 rectfill 0.1 0.5 0.4 setrgbcolor 200 100 60 0 360 arc fill");
const QByteArray vectorText(
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"320\" height=\"240\" viewBox=\"0 0 320 240\">"
    "<circle cx=\"120\" cy=\"120\" r=\"90\" fill=\"#2a9d8f\"/>"
    "<rect x=\"150\" y=\"60\" width=\"140\" height=\"120\" rx=\"18\" fill=\"#e76f51\" fill-opacity=\"0.8\"/></svg>\n");

QList<QColor> colorsOf(const Photo &photo)
{
    QList<QColor> out;
    for (const char *name : photo.palette) {
        out.append(QColor(QLatin1String(name)));
    }
    return out;
}

// Keeps the list of what was written, and the first failure.
class Writer
{
public:
    explicit Writer(const QString &folder) : m_folder(folder) {}

    // `write` gets the absolute path.
    void add(const QString &name, const QString &meaning, const std::function<bool(const QString &)> &write)
    {
        const QString path = m_folder.filePath(name);
        const bool done = QDir().mkpath(QFileInfo(path).absolutePath()) && write(path);
        if (!done && m_failure.isEmpty()) {
            m_failure = name;
        }
        m_contents += name.toUtf8() + '\t' + meaning.toUtf8() + '\n';
    }

    void addBytes(const QString &name, const QString &meaning, const QByteArray &bytes)
    {
        add(name, meaning, [&bytes](const QString &path) { return SampleFormats::writeBytes(bytes, path); });
    }

    QString finish()
    {
        const bool listed = SampleFormats::writeBytes(m_contents, m_folder.filePath(QStringLiteral("CONTENTS.txt")));
        return listed || !m_failure.isEmpty() ? m_failure : QStringLiteral("CONTENTS.txt");
    }

    QByteArray bytesOf(const QString &name) const
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QDir m_folder;
    QByteArray m_contents;
    QString m_failure;
};

void addPhotos(Writer &writer)
{
    quint32 seed = 1;
    for (const Photo &photo : photos) {
        const QImage image = SampleScenes::scene(photo.style, colorsOf(photo), photo.size, seed++);
        const QString name = QStringLiteral("Photos/") + QLatin1String(photo.name);
        const QString meaning = QStringLiteral("%1 x %2").arg(photo.size.width()).arg(photo.size.height());
        writer.add(name, meaning, [&](const QString &path) {
            return path.endsWith(QLatin1String(".jpg")) ? SampleFormats::writeJPEG(image, path)
                                                        : SampleFormats::writePNG(image, path);
        });
    }
}

void addLogos(Writer &writer)
{
    static const std::array names{"Trefoil", "Blossom", "Dahlia", "Sunburst", "Tile", "Badge", "Coin", "Compass"};
    static const std::array colors{"#e63946", "#f4a261", "#2a9d8f", "#457b9d",
                                   "#6d597a", "#1d3557", "#ffb703", "#8ac926"};
    for (int i = 0; i < int(names.size()); ++i) {
        const QColor color(QLatin1String(colors.at(size_t(i))));
        const QImage image = SampleScenes::logo(i, color, color.lighter(170), 640);
        writer.add(QStringLiteral("Brand 2026/Logos/%1.png").arg(QLatin1String(names.at(size_t(i)))),
                   QStringLiteral("logo with transparency"),
                   [&image](const QString &path) { return SampleFormats::writePNG(image, path); });
    }
    writer.addBytes(QStringLiteral("Brand 2026/Mark.svg"), QStringLiteral("vector drawing"), vectorText);
    writer.addBytes(QStringLiteral("Brand 2026/Artwork.ai"), QStringLiteral("AI with a PDF inside, 400 x 300 points"),
                    SampleFormats::pdfFile({400, 300}, drawing));
    writer.addBytes(QStringLiteral("Brand 2026/Guidelines.pdf"), QStringLiteral("PDF of one page"),
                    SampleFormats::pdfFile({595, 842}, drawing));
    writer.addBytes(QStringLiteral("Brand 2026/Stamp.eps"), QStringLiteral("EPS, 280 x 180 points"),
                    SampleFormats::epsFile({280, 180}, postScript));
}

void addOrientations(Writer &writer)
{
    const QImage upright = SampleScenes::asymmetricScene({400, 300});
    for (int orientation = 1; orientation <= 8; ++orientation) {
        writer.add(QStringLiteral("Orientations/orientation-%1.jpg").arg(orientation),
                   QStringLiteral("shows 400 x 300: red, green above blue, yellow; arrow upwards"),
                   [&](const QString &path) {
                       return SampleFormats::writeJPEG(SampleScenes::storedForOrientation(upright, orientation), path,
                                                       {orientation, 92, false});
                   });
    }
}

using ImageWriter = bool (*)(const QImage &, const QString &);

template <bool (*write)(const QImage &, const QString &, const SampleFormats::ModernOptions &)>
bool writeModern(const QImage &image, const QString &path)
{
    return write(image, path, {});
}

bool writePhonePicture(const QImage &image, const QString &path)
{
    if (!SampleFormats::writeHEIC(image.transformed(QTransform().rotate(90)), path)) {
        return false;
    }
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return SampleFormats::writeBytes(SampleFormats::turnedHEIF(bytes, 1), path);
}

void addRasterFormats(Writer &writer, const QImage &scene, const QImage &logo)
{
    struct Row
    {
        const char *name;
        const char *meaning;
        ImageWriter write;
        const QImage &image;
    };
    const std::array rows{
        Row{"deep.png", "16 bits a sample", SampleFormats::writePNG16, scene},
        Row{"gray.png", "greyscale", SampleFormats::writeGrayPNG, scene},
        Row{"cmyk.jpg", "CMYK JPEG", SampleFormats::writeCMYKJPEG, scene},
        Row{"cmyk.tiff", "CMYK TIFF", SampleFormats::writeCMYKTIFF, scene},
        Row{"wavelet.jp2", "JPEG 2000", SampleFormats::writeJPEG2000, scene},
        Row{"web.webp", "WebP with transparency", SampleFormats::writeWebP, logo},
        Row{"phone.heic", "HEIC of a phone, stored on its side", writePhonePicture, scene},
        Row{"web.avif", "AVIF with transparency", writeModern<SampleFormats::writeAVIF>, logo},
        Row{"modern.jxl", "JPEG XL with transparency", writeModern<SampleFormats::writeJPEGXL>, logo},
        Row{"plain.bmp", "BMP", SampleFormats::writeBMP, scene},
    };
    for (const Row &row : rows) {
        writer.add(QStringLiteral("Formats/") + QLatin1String(row.name), QLatin1String(row.meaning),
                   [&row](const QString &path) { return row.write(row.image, path); });
    }
    writer.add(QStringLiteral("Formats/progressive.jpg"), QStringLiteral("progressive JPEG"),
               [&scene](const QString &path) {
                   return SampleFormats::writeJPEG(scene, path, {1, 88, true});
               });
    writer.add(QStringLiteral("Formats/keywords.jpg"), QStringLiteral("IPTC keywords: harbour, été, blue"),
               [&scene](const QString &path) {
                   return SampleFormats::writeJPEG(scene, path) &&
                          SampleFormats::setKeywords(
                              path, {QStringLiteral("harbour"), QStringLiteral("été"), QStringLiteral("blue")});
               });
}

void addOtherFormats(Writer &writer, const QImage &scene, const QImage &logo)
{
    QList<QImage> frames;
    for (int i = 0; i < 6; ++i) {
        frames.append(SampleScenes::logo(i % 4, QColor::fromHsv(i * 60, 200, 220), Qt::white, 200));
    }
    writer.add(QStringLiteral("Formats/animated.gif"), QStringLiteral("animated GIF, 6 frames"),
               [&frames](const QString &path) { return SampleFormats::writeGIF(frames, path); });
    const QList<QImage> pages{scene, scene.mirrored(true, false)};
    writer.add(QStringLiteral("Formats/pages.tiff"), QStringLiteral("TIFF of two pages"),
               [&pages](const QString &path) { return SampleFormats::writeTIFF(pages, path); });
    const QList<QImage> icons{logo.scaled(128, 128, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
                              logo.scaled(256, 256, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)};
    writer.addBytes(QStringLiteral("Formats/icon.ico"), QStringLiteral("ICO, 128 and 256 pixels"),
                    SampleFormats::icoFile(icons));
    writer.addBytes(QStringLiteral("Formats/icon.icns"), QStringLiteral("ICNS, 128 and 256 pixels"),
                    SampleFormats::icnsFile(icons));
    writer.addBytes(QStringLiteral("Formats/runs.tga"), QStringLiteral("TGA, run-length coded, with transparency"),
                    SampleFormats::tgaFile(logo, Packing::RunLength));
    writer.addBytes(QStringLiteral("Formats/plain.tga"), QStringLiteral("TGA"),
                    SampleFormats::tgaFile(scene, Packing::None));
    writer.addBytes(QStringLiteral("Formats/layered.psd"), QStringLiteral("PSD with transparency"),
                    SampleFormats::psdFile(logo, Packing::RunLength));
    writer.addBytes(QStringLiteral("Formats/deep.psd"), QStringLiteral("PSD of 16 bits a sample"),
                    SampleFormats::psdFile(scene, Packing::None, 16));
    writer.addBytes(QStringLiteral("Formats/sensor.dng"), QStringLiteral("camera raw (DNG) without a preview"),
                    dngFile(scene));
    writer.add(QStringLiteral("Formats/Screen.sketch/QuickLook/Preview.png"),
               QStringLiteral("preview of a Sketch package"),
               [&scene](const QString &path) { return SampleFormats::writePNG(scene, path); });
    writer.addBytes(QStringLiteral("Formats/Screen.sketch/Data"), QStringLiteral("content of a Sketch package"),
                    "sample data\n");
    const QByteArray composite = writer.bytesOf(QStringLiteral("Formats/Screen.sketch/QuickLook/Preview.png"));
    writer.add(QStringLiteral("Formats/painting.acorn"), QStringLiteral("Acorn document"),
               [&composite](const QString &path) { return SampleFormats::writeAcorn(composite, path); });
}

constexpr char snapInfo[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>imageGrabPath</key><string>screen.png</string>
<key>tags</key><array><string>harbour</string><string>reference</string></array>
<key>url</key><string>https://example.org/harbour</string>
</dict></plist>
)";

void addPackages(Writer &writer, const QImage &scene)
{
    const QByteArray preview = writer.bytesOf(QStringLiteral("Formats/Screen.sketch/QuickLook/Preview.png"));
    writer.addBytes(QStringLiteral("Formats/New.sketch"),
                    QStringLiteral("Sketch document in one file, as newer versions write it"),
                    SampleArchives::zipFile({{"document.json", "{}"}, {"previews/preview.png", preview}}));
    writer.add(QStringLiteral("Formats/Harbour.snap/screen.png"), QStringLiteral("picture of a snap package"),
               [&scene](const QString &path) { return SampleFormats::writePNG(scene, path); });
    writer.addBytes(QStringLiteral("Formats/Harbour.snap/Info.plist"),
                    QStringLiteral("tags and address of a snap package"), snapInfo);
}

void addArchives(Writer &writer)
{
    using SampleArchives::Entry;
    const QByteArray photo = writer.bytesOf(QStringLiteral("Photos/Malachite.jpg"));
    const QByteArray logo = writer.bytesOf(QStringLiteral("Brand 2026/Logos/Trefoil.png"));
    const QByteArray drawn = writer.bytesOf(QStringLiteral("Brand 2026/Mark.svg"));
    const QByteArray inner = SampleArchives::zipFile({{"stone.jpg", photo}, {"More/mark.svg", drawn}});
    writer.addBytes(QStringLiteral("Archives/Loose.zip"), QStringLiteral("two pictures"),
                    SampleArchives::zipFile({{"stone.jpg", photo}, {"trefoil.png", logo}}));
    writer.addBytes(QStringLiteral("Archives/One Folder.zip"), QStringLiteral("one folder, with what a Mac adds"),
                    SampleArchives::zipFile({{"Stones/", {}, Entry::Kind::Folder},
                                             {"Stones/stone.jpg", photo},
                                             {"__MACOSX/Stones/._stone.jpg", "attributes"}}));
    writer.addBytes(QStringLiteral("Archives/Nested.zip"), QStringLiteral("an archive in an archive"),
                    SampleArchives::zipFile({{"trefoil.png", logo}, {"Inner.zip", inner}}));
    writer.addBytes(QStringLiteral("Archives/Rar.rar"), QStringLiteral("RAR 4"),
                    SampleArchives::rarFile({{"stone.jpg", photo}}));
    writer.addBytes(QStringLiteral("Archives/Rar 5.rar"), QStringLiteral("RAR 5"),
                    SampleArchives::rar5File({{"trefoil.png", logo}}));
    writer.addBytes(QStringLiteral("Archives/Japanese.zip"), QStringLiteral("a name in CP932"),
                    SampleArchives::zipFile({{"\x8E\xCA\x90\x5E.jpg", photo}}));
    writer.addBytes(
        QStringLiteral("Broken/bad-names.zip"),
        QStringLiteral("names that lead out, an absolute one, one with backslashes, a link, one name twice"),
        SampleArchives::zipFile({{"../../escaped.png", logo},
                                 {"/absolute.png", logo},
                                 {"Windows\\trefoil.png", logo},
                                 {"link.png", "/etc/passwd", Entry::Kind::Link},
                                 {"twice.png", logo},
                                 {"twice.png", photo}}));
    writer.addBytes(QStringLiteral("Broken/encrypted.zip"), QStringLiteral("says that it needs a password"),
                    SampleArchives::zipFile({{"secret.png", logo, Entry::Kind::File, true}}));
    writer.addBytes(QStringLiteral("Broken/cut.zip"), QStringLiteral("archive cut at nine tenths"),
                    inner.left(inner.size() * 9 / 10));
}

void addBroken(Writer &writer, const QImage &scene)
{
    const QByteArray jpeg = writer.bytesOf(QStringLiteral("Formats/keywords.jpg"));
    QImage dot(1, 1, QImage::Format_RGB32);
    dot.fill(QColor(200, 40, 40));
    writer.add(QStringLiteral("Broken/one-pixel.png"), QStringLiteral("sound; one red pixel"),
               [&dot](const QString &path) { return SampleFormats::writePNG(dot, path); });
    writer.add(QStringLiteral("Broken/really-a-jpeg.png"), QStringLiteral("a sound JPEG with the wrong extension"),
               [&scene](const QString &path) { return SampleFormats::writeJPEG(scene, path); });
    writer.addBytes(QStringLiteral("Broken/most-there.jpg"), QStringLiteral("JPEG cut at nine tenths"),
                    jpeg.left(jpeg.size() * 9 / 10));
    writer.addBytes(QStringLiteral("Broken/hardly-there.jpg"), QStringLiteral("JPEG cut before its first row"),
                    jpeg.left(jpeg.indexOf("\xff\xda") + 14));
    writer.addBytes(QStringLiteral("Broken/empty.png"), QStringLiteral("0 bytes"), {});
    writer.addBytes(QStringLiteral("Broken/text.jpg"), QStringLiteral("text, no picture"), "This is no picture.\n");
    writer.addBytes(QStringLiteral("Broken/claims-much.png"), QStringLiteral("header of 100000 x 100000, no data"),
                    SampleFormats::lyingPNG(100000, 100000));
    writer.addBytes(QStringLiteral("Broken/too-big.ai"), QStringLiteral("AI of 12000 x 12000 points"),
                    SampleFormats::pdfFile({12000, 12000}, drawing));
}

} // namespace

QString SampleCollection::write(const QString &folder, Huge huge)
{
    Writer writer(folder);
    addPhotos(writer);
    addLogos(writer);
    addOrientations(writer);
    const QImage scene = SampleScenes::scene(Style::Mountains, colorsOf(photos.at(1)), {640, 480}, 77);
    const QImage logo = SampleScenes::logo(1, QColor(230, 57, 70), QColor(255, 214, 102), 320);
    addRasterFormats(writer, scene, logo);
    addOtherFormats(writer, scene, logo);
    addPackages(writer, scene);
    addArchives(writer);
    addBroken(writer, scene);
    if (huge == Huge::With) {
        writer.add(QStringLiteral("Huge/flat-20000.png"), QStringLiteral("20000 x 20000"),
                   [](const QString &path) { return SampleFormats::writeHugePNG(20000, path); });
    }
    return writer.finish();
}
