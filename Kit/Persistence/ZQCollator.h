#pragma once

#include <QString>

#include <memory>
#include <string>
#include <string_view>

struct UCollator;

// Strings as a person orders them: the collation of the process's locale. Not for several threads at once. The locale
// is the one at the first use in the process, so that all collators agree.
class ZQCollator
{
public:
    enum class Order {
        OfNames, // digits as numbers
        OfWords, // digits as they stand; upper and lower case are equal
    };
    explicit ZQCollator(Order order = Order::OfNames);
    int compare(const QString &a, const QString &b) const;
    int compareUTF8(std::string_view a, std::string_view b) const;
    // Appends bytes whose order is that of the texts.
    void appendSortKey(const QString &text, std::string &to) const;

    static const ZQCollator &forThisThread();

private:
    struct Close
    {
        void operator()(UCollator *collator) const;
    };
    std::unique_ptr<UCollator, Close> m_collator; // null when ICU has no data: by code point then
};
