#pragma once

#include <QString>
#include <QVariantList>

// The text for a key in the current language. The key is the English text itself, so a missing translation is English.
// Any thread.
QString zqLocalized(const QString &key);
QString zqLocalized(const char *key);

// Fills `%@`, `%d`, `%ld`, `%f`, `%s` and `%%` of `format` with `arguments` in order. An argument too few leaves its
// place empty; one too many is ignored. A `%f` is written with six decimals.
// What stands alone between typographic quotation marks is quoted for a reader, and shortened when it is long.
QString zqFormat(const QString &format, const QVariantList &arguments);
