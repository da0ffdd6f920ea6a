#include "render/ResolutionOption.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(ResolutionOption, isWorkedOutFromTheWidth) {
    EXPECT_EQ(resolutionOptionFor(0), ResolutionOption::fhd);
    EXPECT_EQ(resolutionOptionFor(2559), ResolutionOption::fhd);
    EXPECT_EQ(resolutionOptionFor(2560), ResolutionOption::qhd);
    EXPECT_EQ(resolutionOptionFor(3839), ResolutionOption::qhd);
    EXPECT_EQ(resolutionOptionFor(3840), ResolutionOption::uhd);
    EXPECT_EQ(resolutionOptionFor(1e9), ResolutionOption::uhd);
}

TEST(ResolutionOption, itsOwnSizeChoosesIt) {
    for (const ResolutionOption option : kResolutionOptions) {
        EXPECT_EQ(resolutionOptionFor(sizeOf(option).width), option) << rawValue(option);
    }
    EXPECT_EQ(sizeOf(ResolutionOption::uhd), (Size{3840, 2160}));
    EXPECT_EQ(rawValue(ResolutionOption::qhd), "1440p");
}

} // namespace
} // namespace tavi
