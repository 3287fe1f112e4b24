#pragma once

#include <string_view>

// The first place in [begin, end) where `needle`, which is not empty, stands; `end` when there is none. As fast as
// memory gives the bytes, with any needle.
const char *zqFindBytes(const char *begin, const char *end, std::string_view needle);
