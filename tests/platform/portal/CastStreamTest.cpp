#include "platform/portal/CastOfACompositor.h"

namespace tavi {
namespace {

using test::CastFrame;
using test::CastLayout;
using test::CastOfACompositor;
using test::distance;
using test::FakeCast;
using test::halves;
using test::kGreen;
using test::kViolet;
using test::pixel;
using test::plain;
using test::pointerOnly;
using test::waitFor;

TEST_F(CastOfACompositor, beginsWithWhatWasOnTheScreenBefore) {
    const MediaTime before = SystemClock().hostTime();
    open({});
    EXPECT_EQ(stream->width(), 64);
    EXPECT_EQ(stream->height(), 48);
    start();
    EXPECT_EQ(pixel(last(), 10, 10) & 0xFFFFFF, kGreen & 0xFFFFFF);
    EXPECT_GE(last().presentationTime, before);
    EXPECT_LE(last().presentationTime, SystemClock().hostTime());
}

TEST_F(CastOfACompositor, beginsAgainWhenItsFirstPictureIsLost) {
    cast = std::make_unique<FakeCast>(CastLayout{});
    auto opening = std::async(std::launch::async, [this] {
        return CastStream::open(FakeCast::openRemote(), cast->node(), {nullptr, pointer});
    });
    ASSERT_TRUE(cast->waitForReader());
    cast->paintLater(plain(kGreen)); // as if the stream had begun with it, and nobody had seen it
    auto opened = opening.get();
    ASSERT_TRUE(opened) << opened.error().description();
    stream = std::move(*opened);
    start();
    EXPECT_EQ(pixel(last(), 10, 10) & 0xFFFFFF, kGreen & 0xFFFFFF);
}

TEST_F(CastOfACompositor, silenceIsNoError) {
    open({});
    start();
    EXPECT_FALSE(stream->failure());
    show(plain(kViolet));
    EXPECT_FALSE(stream->failure());
}

TEST_F(CastOfACompositor, readsEveryFormatAndLayout) {
    for (const auto format : kCastFormats) {
        for (const bool isBottomUp : {false, true}) {
            SCOPED_TRACE(testing::Message() << "format " << format << " bottom-up " << isBottomUp);
            CastLayout layout{format, 70, 50, 24};
            layout.isBottomUp = isBottomUp;
            CastFrame picture;
            picture.pixel = [](int x, int y) {
                return y >= 26 ? 0xFFC03010U : x < 34 ? kGreen : kViolet;
            };
            open(layout, picture);
            start();
            EXPECT_LE(distance(pixel(last(), 2, 2), kGreen), 3);
            EXPECT_LE(distance(pixel(last(), 67, 2), kViolet), 3);
            EXPECT_LE(distance(pixel(last(), 2, 47), 0xFFC03010U), 3);
            stop();
            samples.clear();
        }
    }
}

TEST_F(CastOfACompositor, readsTwoPlanesInTwoPiecesOfMemory) {
    CastLayout layout{SPA_VIDEO_FORMAT_NV12, 70, 50, 6};
    layout.isTwoPlanes = true;
    open(layout, halves(kGreen, kViolet, 34));
    start();
    EXPECT_LE(distance(pixel(last(), 2, 2), kGreen), 3);
    EXPECT_LE(distance(pixel(last(), 67, 47), kViolet), 3);
}

TEST_F(CastOfACompositor, takesTheFormatThatIsCheapestToReadOfThoseOffered) {
    CastLayout layout;
    layout.offered = {SPA_VIDEO_FORMAT_YUY2, SPA_VIDEO_FORMAT_RGBA};
    open(layout, halves(kGreen, kViolet, 32));
    start();
    EXPECT_EQ(pixel(last(), 2, 2), kGreen);
    EXPECT_EQ(pixel(last(), 60, 2), kViolet);
}

TEST_F(CastOfACompositor, windowKeepsItsTransparentParts) {
    constexpr std::uint32_t kFaint = 0x40102030;
    for (const auto format : {SPA_VIDEO_FORMAT_BGRA, SPA_VIDEO_FORMAT_RGBA}) {
        SCOPED_TRACE(format);
        CastLayout layout;
        layout.offered = {SPA_VIDEO_FORMAT_BGRx, format}; // the first is cheaper, and opaque
        open(layout, halves(kFaint, 0, 32), FakeCast::Metas::all, CastAlpha::wanted);
        EXPECT_TRUE(stream->hasAlpha());
        start();
        EXPECT_EQ(pixel(last(), 2, 2), kFaint);
        EXPECT_EQ(pixel(last(), 60, 2), 0U);
        stop();
        samples.clear();
    }
}

TEST_F(CastOfACompositor, windowWithoutAnAlphaChannelIsOpaque) {
    open({}, plain(kGreen), FakeCast::Metas::all, CastAlpha::wanted);
    EXPECT_FALSE(stream->hasAlpha());
    start();
    EXPECT_EQ(pixel(last(), 2, 2) & 0xFFFFFF, kGreen & 0xFFFFFF);
}

TEST_F(CastOfACompositor, alphaOfADisplayMeansNothing) {
    CastLayout layout;
    layout.format = SPA_VIDEO_FORMAT_BGRA;
    open(layout);
    EXPECT_FALSE(stream->hasAlpha());
}

TEST_F(CastOfACompositor, readsLinearGraphicsMemoryThatCanBeMapped) {
    CastLayout layout;
    layout.isDmaBuf = true;
    open(layout, halves(kGreen, kViolet, 32));
    start();
    EXPECT_EQ(pixel(last(), 2, 2) & 0xFFFFFF, kGreen & 0xFFFFFF);
    EXPECT_EQ(pixel(last(), 60, 2) & 0xFFFFFF, kViolet & 0xFFFFFF);
}

TEST_F(CastOfACompositor, showsOnlyTheCrop) {
    CastFrame cropped = halves(kGreen, kViolet, 20);
    cropped.crop = {{10, 4}, {30, 20}};
    open({}, cropped);
    EXPECT_EQ(stream->width(), 30);
    EXPECT_EQ(stream->height(), 20);
    start();
    EXPECT_EQ(pixel(last(), 9, 0) & 0xFFFFFF, kGreen & 0xFFFFFF);
    EXPECT_EQ(pixel(last(), 10, 19) & 0xFFFFFF, kViolet & 0xFFFFFF);
}

TEST_F(CastOfACompositor, turnsAPictureBackThatTheCompositorTurned) {
    CastFrame turned = halves(kGreen, kViolet, 20); // the left edge was the top one
    turned.transform = SPA_META_TRANSFORMATION_90;
    open({}, turned);
    EXPECT_EQ(stream->width(), 48);
    EXPECT_EQ(stream->height(), 64);
    start();
    EXPECT_EQ(pixel(last(), 5, 19) & 0xFFFFFF, kGreen & 0xFFFFFF);
    EXPECT_EQ(pixel(last(), 5, 20) & 0xFFFFFF, kViolet & 0xFFFFFF);
}

TEST_F(CastOfACompositor, bufferWithAPointerOnlyIsNoPicture) {
    open({});
    start();
    expectNoSampleOf(pointerOnly({.x = 3, .y = 4}));
}

TEST_F(CastOfACompositor, damagedBuffersAreNoPictures) {
    open({});
    start();
    CastFrame chunk = plain(kGreen);
    chunk.isChunkCorrupted = true;
    expectNoSampleOf(chunk);
    CastFrame header = plain(kGreen);
    header.isHeaderCorrupted = true;
    expectNoSampleOf(header);
}

TEST_F(CastOfACompositor, keepsTheTimeThatTheCompositorTells) {
    open({});
    start();
    CastFrame frame = plain(kViolet);
    frame.pts = SystemClock().hostTime().value + 500'000'000;
    waitFor([&] { return SystemClock().hostTime().value > frame.pts; });
    show(frame);
    EXPECT_EQ(last().presentationTime.value, frame.pts);
}

TEST_F(CastOfACompositor, timeOfAnotherClockOrNoneIsTheTimeOfArrival) {
    for (const auto metas : {FakeCast::Metas::all, FakeCast::Metas::none}) {
        open({}, plain(kGreen), metas);
        start();
        CastFrame frame = plain(kViolet);
        frame.pts = 1; // long ago
        const MediaTime before = SystemClock().hostTime();
        show(frame);
        EXPECT_GE(last().presentationTime, before);
        EXPECT_LE(last().presentationTime, SystemClock().hostTime());
        stop();
        samples.clear();
    }
}

TEST_F(CastOfACompositor, isNeverFasterThanSixtyASecondAndKeepsWhatCameLast) {
    open({});
    start();
    constexpr int kPictures = 300;
    for (int i = 0; i < kPictures; ++i) {
        waitFor([&] { return cast->send(plain(0xFF000000U + static_cast<unsigned>(i))); });
    }
    EXPECT_TRUE(waitFor([&] { return (pixel(last(), 0, 0) & 0xFFFFFF) == kPictures - 1; }));
    for (std::size_t i = 1; i < count(); ++i) {
        const auto gap = sample(i).presentationTime - sample(i - 1).presentationTime;
        EXPECT_GE(gap, (MediaTime{1, 60}));
    }
}

TEST_F(CastOfACompositor, pictureThatCouldNotBeUsedComesAgainAsOneOfLater) {
    open({});
    refusals = 3;
    start();
    ASSERT_TRUE(waitForSamples(4)) << "though nothing changed";
    EXPECT_EQ(pixel(last(), 0, 0) & 0xFFFFFF, kGreen & 0xFFFFFF);
    for (std::size_t i = 1; i < count(); ++i) {
        const auto gap = sample(i).presentationTime - sample(i - 1).presentationTime;
        EXPECT_GE(gap.seconds(), 0.04) << "an encoder needs time";
    }
    show(plain(kViolet));
    EXPECT_EQ(count(), 5U) << "a picture that was used comes no more";
    EXPECT_EQ(pixel(last(), 0, 0) & 0xFFFFFF, kViolet & 0xFFFFFF);
}

TEST_F(CastOfACompositor, ofPicturesThatCouldNotBeUsedOnlyTheNewestComesAgain) {
    open({});
    start();
    {
        const std::lock_guard lock(mutex);
        refusals = 2;
    }
    show(plain(kGreen));
    show(plain(kViolet)); // either of them may have come twice by now
    const std::size_t before = count();
    ASSERT_TRUE(waitFor([&] {
        const std::lock_guard lock(mutex);
        return refusals < 0;
    }));
    EXPECT_GE(count(), before);
    EXPECT_EQ(pixel(last(), 0, 0) & 0xFFFFFF, kViolet & 0xFFFFFF);
}

TEST_F(CastOfACompositor, newSizeStaysAtTheTopLeftOfTheOldPictures) {
    open({});
    start();
    cast->resize(100, 30);
    showAnew(plain(kViolet), 63, 47, kViolet);
    EXPECT_EQ(last().image->width(), 64);
    EXPECT_EQ(last().image->height(), 48);
    cast->resize(20, 90);
    showAnew(halves(kGreen, kViolet, 19), 18, 47, kGreen);
    EXPECT_EQ(pixel(last(), 63, 47) & 0xFFFFFF, kViolet & 0xFFFFFF);
}

TEST_F(CastOfACompositor, picturesThatAreKeptStayAsTheyAreWhateverComes) {
    open({}); // rows of 256 bytes: the compositor's memory is lent
    start();
    for (std::uint32_t i = 1; i <= 40; ++i) {
        show(plain(0xFF000000U + i));
    }
    for (std::size_t i = 1; i < count(); ++i) {
        EXPECT_EQ(pixel(sample(i), 7, 7) & 0xFFFFFF, i);
    }
    cast->resize(32, 32); // takes the memory away
    showAnew(plain(kGreen), 7, 7, kGreen);
    stop();
    cast.reset();
    EXPECT_EQ(pixel(sample(40), 7, 7) & 0xFFFFFF, 40U);
}

TEST_F(CastOfACompositor, neverStarvesACompositorWithTwoBuffers) {
    CastLayout layout;
    layout.fewestBuffers = 2;
    layout.mostBuffers = 2;
    open(layout);
    start();
    for (std::uint32_t i = 1; i <= 60; ++i) {
        show(plain(0xFF000000U + i));
    }
    EXPECT_EQ(pixel(last(), 7, 7) & 0xFFFFFF, 60U);
}

TEST_F(CastOfACompositor, compositorThatGoesEndsTheStream) {
    open({});
    start();
    cast.reset();
    ASSERT_TRUE(waitFor([&] { return stream->failure().has_value(); }));
    EXPECT_EQ(stream->failure()->kind, CaptureError::Kind::castEnded);
}

TEST_F(CastOfACompositor, deathOfPipeWireEndsTheStream) {
    open({});
    start();
    server.die();
    EXPECT_TRUE(waitFor([&] { return stream->failure().has_value(); }));
}

TEST_F(CastOfACompositor, nothingIsSentAfterTheStop) {
    open({});
    start();
    ASSERT_TRUE(stream->stopCapture());
    queue.sync([] {});
    const std::size_t before = count();
    cast->send(plain(kViolet));
    queue.sync([] {});
    EXPECT_EQ(count(), before);
}

TEST_F(CastOfACompositor, nodeThatIsNotThereIsRefused) {
    const auto opened = CastStream::open(FakeCast::openRemote(), 4711, {nullptr, pointer});
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, CaptureError::Kind::castRefused);
}

} // namespace
} // namespace tavi
