#pragma once

#include <string>
#include <string_view>

namespace tavi {

/// `text` in upper case by the full default mapping of the Unicode Character
/// Database (UnicodeData.txt and the unconditional lines of SpecialCasing.txt),
/// the same in every locale: "ß" becomes "SS". Bytes that are no UTF-8 stand as
/// they are.
std::string uppercase(std::string_view text);

} // namespace tavi
