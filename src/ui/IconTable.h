#pragma once

#include <span>
#include <string_view>

namespace tavi {

/// One symbol of the program and the drawing that stands for it.
struct IconEntry {
    std::string_view symbol; ///< Name by which the program asks for it.
    std::string_view file;   ///< Drawing of the icon set, without folder and ending.
    bool mirrored = false;   ///< Shown turned left to right.
};

/// Every symbol of the program, ordered by name. Only these drawings are built in.
std::span<const IconEntry> iconTable();

/// The entry of a symbol, null when there is none.
const IconEntry* findIcon(std::string_view symbol);

} // namespace tavi
