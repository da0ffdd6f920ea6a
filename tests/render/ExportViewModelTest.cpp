#include "render/ExportViewModel.h"

#include "platform/qt/QtExecutor.h"
#include "render/ExportOfATake.h"
#include "support/RunLoop.h"

#include <gmock/gmock.h>

#include <semaphore>

namespace tavi {
namespace {

using test::runLoopUntil;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

class ScriptedPanel final : public SavePanel {
public:
    void chooseFile(const std::string& proposedName, Answer answer) override {
        proposedNames.push_back(proposedName);
        m_answer = std::move(answer);
        if (answersAtOnce) {
            m_answer("film.mp4");
        }
    }
    void answer(std::optional<std::filesystem::path> file) { m_answer(std::move(file)); }

    bool answersAtOnce = true;
    std::vector<std::string> proposedNames;

private:
    Answer m_answer;
};

class ListedViewer final : public FileViewer {
public:
    void select(const std::filesystem::path& file) override { selected.push_back(file); }
    std::vector<std::filesystem::path> selected;
};

/// An export of 100 frames whose engine waits to be let on, frame by frame.
class ExportScreen : public test::ExportOfATake {
protected:
    ExportScreen() {
        film.notReadyPolls = 1;
        project.outputSettings.fps = 100;
        QObject::connect(&*model, &ExportViewModel::isExportingChanged,
                         [this] { changes.push_back(model->isExporting() ? "exporting" : "not"); });
        QObject::connect(&*model, &ExportViewModel::errorChanged,
                         [this] { changes.push_back(model->error().value_or("no error")); });
    }
    ~ExportScreen() override {
        letOn(1000);
        model.reset();
    }

    std::unique_ptr<VideoExportService> makeEngine() {
        ++engines;
        return std::make_unique<VideoExportService>(
            film, clock, log, [this](std::chrono::nanoseconds) { gate.acquire(); });
    }

    void letOn(int frames) { gate.release(frames); }

    /// Lets the engine write frames until that share is done.
    bool letOnTo(double share) {
        letOn(static_cast<int>(std::lround((share - model->progress()) * 100)));
        return runLoopUntil([&] { return model->progress() > share - 1e-9; });
    }

    bool runToEnd() {
        letOn(1000);
        return runLoopUntil([this] { return !model->isExporting(); });
    }

