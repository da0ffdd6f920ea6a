#include "capture/HelperPath.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(HelperPath, isAbsentWithoutAFile) {
    const test::TemporaryFolder prefix;
    EXPECT_EQ(helperExecutablePath(prefix / "bin"), std::nullopt);
}

TEST(HelperPath, liesInThePackageOrBesideTheProgram) {
    const test::TemporaryFolder prefix;
    test::writeFile(prefix / "lib/tavlin/TaviKeys", "");
    std::filesystem::create_directory(prefix / "bin");
    EXPECT_EQ(helperExecutablePath(prefix / "bin"), (prefix / "lib/tavlin/TaviKeys").string());
    test::writeFile(prefix / "bin/TaviKeys", "");
    EXPECT_EQ(helperExecutablePath(prefix / "bin"), (prefix / "bin/TaviKeys").string());
}

TEST(HelperPath, ofTheRunningProgramIsKnown) {
    EXPECT_TRUE(std::filesystem::is_directory(runningExecutableFolder()));
}

} // namespace
} // namespace tavi
