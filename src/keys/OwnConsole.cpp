#include "keys/OwnConsole.h"

#include <cstdlib>
#include <fstream>
#include <string>

namespace tavi {

bool isOwnConsoleShown() {
    const char* own = std::getenv("XDG_VTNR");
    std::string shown; // "tty2"
    if (own == nullptr || *own == '\0' ||
        !std::getline(std::ifstream("/sys/class/tty/tty0/active"), shown)) {
        return true;
    }
    return shown == std::string("tty") + own;
}

} // namespace tavi
