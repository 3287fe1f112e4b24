#include "Classes/Browsing/Index/IndexText.h"

#include <QString>
#include <QUtf8StringView>

#include <algorithm>

namespace {

bool isASCII(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char each) { return static_cast<signed char>(each) >= 0; });
}

} // namespace

std::string_view indexExact(std::string_view text, std::string &buffer)
{
    if (isASCII(text) || QUtf8StringView(text.data(), qsizetype(text.size())).isValidUtf8()) {
        return text;
    }
    buffer = QString::fromUtf8(text.data(), qsizetype(text.size())).toStdString();
    return buffer;
}
