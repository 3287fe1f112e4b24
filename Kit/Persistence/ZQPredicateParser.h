#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Persistence/ZQPredicateNode.h"

// Reads the format language. Null with an error that says what was expected, what was found and at which character
// (counted from 1; also in `userInfo["position"]`).
ZQPredicateNodePtr zqParsePredicate(const QString &format, const QVariantList &arguments, ZQError *error);
