#include "Kit/Persistence/ZQPredicate.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString format = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    ZQError error;
    const ZQPredicate predicate = ZQPredicate::predicateWithFormat(format, {}, &error);
    if (!error.isNull() || predicate.isNull()) {
        return 0;
    }
    predicate.evaluateWithObject(QVariantMap{{QStringLiteral("a"), QStringLiteral("text")}, {QStringLiteral("b"), 3}});
    if (!(ZQPredicate::predicateWithFormat(predicate.predicateFormat()) == predicate)) {
        std::abort(); // does not parse back to itself
    }
    return 0;
}
