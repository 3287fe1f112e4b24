#pragma once

#include <QString>
#include <QVariantList>

// The text for a key in the current language. The key is the English text itself, so a missing translation is English.
// Any thread.
QString zqLocalized(const QString &key);
QString zqLocalized(const char *key);

// Marks a key that stands in a table, and reaches `zqLocalized` from there: Tools/languages.py looks for it.
constexpr const char *zqKey(const char *key)
{
    return key;
}

// The two forms of English of a text with a count. Written out where it is made, as `{"1 item", "%@ items"}` in a call
// of `zqCounted` or as `ZQCountedKey{"1 item", "%@ items"}`: Tools/languages.py looks for both.
struct ZQCountedKey
{
    const char *one;
    const char *several;
};

// The text for `count` things, in the form that the current language has for so many. The count, written as the locale
// writes numbers (with `%d` as it is), and then `more` fill the places in order; `one` may leave the count out where
// nothing follows.
QString zqCounted(const ZQCountedKey &key, qint64 count, const QVariantList &more = {});

// Fills `%@`, `%d`, `%ld`, `%f`, `%s` and `%%` of `format` with `arguments` in order. An argument too few leaves its
// place empty; one too many is ignored. A translation whose order differs says which one it means: `%2$@`. A `%f` is
// written with six decimals. What stands alone between typographic quotation marks is quoted for a reader, and
// shortened when it is long.
QString zqFormat(const QString &format, const QVariantList &arguments);
