#include <iostream>
#include <string_view>

/// The desktop application. This version has no window yet and says so; the
/// whole engine is reached through the program `tavi`.
int main(int argc, char** argv) {
    if (argc > 1 && std::string_view(argv[1]) == "--version") {
        std::cout << "tavlin " TAVI_VERSION " (build " TAVI_BUILD ")\n";
        return 0;
    }
    std::cerr << "tavlin: This version has no window yet. Record, zoom and export with \"tavi\" "
                 "(tavi --help).\n";
    return 1;
}