    QtExecutor main;
    std::counting_semaphore<> gate{0};
    ScriptedPanel panel;
    ListedViewer viewer;
    int engines = 0;
    std::vector<std::string> changes;
    std::optional<ExportViewModel> model{
        std::in_place,
        ExportViewModel::Ports{[this] { return makeEngine(); }, clock, panel, viewer, main}};
};

TEST_F(ExportScreen, isIdleAtFirst) {
    EXPECT_EQ(model->progress(), 0);
    EXPECT_FALSE(model->isExporting());
    EXPECT_FALSE(model->exportedURL());
    EXPECT_FALSE(model->error());
    EXPECT_FALSE(model->estimatedTimeRemaining());
}

TEST_F(ExportScreen, finishedFilmIsToldAndShown) {
    model->revealInFinder();
    EXPECT_THAT(viewer.selected, IsEmpty());
    model->exportProject(project);
    EXPECT_TRUE(model->isExporting());
    ASSERT_TRUE(runToEnd());
    EXPECT_EQ(model->exportedURL(), "film.mp4");
    EXPECT_FALSE(model->error());
    EXPECT_FALSE(model->estimatedTimeRemaining());
    EXPECT_EQ(model->progress(), 1);
    EXPECT_EQ(model->report()->framesAppended, 100);
    model->revealInFinder();
    EXPECT_THAT(viewer.selected, ElementsAre("film.mp4"));
    EXPECT_THAT(changes, ElementsAre("exporting", "not"));
}

TEST_F(ExportScreen, proposedNameHoldsTheMoment) {
    panel.answersAtOnce = false;
    model->exportProject(project);
    EXPECT_THAT(panel.proposedNames,
                ElementsAre(MatchesRegex(
                    "Tavlin_[0-9]{4}-[0-9]{2}-[0-9]{2}_[0-9]{2}-[0-9]{2}-[0-9]{2}\\.mp4")));
}

TEST_F(ExportScreen, secondCallDoesNothing) {
    panel.answersAtOnce = false;
    model->exportProject(project);
    model->exportProject(project);
    EXPECT_EQ(panel.proposedNames.size(), 1u);
    panel.answer("film.mp4");
    model->exportProject(project);
    EXPECT_EQ(panel.proposedNames.size(), 1u);
    EXPECT_EQ(engines, 1);
}

TEST_F(ExportScreen, dismissedPanelMakesNoEngine) {
    panel.answersAtOnce = false;
    model->exportProject(project);
    EXPECT_TRUE(model->isExporting());
    panel.answer(std::nullopt);
    EXPECT_FALSE(model->isExporting());
    EXPECT_EQ(engines, 0);
}

TEST_F(ExportScreen, laterEditsLeaveTheExportAlone) {
    model->exportProject(project);
    project.trimState.outPoint = 0.1;
    ASSERT_TRUE(runToEnd());
    EXPECT_EQ(film.written.size(), 100u);
}

TEST_F(ExportScreen, estimateAppearsAboveTwoPercent) {
    model->exportProject(project);
    ASSERT_TRUE(letOnTo(0.02));
    EXPECT_FALSE(model->estimatedTimeRemaining());
    ASSERT_TRUE(letOnTo(0.03));
    EXPECT_TRUE(model->estimatedTimeRemaining());
}

TEST_F(ExportScreen, halfDoneAfterTenSecondsLeavesTen) {
    model->exportProject(project);
    ASSERT_TRUE(letOnTo(0.49));
    clock.advance(10);
    ASSERT_TRUE(letOnTo(0.5));
    EXPECT_NEAR(*model->estimatedTimeRemaining(), 10, 1e-6);
}

TEST_F(ExportScreen, estimateIsNeverBelowZero) {
    model->exportProject(project);
    ASSERT_TRUE(letOnTo(0.49));
    clock.advance(-10); // the system's clock was set back
    ASSERT_TRUE(letOnTo(0.5));
    EXPECT_EQ(*model->estimatedTimeRemaining(), 0);
}

TEST_F(ExportScreen, cancelClosesAtOnceAndTellsWhenTheEngineHasEnded) {
    model->exportProject(project);
    ASSERT_TRUE(letOnTo(0.1));
    model->cancelExport();
    EXPECT_FALSE(model->isExporting());
    EXPECT_FALSE(model->error());
    letOn(10);
    ASSERT_TRUE(runLoopUntil([this] { return model->error().has_value(); }));
    EXPECT_EQ(model->error(), "Export was cancelled.");
    EXPECT_FALSE(model->exportedURL());
    EXPECT_FALSE(model->estimatedTimeRemaining());
}

TEST_F(ExportScreen, newExportHearsNothingOfACancelledOne) {
    model->exportProject(project);
    ASSERT_TRUE(letOnTo(0.1));
    model->cancelExport();
    panel.answersAtOnce = false;
    model->exportProject(project);
    letOn(10); // the first engine ends while the panel is open
    QCoreApplication::processEvents();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    QCoreApplication::processEvents();
    EXPECT_TRUE(model->isExporting());
    EXPECT_FALSE(model->error());
    EXPECT_EQ(model->progress(), 0);
}

TEST_F(ExportScreen, failureIsTold) {
    film.writerError = MediaError{MediaError::Kind::cannotWrite, "film.mp4", "Read-only"};
    model->exportProject(project);
    ASSERT_TRUE(runToEnd());
    EXPECT_EQ(model->error(), film.writerError->description());
    EXPECT_FALSE(model->exportedURL());
}

TEST_F(ExportScreen, writerThatFailsOnTheWayIsAFailureToo) {
    film.failsAfterFrames = 5;
    model->exportProject(project);
    ASSERT_TRUE(runToEnd());
    ASSERT_TRUE(model->error());
    EXPECT_FALSE(model->exportedURL());
    EXPECT_EQ(model->report()->writerStatus, AssetWriterStatus::failed);
}

TEST_F(ExportScreen, canRunAgainAfterAFailure) {
    film.writerError = MediaError{MediaError::Kind::cannotWrite, "film.mp4", "Read-only"};
    model->exportProject(project);
    ASSERT_TRUE(runToEnd());
    film.writerError.reset();
    model->exportProject(project);
    EXPECT_FALSE(model->error());
    ASSERT_TRUE(runToEnd());
    EXPECT_TRUE(model->exportedURL());
}

TEST_F(ExportScreen, deletedModelCancelsItsEngine) {
    model->exportProject(project);
    ASSERT_TRUE(letOnTo(0.1));
    letOn(1000);
    model.reset();
    QCoreApplication::processEvents(); // what the engine still posted finds no model
    EXPECT_LT(film.written.size(), 101u);
}

} // namespace
} // namespace tavi
