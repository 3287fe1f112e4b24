#pragma once

#include <string>
#include <string_view>

// `text` as reading it as a string leaves it: what is no UTF-8 is replaced. Kept in `buffer` when that changes it.
std::string_view indexExact(std::string_view text, std::string &buffer);
