#include "Kit/Files/ZQVectorTypes.h"

#include <algorithm>
#include <iterator>

namespace {

struct Type
{
    const char *extension;
    bool hasPages;
};
constexpr Type types[] = {{"ai", true}, {"eps", true}, {"pdf", true}, {"sketch", false}, {"svg", false}};

const Type *typeOf(const QString &extension)
{
    const auto *const found = std::find_if(std::begin(types), std::end(types), [&extension](const Type &type) {
        return extension.compare(QLatin1StringView(type.extension), Qt::CaseInsensitive) == 0;
    });
    return found != std::end(types) ? found : nullptr;
}

} // namespace

bool ZQVectorTypes::contains(const QString &extension)
{
    return typeOf(extension) != nullptr;
}

bool ZQVectorTypes::havePages(const QString &extension)
{
    const Type *const type = typeOf(extension);
    return type && type->hasPages;
}
