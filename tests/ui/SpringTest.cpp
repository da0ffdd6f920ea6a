#include "ui/Spring.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace tavi {
namespace {

constexpr int kPatience = 20'000; // milliseconds

TEST(Spring, takesItsFirstPlaceWithoutMotion) {
    Spring spring;
    spring.classBegin();
    spring.setTo(1);
    spring.componentComplete();
    EXPECT_EQ(spring.value(), 1);
    EXPECT_FALSE(spring.isRunning());
}

TEST(Spring, goesToANewPlaceAndRestsThere) {
    Spring spring;
    spring.componentComplete();
    std::vector<double> values;
    QObject::connect(&spring, &Spring::valueChanged, [&] { values.push_back(spring.value()); });
    spring.setTo(1);
    EXPECT_EQ(spring.value(), 0);
    EXPECT_TRUE(spring.isRunning());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !spring.isRunning(); }, kPatience));
    EXPECT_EQ(spring.value(), 1);
    EXPECT_GT(values.size(), 2U);
}

TEST(Spring, turnsRoundInMidFlightWithoutAJump) {
    Spring spring;
    spring.componentComplete();
    spring.setTo(100);
    ASSERT_TRUE(QTest::qWaitFor([&] { return spring.value() > 5; }, kPatience));
    const double here = spring.value();
    spring.setTo(0);
    EXPECT_DOUBLE_EQ(spring.value(), here);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !spring.isRunning(); }, kPatience));
    EXPECT_EQ(spring.value(), 0);
}

TEST(Spring, waitsForItsDelay) {
    Spring spring;
    spring.setProperty("delay", 0.2);
    spring.componentComplete();
    QElapsedTimer clock;
    clock.start();
    qint64 moved = -1;
    QObject::connect(&spring, &Spring::valueChanged, [&] {
        if (moved < 0) {
            moved = clock.elapsed();
        }
    });
    spring.setTo(1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return moved >= 0; }, kPatience));
    EXPECT_GE(moved, 195);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !spring.isRunning(); }, kPatience));
}

} // namespace
} // namespace tavi
