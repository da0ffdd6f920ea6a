#include "capture/HelperPath.h"

namespace tavi {

namespace {

constexpr const char* kHelperName = "TaviKeys";

} // namespace

std::optional<std::string> helperExecutablePath(const std::filesystem::path& executableFolder) {
    const auto package = executableFolder / ".." / "lib" / "tavlin";
    for (const auto& folder : {executableFolder, package}) {
        const auto path = (folder / kHelperName).lexically_normal();
        std::error_code ignored;
        if (std::filesystem::is_regular_file(path, ignored)) {
            return path.string();
        }
    }
    return std::nullopt;
}

std::filesystem::path runningExecutableFolder() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
}

} // namespace tavi
