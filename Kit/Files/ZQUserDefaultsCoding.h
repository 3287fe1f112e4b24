#pragma once

#include <QJsonValue>
#include <QVariant>

// Variants as JSON. What JSON has no form for is an object of one member whose name begins with "$": `$data` (base 64),
// `$date` (ISO 8601 UTC with milliseconds), `$real` (a floating number that JSON would give back as an integer, or none
// at all) and `$map` (a map that has such a name itself).
QJsonValue zqJSONFromVariant(const QVariant &value);
QVariant zqVariantFromJSON(const QJsonValue &value);
