#pragma once

#include <string>
#include <string_view>

// UTF-8 as `zqFold` leaves it with both options, made for many short texts: what a character folds to is remembered.
// Kept in `buffer`. Any thread.
std::string_view zqFoldedUTF8(std::string_view text, std::string &buffer);
