#pragma once

#include <string_view>

namespace tavi {

/// True for well-formed UTF-8 (RFC 3629: no overlong form, no surrogate, at
/// most U+10FFFF); the empty text is well-formed.
bool isValidUtf8(std::string_view text);

} // namespace tavi
