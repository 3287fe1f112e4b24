#pragma once

#include "Tests/Kit/Persistence/PredicateDatabase.h"

// Within a property: rows of every kind of value, and conditions on them, now and then of types that do not fit.
void fillAtRandom(PredicateDatabase &database);
QString randomPredicateFormat(QVariantList *arguments, int depth);
