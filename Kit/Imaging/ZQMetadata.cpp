#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQImageDecoding.h"

#include <QFile>
#include <QStringDecoder>

#include <exiv2/exiv2.hpp>

namespace {

QString textOfIPTC(const std::string &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    // Before UTF-8 could be declared, writers used the western code page.
    return decoder.hasError() ? QString::fromLatin1(bytes.data(), qsizetype(bytes.size())) : text;
}

} // namespace

QStringList zqKeywordsOfFile(const QString &path)
{
    QStringList keywords;
    try {
        const auto image = Exiv2::ImageFactory::open(QFile::encodeName(path).toStdString());
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
        qCDebug(zqLogImaging, "no metadata in %s: %s", qUtf8Printable(path), exception.what());
    }
    return keywords;
}
