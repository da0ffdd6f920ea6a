#include "capture/CursorImageBytes.h"
#include "platform/portal/CastOfACompositor.h"

namespace tavi {
namespace {

using test::CastFrame;
using test::CastOfACompositor;
using test::CastPointerNews;
using test::kGreen;
using test::plain;
using test::pointerOnly;
using test::waitFor;

TEST_F(CastOfACompositor, tellsWhereThePointerIsAndHowItLooks) {
    open({});
    start();
    CastPointerNews news{.x = 10, .y = 5, .hotSpotX = 1, .hotSpotY = 0};
    news.pixels = {0xFF0000FF, 0x80008000, 0, 0xFFFFFFFF};
    news.width = 2;
    for (const auto format : {SPA_VIDEO_FORMAT_BGRA, SPA_VIDEO_FORMAT_RGBA, SPA_VIDEO_FORMAT_ARGB,
                              SPA_VIDEO_FORMAT_ABGR}) {
        SCOPED_TRACE(format);
        news.format = format;
        news.x += 1;
        ASSERT_TRUE(waitFor([&] { return cast->send(pointerOnly(news)); }));
        ASSERT_TRUE(waitFor([&] { return pointer.query() == Point{1.0 * news.x, 48.0 - 5}; }));
        const auto image = pointer.currentSystemCursor();
        ASSERT_TRUE(image);
        EXPECT_EQ(image->hotSpot, (Point{1, 0}));
        EXPECT_EQ(image->size, (Size{2, 2}));
        const auto pixels = cursorImageFromBytes(image->imageBytes);
        ASSERT_TRUE(pixels);
        for (std::size_t i = 0; i < 4; ++i) {
            std::uint32_t value = 0;
            std::memcpy(&value, pixels->row(static_cast<int>(i / 2)) + i % 2 * 4, 4);
            EXPECT_EQ(value, news.pixels[i]);
        }
    }
}

TEST_F(CastOfACompositor, pointerWithoutAnIdIsElsewhere) {
    open({});
    start();
    cast->send(pointerOnly({.x = 10, .y = 5}));
    ASSERT_TRUE(waitFor([&] { return pointer.query().x == 10; }));
    cast->send(pointerOnly({.id = 0, .x = 11, .y = 5}));
    EXPECT_TRUE(waitFor([&] { return pointer.query().x < 0; }));
    EXPECT_EQ(pointer.lastKnown(), (Point{10, 48 - 5}));
    cast->send(pointerOnly({.x = 100, .y = 5})); // beside the picture
    EXPECT_TRUE(waitFor([&] { return pointer.query() == Point{100, 48 - 5}; }));
}

TEST_F(CastOfACompositor, pointerStaysInStepWithACropAndATransform) {
    CastFrame frame = plain(kGreen);
    frame.crop = {{10, 4}, {30, 20}};
    frame.transform = SPA_META_TRANSFORMATION_180;
    frame.pointer.push_back({.x = 12, .y = 5});
    open({}, frame);
    start();
    EXPECT_EQ(pointer.query(), (Point{27, 20 - 18}));
}

TEST_F(CastOfACompositor, pointerPictureThatLiesOutsideItsMemoryIsLeftOut) {
    open({});
    start();
    CastPointerNews news{.x = 10, .y = 5};
    news.pixels.assign(16, 0xFFFFFFFF);
    news.width = 4;
    for (const std::int32_t lie : {1 << 20, 0x7FFFFF00, -64}) {
        news.lie = lie;
        news.x += 1;
        cast->send(pointerOnly(news));
        ASSERT_TRUE(waitFor([&] { return pointer.query().x == news.x; }));
        EXPECT_FALSE(pointer.currentSystemCursor()) << lie;
    }
}

} // namespace
} // namespace tavi
