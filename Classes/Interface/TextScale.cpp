#include "Classes/Interface/TextScale.h"

#include "Kit/Files/ZQUserDefaults.h"

#include <QByteArray>

#include <algorithm>

namespace {
constexpr const char *variable = "QT_SCALE_FACTOR";
constexpr const char *fontVariable = "QT_FONT_DPI";
} // namespace

double TextScale::factor(qint64 percent, int fontDPI)
{
    constexpr double usualDPI = 96;
    const bool isKnown = percent >= smallest && percent <= largest;
    const double wanted = (isKnown ? double(percent) : 100) * (fontDPI > 0 ? fontDPI / usualDPI : 1);
    return std::clamp(wanted, double(smallest), double(largest)) / 100;
}

TextScale::TextScale()
{
    const qint64 percent = ZQUserDefaults::standardUserDefaults().integerForKey(QStringLiteral("TextScale"));
    const double wanted = factor(percent, qEnvironmentVariableIntValue(fontVariable));
    if (wanted != 1 && !qEnvironmentVariableIsSet(variable)) {
        m_isSet = qputenv(variable, QByteArray::number(wanted));
    }
}

TextScale::~TextScale()
{
    if (m_isSet) {
        qunsetenv(variable);
    }
}
