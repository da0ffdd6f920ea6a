#pragma once

#include <xkbcommon/xkbcommon.h>

#include <string>

namespace tavi {

/// The text of a key line for a key symbol: a name for keys that type nothing
/// or nothing visible ("Return", "Space", "F5"), else what the symbol types.
/// Empty for modifiers, locks, dead keys and other keys without a text.
std::string keyText(xkb_keysym_t symbol);

} // namespace tavi
