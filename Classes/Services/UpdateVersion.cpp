#include "Classes/Services/UpdateVersion.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

std::optional<quint32> numberOf(const QString &part)
{
    bool isNumber = false;
    const uint number = part.toUInt(&isNumber);
    return isNumber && part.at(0).isDigit() ? std::optional(number) : std::nullopt;
}

std::strong_ordering comparedParts(const QString &a, const QString &b)
{
    const auto left = numberOf(a);
    const auto right = numberOf(b);
    if (left && right) {
        return *left <=> *right;
    }
    if (left || right) {
        return left ? std::strong_ordering::less : std::strong_ordering::greater;
    }
    return a.compare(b) <=> 0;
}

} // namespace

std::optional<UpdateVersion> UpdateVersion::parse(const QString &text)
{
    static const QRegularExpression form(QStringLiteral(
        R"(\A([0-9]{1,9}(?:\.[0-9]{1,9}){0,4})(?:-([0-9A-Za-z]{1,9}(?:[.-][0-9A-Za-z]{1,9}){0,6}))?(?:\+[0-9A-Za-z.-]{1,40})?\z)"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    UpdateVersion version;
    for (const QString &number : match.captured(1).split(u'.')) {
        version.m_numbers.append(number.toUInt());
    }
    static const QRegularExpression between(QStringLiteral("[.-]"));
    version.m_earlier = match.captured(2).split(between, Qt::SkipEmptyParts);
    return version;
}

std::strong_ordering UpdateVersion::operator<=>(const UpdateVersion &other) const
{
    for (qsizetype i = 0; i < std::max(m_numbers.size(), other.m_numbers.size()); ++i) {
        if (const auto order = m_numbers.value(i) <=> other.m_numbers.value(i); order != 0) {
            return order;
        }
    }
    if (m_earlier.isEmpty() || other.m_earlier.isEmpty()) {
        return m_earlier.isEmpty() <=> other.m_earlier.isEmpty();
    }
    for (qsizetype i = 0; i < std::min(m_earlier.size(), other.m_earlier.size()); ++i) {
        if (const auto order = comparedParts(m_earlier[i], other.m_earlier[i]); order != 0) {
            return order;
        }
    }
    return m_earlier.size() <=> other.m_earlier.size();
}
