#include "platform/portal/CastStream.h"

#include "base/Clock.h"
#include "capture/CursorImageBytes.h"
#include "fakes/FakeExecutor.h"
#include "platform/pipewire/PipeWireTestServer.h"
#include "platform/portal/FakeCast.h"
#include "render/YuvConverter.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstring>
#include <future>
#include <thread>

namespace tavi {
namespace {

using test::CastFrame;
using test::CastLayout;
using test::CastPointerNews;
using test::FakeCast;
using test::waitFor;

constexpr std::uint32_t kGreen = 0xFF20C040;
constexpr std::uint32_t kViolet = 0xFF6020A0;

CastFrame plain(std::uint32_t colour) {
    CastFrame frame;
    frame.pixel = [colour](int, int) { return colour; };
    return frame;
}

CastFrame halves(std::uint32_t left, std::uint32_t right, int border) {
    CastFrame frame;
    frame.pixel = [=](int x, int) { return x < border ? left : right; };
    return frame;
}

CastFrame pointerOnly(CastPointerNews news) {
    CastFrame frame;
    frame.pointer.push_back(std::move(news));
    return frame;
}

std::uint32_t pixel(const ScreenSample& sample, int x, int y) {
    std::uint32_t value = 0;
    std::memcpy(&value, sample.image->row(y) + std::ptrdiff_t{x} * 4, sizeof value);
    return value;
}

/// Largest difference of a channel, the fourth byte left out.
int distance(std::uint32_t a, std::uint32_t b) {
    int largest = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        largest = std::max(largest, std::abs(static_cast<int>(a >> shift & 255) -
                                             static_cast<int>(b >> shift & 255)));
    }
    return largest;
}

/// How soon a compositor paints again.
constexpr std::chrono::milliseconds kRepaint{300};

/// A stream over a private PipeWire from a compositor that the test plays.
class CastOfACompositor : public testing::Test {
protected:
    ~CastOfACompositor() override { stop(); }

    /// Opens the stream; its first picture is `first`.
    void open(const CastLayout& layout, const CastFrame& first = plain(kGreen),
              FakeCast::Metas metas = FakeCast::Metas::all, CastAlpha alpha = CastAlpha::unwanted) {
        cast = std::make_unique<FakeCast>(layout, metas);
        auto opening = std::async(std::launch::async, [this, alpha] {
            return CastStream::open(FakeCast::openRemote(), cast->node(),
                                    {std::make_shared<YuvConverter>(), pointer}, alpha);
        });
        ASSERT_TRUE(cast->waitForReader());
        // What is sent while the reader's side is still being set up goes nowhere, and a
        // compositor paints again.
        do {
            ASSERT_TRUE(cast->send(first));
        } while (opening.wait_for(kRepaint) != std::future_status::ready);
        auto opened = opening.get();
        ASSERT_TRUE(opened) << opened.error().description();
        stream = std::move(*opened);
    }

    /// Starts it; pictures are `width` x `height`, as large as the source where that is 0.
    void start(int width = 0, int height = 0) {
        stream->configure(
            {width != 0 ? width : stream->width(), height != 0 ? height : stream->height()});
        ASSERT_TRUE(stream->addStreamOutput(queue, [this](const ScreenSample& sample) {
            const std::lock_guard lock(mutex);
            samples.push_back(sample);
            return refusals-- <= 0;
        }));
        ASSERT_TRUE(stream->startCapture());
        ASSERT_TRUE(waitForSamples(1));
    }

    void stop() {
        if (stream) {
            static_cast<void>(stream->stopCapture());
        }
        stream.reset();
        queue.sync([] {});
    }

    std::size_t count() {
        const std::lock_guard lock(mutex);
        return samples.size();
    }
    ScreenSample sample(std::size_t index) {
        const std::lock_guard lock(mutex);
        return samples.at(index);
    }
    ScreenSample last() {
        const std::lock_guard lock(mutex);
        return samples.back();
    }
    bool waitForSamples(std::size_t wanted) {
        return waitFor([&] { return count() >= wanted; });
    }

    /// Sends a picture and waits for the sample of it.
    void show(const CastFrame& frame) {
        const std::size_t before = count();
        ASSERT_TRUE(waitFor([&] { return cast->send(frame); }));
        ASSERT_TRUE(waitForSamples(before + 1));
    }

    /// The same after a change of what both sides agreed upon.
    void showAnew(const CastFrame& frame) {
        const std::size_t before = count();
        ASSERT_TRUE(waitFor([&] {
            cast->send(frame);
            std::this_thread::sleep_for(kRepaint);
            return count() > before;
        }));
    }

    /// Sends what makes no sample, and then something that does.
    void expectNoSampleOf(const CastFrame& frame) {
        const std::size_t before = count();
        ASSERT_TRUE(waitFor([&] { return cast->send(frame); }));
        show(plain(kViolet));
        EXPECT_EQ(count(), before + 1);
        EXPECT_LE(distance(pixel(last(), 0, 0), kViolet), 2);
    }

    test::PipeWireTestServer server;
    FakeExecutor main;
    PortalPointer pointer{main, [] { return std::nullopt; }};
    SerialQueue queue{"test"};
    std::unique_ptr<FakeCast> cast;
    std::unique_ptr<CastStream> stream;
    std::mutex mutex;
    std::vector<ScreenSample> samples; ///< By the mutex, as the next.
    int refusals = 0;                  ///< So many pictures can't be used.
};

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
    showAnew(plain(kViolet));
    EXPECT_EQ(last().image->width(), 64);
    EXPECT_EQ(last().image->height(), 48);
    EXPECT_EQ(pixel(last(), 63, 47) & 0xFFFFFF, kViolet & 0xFFFFFF);
    cast->resize(20, 90);
    showAnew(halves(kGreen, kViolet, 19));
    EXPECT_EQ(pixel(last(), 18, 47) & 0xFFFFFF, kGreen & 0xFFFFFF);
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
    showAnew(plain(kGreen));
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
