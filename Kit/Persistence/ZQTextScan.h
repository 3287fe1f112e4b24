#pragma once

#include "Kit/Persistence/ZQPredicateNode.h"
#include "Kit/Persistence/ZQTextBlocks.h"

// Comparisons of many texts with one, both in the same form. Each marks rows among `among`; false when cancelled.

// Texts with `part`, which is not empty, in them.
bool zqMarkTextsWith(std::string_view part, const ZQTextBlocks &texts, const ZQRowSet &among, ZQRowSet &found);
// Whether the function below has a way for this comparison.
bool zqHasTextScan(ZQComparisonOperator op);
bool zqMarkTexts(ZQComparisonOperator op, const QString &other, const ZQTextBlocks &texts, const ZQRowSet &among,
                 ZQRowSet &found);
