#include "autozoom/AutoZoomViewModel.h"

#include "fakes/FakeExecutor.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

UnifiedAutoZoom::Inputs inputs(double duration = 30) {
    UnifiedAutoZoom::Inputs made;
    made.video = made.base = {1920, 1080};
    made.duration = duration;
    return made;
}

std::vector<CursorEvent> clicks() {
    return {{5, 200, 200, CursorEventType::leftMouseDown},
            {5.2, 220, 210, CursorEventType::leftMouseDown}};
}

class AutoZoomViewModelTest : public testing::Test {
protected:
    AutoZoomViewModelTest() {
        QObject::connect(&*model, &AutoZoomViewModel::progressChanged, [this] {
            shown.push_back((model->phaseText() + " " + model->percentText()).toStdString());
        });
    }

    void generate(std::vector<CursorEvent> events, double duration = 30) {
        model->generate(std::move(events), inputs(duration), [this](auto keyframes) {
            EXPECT_FALSE(model->isGenerating());
            results.push_back(std::move(keyframes));
        });
    }

    void settle() {
        background.runAll();
        main.runAll();
    }

    FakeExecutor main;
    FakeExecutor background;
    std::optional<AutoZoomViewModel> model{std::in_place, main, background};
    std::vector<std::string> shown;
    std::vector<std::vector<ZoomKeyframe>> results;
};

TEST_F(AutoZoomViewModelTest, isIdleAtFirst) {
    EXPECT_FALSE(model->isGenerating());
    EXPECT_FALSE(model->progress());
    EXPECT_FALSE(model->error());
    EXPECT_EQ(model->generatedCount(), 0);
    EXPECT_EQ(model->phaseText(), "");
}

TEST_F(AutoZoomViewModelTest, barGoesFromTenToAHundredPercentAndStays) {
    generate(clicks());
    EXPECT_TRUE(model->isGenerating());
    EXPECT_THAT(shown, IsEmpty());
    settle();
    EXPECT_THAT(shown, ElementsAre("Detecting activity regions... 10%", "Complete 100%"));
    EXPECT_FALSE(model->isGenerating());
    EXPECT_EQ(model->progress()->phase, AutoZoomService::AnalysisPhase::complete);
    EXPECT_EQ(model->generatedCount(), 1);
    ASSERT_THAT(results, SizeIs(1));
    EXPECT_THAT(results[0], SizeIs(1));
}

TEST_F(AutoZoomViewModelTest, nextRunBeginsWithoutProgress) {
    generate(clicks());
    settle();
    shown.clear();
    generate(clicks());
    EXPECT_FALSE(model->progress());
    settle();
    EXPECT_THAT(shown, ElementsAre(" 0%", "Detecting activity regions... 10%", "Complete 100%"));
}

TEST_F(AutoZoomViewModelTest, emptyLogReportsNothing) {
    generate({});
    settle();
    EXPECT_THAT(shown, IsEmpty());
    EXPECT_FALSE(model->progress());
    ASSERT_THAT(results, SizeIs(1));
    EXPECT_THAT(results[0], IsEmpty());
}

TEST_F(AutoZoomViewModelTest, videoOfNoLengthReportsAndFindsNothing) {
    generate(clicks(), 0);
    settle();
    EXPECT_THAT(shown, SizeIs(2));
    EXPECT_THAT(results, ElementsAre(IsEmpty()));
}

TEST_F(AutoZoomViewModelTest, runThatOutlivesItsViewModelIsDropped) {
    generate(clicks());
    background.runAll();
    model.reset();
    main.runAll();
    EXPECT_THAT(results, IsEmpty());
}

} // namespace
} // namespace tavi
