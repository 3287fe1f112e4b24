#include "Classes/Capture/PageSnapshot.h"

#include <QJsonDocument>

#include <cmath>
#include <cstdint>
#include <cstdlib>

// What a browser says of a page: whoever reads the list of nodes follows parents and compares bounds.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto text = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto nodes = PageSnapshot::nodes(QJsonDocument::fromJson(text).object());
    for (int i = 0; nodes && i < nodes->size(); ++i) {
        const PageSnapshot::Node &node = nodes->at(i);
        const bool isBefore = node.parent >= -1 && node.parent < i;
        const bool isFinite = std::isfinite(node.bounds.right()) && std::isfinite(node.bounds.bottom());
        if (!isBefore || !isFinite || node.text.size() > 4096) {
            std::abort();
        }
    }
    return 0;
}
