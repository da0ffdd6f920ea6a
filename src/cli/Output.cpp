#include "cli/Output.h"

#include <iostream>

namespace tavi::cli {

int failed(std::string_view message) {
    std::cerr << "tavi: " << message << std::endl;
    return 1;
}

void printLine(std::string_view line) {
    std::cout << line << std::endl;
}

} // namespace tavi::cli
