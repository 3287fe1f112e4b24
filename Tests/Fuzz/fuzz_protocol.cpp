#include "Classes/Services/ProtocolCommand.h"

#include <QUrl>

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

} // namespace

// Whatever is taken keeps to what was promised of it; whatever is not says why.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString url = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    ZQError error;
    const auto command = ProtocolCommand::fromURL(url, &error);
    require(command.has_value() == error.isNull());
    if (!command) {
        require(!error.localizedDescription().isEmpty());
        return 0;
    }
    require(QUrl(command->images.pageUrl).isValid() && !command->pageHost().isEmpty());
    require(command->images.images.size() <= ProtocolCommand::mostImages);
    for (const QString &image : command->images.images) {
        require(image.startsWith(u"data:image/", Qt::CaseInsensitive) || QUrl(image).scheme().startsWith(u"http"));
    }
    require(command->frame.isNull() || !command->frame.isEmpty());
    require(command->images.pageTitle.size() <= ProtocolCommand::longestTitle);
    return 0;
}
