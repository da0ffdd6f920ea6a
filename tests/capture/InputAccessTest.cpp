#include "capture/InputAccess.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

struct SystemCase {
    std::string name;
    std::string osRelease;
    std::string command;
    bool isSetting = false;
};

class InputAccess : public testing::TestWithParam<SystemCase> {};

TEST_P(InputAccess, isGivenInTheSystemsOwnWay) {
    const InputAccessAdvice advice = inputAccessAdvice(GetParam().osRelease);
    EXPECT_EQ(advice.command, GetParam().command);
    EXPECT_EQ(advice.isSetting, GetParam().isSetting);
    EXPECT_NE(advice.description().find(advice.command), std::string::npos);
    EXPECT_NE(advice.description().find("log"), std::string::npos) << "it takes a new session";
}

const std::string kUsual = R"(sudo usermod -aG input "$USER")";

INSTANTIATE_TEST_SUITE_P(
    Systems, InputAccess,
    testing::Values(
        SystemCase{"debian", "PRETTY_NAME=\"Debian GNU/Linux 12\"\nID=debian\n", kUsual},
        SystemCase{"ubuntu", "ID=ubuntu\nID_LIKE=debian", kUsual},
        SystemCase{"fedora", "NAME=\"Fedora Linux\"\nID=fedora\n", kUsual},
        SystemCase{"arch", "ID=arch", kUsual},
        SystemCase{"silverblue", "ID=fedora\nOSTREE_VERSION='39.1'\n",
                   "grep '^input:' /usr/lib/group | sudo tee -a /etc/group && " + kUsual},
        SystemCase{"alpine", "NAME=\"Alpine Linux\"\nID=alpine\n",
                   R"(doas addgroup "$USER" input)"},
        SystemCase{"nixos", "ID=\"nixos\"\n",
                   R"(users.users.<your name>.extraGroups = [ "input" ];)", true},
        SystemCase{"empty", "", kUsual},
        SystemCase{"broken", "ID\n=\nID=\"\nVERSION_ID=nixos", kUsual}),
    [](const auto& tested) { return tested.param.name; });

TEST(InputAccessOfThisMachine, isToldInAnyCase) {
    EXPECT_NE(inputAccessAdvice().command, "");
}

} // namespace
} // namespace tavi
