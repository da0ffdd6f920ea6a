#include "base/SystemReason.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <future>

namespace tavi {
namespace {

TEST(SystemReason, commonOnesAreTheCataloguesTexts) {
    EXPECT_EQ(systemReason(ENOSPC), "No space left on device");
    EXPECT_EQ(systemReason(std::make_error_code(std::errc::permission_denied)),
              "Permission denied");
    EXPECT_EQ(systemReason(std::error_code(EROFS, std::system_category())),
              "Read-only file system");
}

TEST(SystemReason, othersAreToldByWhoMadeThem) {
    EXPECT_EQ(systemReason(ESRCH), std::strerror(ESRCH));
    const std::error_code broken = std::make_error_code(std::future_errc::broken_promise);
    EXPECT_EQ(systemReason(broken), broken.message());
}

} // namespace
} // namespace tavi
