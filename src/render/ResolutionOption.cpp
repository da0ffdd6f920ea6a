#include "render/ResolutionOption.h"

namespace tavi {

namespace {

struct Row {
    std::string_view rawValue;
    Size size;
};

constexpr std::array<Row, kResolutionOptions.size()> kRows{
    {{"1080p", {1920, 1080}}, {"1440p", {2560, 1440}}, {"4K", {3840, 2160}}}};

const Row& rowOf(ResolutionOption option) {
    return kRows[static_cast<std::size_t>(option)];
}

} // namespace

std::string_view rawValue(ResolutionOption option) {
    return rowOf(option).rawValue;
}

Size sizeOf(ResolutionOption option) {
    return rowOf(option).size;
}

ResolutionOption resolutionOptionFor(double width) {
    if (width >= rowOf(ResolutionOption::uhd).size.width) {
        return ResolutionOption::uhd;
    }
    return width >= rowOf(ResolutionOption::qhd).size.width ? ResolutionOption::qhd
                                                            : ResolutionOption::fhd;
}

} // namespace tavi
