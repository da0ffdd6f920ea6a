#include "platform/portal/PortalPointer.h"

#include "fakes/FakeExecutor.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;

class PointerOfAPortal : public testing::Test {
protected:
    void watch(PointerEventKind kind) {
        pointer.addGlobalMonitor(kind, [this, kind] { seen.push_back(kind); });
    }

    FakeExecutor main;
    SystemCursor arrow{{1, 2, 3}, {0, 0}, {4, 4}};
    PortalPointer pointer{main, [this] { return arrow; }};
    std::vector<PointerEventKind> seen;
};

TEST_F(PointerOfAPortal, isCountedFromTheBottomOfThePicture) {
    pointer.show(30, 40, 480);
    EXPECT_EQ(pointer.query(), (Point{30, 440}));
}

TEST_F(PointerOfAPortal, isOutsideThePictureWhileItIsElsewhere) {
    pointer.show(30, 40, 480);
    pointer.hide();
    EXPECT_LT(pointer.query().x, 0);
    pointer.show(30, 40, 480);
    EXPECT_EQ(pointer.query(), (Point{30, 440}));
}

TEST_F(PointerOfAPortal, hidesWhereItWasIfItCanBeNowhereElse) {
    pointer.beginCast(PointerRange::everything);
    EXPECT_LT(pointer.query().x, 0) << "nobody told yet";
    pointer.show(30, 40, 480);
    pointer.hide();
    EXPECT_EQ(pointer.query(), (Point{30, 440}));
}

TEST_F(PointerOfAPortal, lastKnownPlaceIsThatBeforeItWasHidden) {
    EXPECT_LT(pointer.lastKnown().x, 0) << "nobody told yet";
    pointer.show(30, 40, 480);
    pointer.hide();
    EXPECT_EQ(pointer.lastKnown(), (Point{30, 440}));
    pointer.show(50, 40, 480);
    EXPECT_EQ(pointer.lastKnown(), pointer.query());
}

TEST_F(PointerOfAPortal, placesInAnotherSourceAreForgotten) {
    pointer.show(30, 40, 480);
    pointer.beginCast(PointerRange::everything);
    EXPECT_LT(pointer.query().x, 0);
    EXPECT_LT(pointer.lastKnown().x, 0);
}

TEST_F(PointerOfAPortal, tellsOfMovesOnTheMainThread) {
    watch(PointerEventKind::mouseMoved);
    pointer.show(1, 1, 480);
    EXPECT_THAT(seen, ElementsAre());
    main.runAll();
    EXPECT_THAT(seen, ElementsAre(PointerEventKind::mouseMoved));
}

TEST_F(PointerOfAPortal, standingStillIsNoMove) {
    watch(PointerEventKind::mouseMoved);
    pointer.show(1, 1, 480);
    main.runAll();
    pointer.show(1, 1, 480);
    main.runAll();
    EXPECT_EQ(seen.size(), 1U);
}

TEST_F(PointerOfAPortal, movesThatTheMainThreadIsLateForAreOne) {
    watch(PointerEventKind::mouseMoved);
    pointer.show(1, 1, 480);
    pointer.show(2, 2, 480);
    main.runAll();
    EXPECT_EQ(seen.size(), 1U);
    EXPECT_EQ(pointer.query(), (Point{2, 478}));
}

TEST_F(PointerOfAPortal, removedMonitorIsNotCalled) {
    const auto token =
        pointer.addGlobalMonitor(PointerEventKind::mouseMoved, [this] { seen.push_back({}); });
    pointer.show(1, 1, 480);
    pointer.removeMonitor(*token);
    main.runAll();
    EXPECT_THAT(seen, ElementsAre());
}

TEST_F(PointerOfAPortal, imageIsTheLastOneThatCame) {
    EXPECT_FALSE(pointer.currentSystemCursor());
    EXPECT_EQ(pointer.arrowCursor()->imageBytes, arrow.imageBytes);
    pointer.setImage({{9}, {1, 1}, {1, 1}});
    EXPECT_EQ(pointer.currentSystemCursor()->imageBytes, (std::vector<std::uint8_t>{9}));
}

} // namespace
} // namespace tavi
