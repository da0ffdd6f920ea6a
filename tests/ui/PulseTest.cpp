#include "ui/Pulse.h"

#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(Pulse, easesFromNoughtToOneAndBack) {
    EXPECT_DOUBLE_EQ(Pulse::valueAt(0, 1), 0);
    EXPECT_DOUBLE_EQ(Pulse::valueAt(0.5, 1), 0.5);
    EXPECT_DOUBLE_EQ(Pulse::valueAt(1, 1), 1);
    EXPECT_NEAR(Pulse::valueAt(2, 1), 0, 1e-12);
    EXPECT_NEAR(Pulse::valueAt(0.8, 0.8), 1, 1e-12);
    EXPECT_LT(Pulse::valueAt(0.1, 1), 0.1); // slow at its ends
}

TEST(Pulse, ticksOnlyWhileItRuns) {
    Pulse pulse;
    QSignalSpy ticks(&pulse, &Pulse::valueChanged);
    EXPECT_FALSE(ticks.wait(200));
    pulse.setRunning(true);
    EXPECT_TRUE(ticks.wait(5000));
    pulse.setRunning(false);
    EXPECT_EQ(pulse.value(), 0);
    ticks.clear();
    EXPECT_FALSE(ticks.wait(200));
}

} // namespace
} // namespace tavi
