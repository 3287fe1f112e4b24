#include "Classes/Interface/InfoPanel/DocumentSize.h"

#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Files/ZQVectorTypes.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QFileInfo>
#include <QLocale>
#include <QPointer>

#include <cmath>

namespace {

QString textOf(const ZQImageProperties &properties)
{
    constexpr double millimetresPerInch = 25.4;
    const auto millimetres = [&](int points) {
        return QLocale().toString(std::lround(points * millimetresPerInch / std::max(1, properties.dpi)));
    };
    const QString pages = properties.frameCount == 1
                              ? zqLocalized("1 page")
                              : zqFormat(zqLocalized("%@ pages"), {QLocale().toString(properties.frameCount)});
    return pages + QStringLiteral(" · ") + millimetres(properties.pixelWidth) + QStringLiteral(" × ") +
           millimetres(properties.pixelHeight) + QStringLiteral(" mm");
}

} // namespace

DocumentSize::DocumentSize(QObject *parent)
    : QObject(parent), m_queue(std::make_unique<ZQOperationQueue>(QStringLiteral("document size"), 1))
{
}

DocumentSize::~DocumentSize() = default;

bool DocumentSize::isDocument(const QString &path)
{
    return ZQVectorTypes::havePages(zqPathExtension(path));
}

QString DocumentSize::textFor(const QString &path)
{
    const QDateTime modified = QFileInfo(path).lastModified();
    if (path == m_path && modified == m_modified) {
        return m_text;
    }
    m_path = path;
    m_modified = modified;
    m_text.clear();
    m_queue->cancelAllOperations(); // moving through documents with a held key reads the one where it stops
    m_queue->addOperationWithBlock([self = QPointer(this), path] {
        const auto properties = ZQImageSource::propertiesOfFile(path);
        if (!properties || !properties->isVector) {
            return;
        }
        zqOnMainThread([self, path, text = textOf(*properties)] {
            if (self && self->m_path == path) {
                self->m_text = text;
                Q_EMIT self->didRead(path, text);
            }
        });
    });
    return {};
}
