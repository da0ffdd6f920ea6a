#include "app/TakeThumbnails.h"
#include "fakes/FakeExecutor.h"
#include "support/RunLoop.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

#include <mutex>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Pictures of 640x360 for every file but those called otherwise; decoding waits while it is held.
class FakeImages final : public ImageGenerator {
public:
    Result<PixelBufferPtr, MediaError> copyImage(const std::filesystem::path& path, MediaTime time,
                                                 Size size) override {
        EXPECT_EQ(size, (Size{640, 640}));
        const std::lock_guard lock(gate);
        const auto folder = path.parent_path().filename().string();
        asked.push_back(folder + " " + std::to_string(time.seconds()).substr(0, 3));
        const bool isMissing = folder == "broken" || (folder == "short" && time.seconds() > 0.25);
        if (isMissing) {
            return fail(MediaError{MediaError::Kind::cannotDecode, path.string(), ""});
        }
        return std::make_shared<PixelBuffer>(640, 360);
    }

    std::mutex gate;
    std::vector<std::string> asked;
};

class TakeThumbnailsTest : public testing::Test {
protected:
    static constexpr std::size_t kPicture = 640 * 360 * 4;

    static QUrl url(const char* name) {
        return QUrl::fromLocalFile(QString("/takes/%1").arg(QLatin1String(name)));
    }
    bool waitFor(int count) {
        return test::runLoopUntil([&] {
            main.runAll();
            return ready.count() >= count;
        });
    }
    /// Waits until everything that was wanted is answered.
    void finish() {
        ASSERT_TRUE(test::runLoopUntil([&] {
            main.runAll();
            const std::lock_guard lock(images.gate);
            return !images.asked.empty() && images.asked.back() == "last 0.5" &&
                   ready.count() > 0 && ready.last()[0].toUrl() == url("last");
        }));
    }

    FakeImages images;
    FakeExecutor main;
    TakeThumbnails thumbnails{images, main, 3 * kPicture};
    QSignalSpy ready{&thumbnails, &TakeThumbnails::ready};
};

TEST_F(TakeThumbnailsTest, aPictureIsMadeOffTheMainThreadAndTold) {
    EXPECT_FALSE(thumbnails.image(url("a")).isValid());
    thumbnails.want(url("a"));
    EXPECT_EQ(ready.count(), 0);
    ASSERT_TRUE(waitFor(1));
    EXPECT_EQ(ready[0][0].toUrl(), url("a"));
    const auto picture = thumbnails.image(url("a")).value<PixelBufferPtr>();
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width(), 640);
    EXPECT_THAT(images.asked, ElementsAre("a 0.5"));
}

TEST_F(TakeThumbnailsTest, aTakeShorterThanHalfASecondShowsItsBeginning) {
    thumbnails.want(url("short"));
    ASSERT_TRUE(waitFor(1));
    EXPECT_THAT(images.asked, ElementsAre("short 0.5", "short 0.0"));
}

TEST_F(TakeThumbnailsTest, aTakeWithoutPicturesStaysWithoutAndIsTriedOnce) {
    thumbnails.want(url("broken"));
    thumbnails.want(url("last"));
    finish();
    thumbnails.want(url("broken"));
    EXPECT_EQ(ready.count(), 1);
    EXPECT_THAT(images.asked, ElementsAre("broken 0.5", "broken 0.0", "last 0.5"));
    thumbnails.retryFailures();
    thumbnails.want(url("broken"));
    ASSERT_TRUE(test::runLoopUntil([&] {
        const std::lock_guard lock(images.gate);
        return images.asked.size() == 5;
    }));
}

TEST_F(TakeThumbnailsTest, noneIsDecodedTwice) {
    {
        const std::lock_guard hold(images.gate);
        for (int i = 0; i < 3; ++i) {
            thumbnails.want(url("a"));
            thumbnails.want(url("b"));
        }
    }
    ASSERT_TRUE(waitFor(2));
    thumbnails.want(url("a"));
    thumbnails.want(url("last"));
    finish();
    EXPECT_THAT(images.asked, ElementsAre("a 0.5", "b 0.5", "last 0.5"));
}

TEST_F(TakeThumbnailsTest, whatScrolledAwayBeforeItsTurnIsNotMade) {
    {
        const std::lock_guard hold(images.gate);
        thumbnails.want(url("a"));
        thumbnails.want(url("b"));
        thumbnails.want(url("last"));
        thumbnails.forget(url("b"));
    }
    finish();
    EXPECT_THAT(images.asked, ElementsAre("a 0.5", "last 0.5"));
}

TEST_F(TakeThumbnailsTest, memoryStaysInItsBudgetAndKeepsWhatWasUsedLast) {
    for (const char* name : {"a", "b", "c"}) {
        thumbnails.want(url(name));
    }
    ASSERT_TRUE(waitFor(3));
    EXPECT_TRUE(thumbnails.image(url("a")).isValid());
    thumbnails.want(url("last"));
    finish();
    EXPECT_EQ(thumbnails.bytesInMemory(), 3 * kPicture);
    EXPECT_TRUE(thumbnails.image(url("a")).isValid());
    EXPECT_FALSE(thumbnails.image(url("b")).isValid());
    EXPECT_TRUE(thumbnails.image(url("c")).isValid());
}

TEST_F(TakeThumbnailsTest, theThumbnailOfADeletedTakeIsDropped) {
    thumbnails.want(url("a"));
    ASSERT_TRUE(waitFor(1));
    thumbnails.drop(url("a"));
    EXPECT_FALSE(thumbnails.image(url("a")).isValid());
    EXPECT_EQ(thumbnails.bytesInMemory(), 0u);
}

TEST_F(TakeThumbnailsTest, aTakeThatIsDeletedWhileItsPictureIsMadeGetsNone) {
    {
        const std::lock_guard hold(images.gate);
        thumbnails.want(url("a"));
        thumbnails.drop(url("a"));
        thumbnails.want(url("last"));
    }
    finish();
    EXPECT_FALSE(thumbnails.image(url("a")).isValid());
}

TEST(TakeThumbnailsEnd, aPictureThatIsReadyAfterTheEndIsDropped) {
    FakeImages images;
    FakeExecutor main;
    {
        TakeThumbnails thumbnails(images, main);
        thumbnails.want(QUrl::fromLocalFile("/takes/a"));
    }
    EXPECT_EQ(main.waiting(), 1u);
    main.runAll();
    EXPECT_THAT(images.asked, ElementsAre("a 0.5"));
}

} // namespace
} // namespace tavi
