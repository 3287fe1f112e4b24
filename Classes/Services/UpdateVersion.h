#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <compare>
#include <optional>

// The number of a version: "1.4", "1.4.0-beta.2". Missing parts count as 0, what is behind "+" does not count, and a
// version with something behind "-" comes before the one without: numbers there are compared as numbers and come before
// words.
class UpdateVersion
{
public:
    // Nothing where the text is no version: other characters, an empty or an overlong part.
    static std::optional<UpdateVersion> parse(const QString &text);

    std::strong_ordering operator<=>(const UpdateVersion &other) const;
    bool operator==(const UpdateVersion &other) const { return (*this <=> other) == 0; }

private:
    QList<quint32> m_numbers;
    QStringList m_earlier; // what is behind "-"
};
