#include "capture/RecordingScreen.h"
#include "fakes/FakeConsent.h"

namespace tavi {
namespace {

using test::runLoopUntil;
using testing::ElementsAre;
using testing::IsEmpty;

/// A desktop that asks its user before each take.
class RecordingWithConsent : public test::RecordingScreen {
protected:
    RecordingWithConsent() {
        RecordingViewModel::Ports ports = this->ports();
        ports.consent = &consent;
        model = std::make_unique<RecordingViewModel>(std::move(ports));
        load();
    }

    bool isIdleAgain() {
        return runLoopUntil([this] {
            return !model->isCountingDown() && !model->isStarting() && !model->isAsking();
        });
    }

    FakeConsent consent;
};

TEST_F(RecordingWithConsent, asksBeforeTheCountdown) {
    consent.hold(true);
    model->startCountdown([] {});
    EXPECT_TRUE(model->isCountingDown());
    EXPECT_TRUE(model->isAsking());
    EXPECT_FALSE(panels.isOpen());
    ASSERT_TRUE(runLoopUntil([this] { return consent.asked().size() == 1; }));
    EXPECT_EQ(consent.asked()[0], ScreenFilter::display(kFakeDisplay.id));
    consent.hold(false);
    ASSERT_TRUE(runLoopUntil([this] { return panels.isOpen(); }));
    EXPECT_FALSE(model->isAsking());
}

TEST_F(RecordingWithConsent, countsDownWhereTheSourceIsSaidToBeThen) {
    frames.displays[kFakeDisplay.id] = {0, 0, 1000, 700};
    model->startCountdown([] {});
    ASSERT_TRUE(runLoopUntil([this] { return panels.isOpen(); }));
    EXPECT_EQ(panels.lastFrame, (Rect{0, 0, 1000, 700}));
}

TEST_F(RecordingWithConsent, refusalEndsTheCountdownWithoutAWord) {
    consent.answer = Consent::declined;
    bool wasStarted = false;
    model->startCountdown([&] { wasStarted = true; });
    ASSERT_TRUE(isIdleAgain());
    EXPECT_FALSE(wasStarted);
    EXPECT_FALSE(panels.isOpen());
    EXPECT_EQ(model->failureText(), "");
    EXPECT_THAT(folders(), IsEmpty());
    EXPECT_EQ(messages.str(), "");
}

TEST_F(RecordingWithConsent, refusalOfAnImmediateStartLeavesNothing) {
    consent.answer = Consent::declined;
    run(model->startRecording());
    EXPECT_FALSE(model->isRecording());
    EXPECT_EQ(model->failureText(), "");
    EXPECT_THAT(folders(), IsEmpty());
}

TEST_F(RecordingWithConsent, errorOfThePortalIsTold) {
    consent.answer = fail(CaptureError{CaptureError::Kind::castRefused, "out of order"});
    run(model->startRecording());
    EXPECT_FALSE(model->isRecording());
    EXPECT_THAT(model->failureText(), testing::HasSubstr("out of order"));
}

TEST_F(RecordingWithConsent, cancelTakesTheQuestionBack) {
    consent.hold(true);
    model->startCountdown([] {});
    ASSERT_TRUE(runLoopUntil([this] { return consent.asked().size() == 1; }));
    model->cancelCountdown();
    ASSERT_TRUE(isIdleAgain());
    EXPECT_FALSE(panels.isOpen());
}

TEST_F(RecordingWithConsent, cancelledCountdownGivesTheConsentBack) {
    model->startCountdown([] {});
    ASSERT_TRUE(runLoopUntil([this] { return panels.isOpen(); }));
    EXPECT_EQ(consent.releases, 0);
    model->cancelCountdown();
    EXPECT_EQ(consent.releases, 1);
}

TEST_F(RecordingWithConsent, endOfTheModelTakesTheQuestionBack) {
    consent.hold(true);
    model->startCountdown([] {});
    ASSERT_TRUE(runLoopUntil([this] { return consent.asked().size() == 1; }));
    model.reset(); // would wait for ever
    EXPECT_FALSE(panels.isOpen());
}

TEST_F(RecordingWithConsent, takeRunsAfterConsent) {
    startTake();
    EXPECT_THAT(consent.asked(), ElementsAre(ScreenFilter::display(kFakeDisplay.id)));
    stop();
}

} // namespace
} // namespace tavi
