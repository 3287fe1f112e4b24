#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/Decoders/ZQImageDecoding.h"

#include <QStringDecoder>

#include <exiv2/exiv2.hpp>

#include <mutex>

namespace {

QString textOfIPTC(const std::string &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    // Before UTF-8 could be declared, writers used the western code page.
    return decoder.hasError() ? QString::fromLatin1(bytes.data(), qsizetype(bytes.size())) : text;
}

void logFromExiv2(int, const char *message)
{
    qCDebug(zqLogImaging, "Exiv2: %s", message);
}

void startExiv2()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::XmpParser::initialize();
        Exiv2::LogMsg::setHandler(logFromExiv2);
    });
}

// The library takes longer to start on a small PNG than all else that is done with it.
bool isPNGWithoutProfiles(const ZQSourceFile &source)
{
    const QByteArray &start = source.start();
    return start.startsWith("\x89PNG\r\n\x1a\n") && start.size() == source.size() &&
           !start.contains("Raw profile type ");
}

} // namespace

QStringList zqKeywordsOfFile(const ZQSourceFile &source)
{
    if (isPNGWithoutProfiles(source)) {
        return {};
    }
    const ZQSourceFile::Bytes bytes(source);
    if (!bytes.data()) {
        return {};
    }
    startExiv2();
    QStringList keywords;
    try {
        const auto image = Exiv2::ImageFactory::open(bytes.data(), long(bytes.size()));
        image->readMetadata();
        for (const Exiv2::Iptcdatum &datum : image->iptcData()) {
            if (datum.record() == Exiv2::IptcDataSets::application2 && datum.tag() == Exiv2::IptcDataSets::Keywords) {
                const QString keyword = textOfIPTC(datum.toString()).trimmed();
                if (!keyword.isEmpty() && !keywords.contains(keyword)) {
                    keywords.append(keyword);
                }
            }
        }
    } catch (const std::exception &exception) {
        qCDebug(zqLogImaging, "no metadata in %s: %s", qUtf8Printable(source.name()), exception.what());
    }
    return keywords;
}
