#pragma once

#include <string>
#include <vector>

namespace tavi::cli {

/// One thing that the program needs of the machine.
struct Finding {
    std::string name;
    bool works = false;
    std::string detail; ///< What was found.
    std::string fix;    ///< What to do where it doesn't work; else empty.
};

/// Looks at everything: the screen, the key helper, the encoders (by trial
/// encodes, a second or two) and the library folder.
std::vector<Finding> examineMachine();

} // namespace tavi::cli
