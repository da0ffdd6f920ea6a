#include "editor/InspectorControls.h"

#include "project/EditProjectJson.h"

#include <gmock/gmock.h>

#include <ranges>
#include <set>

namespace tavi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = InspectorControl::Kind;

EditProject plainProject() {
    EditProject project;
    project.recordingPath = "file:///take/";
    return project;
}

std::vector<std::string> shownLabels(const EditProject& project, bool hasCamera) {
    std::vector<std::string> labels;
    for (const InspectorControl& control : inspectorControls()) {
        if (!control.isShown || control.isShown(project, hasCamera)) {
            labels.emplace_back(control.label);
        }
    }
    return labels;
}

const InspectorControl& control(std::string_view label, Kind kind, int nth = 0) {
    for (const InspectorControl& candidate : inspectorControls()) {
        if (candidate.label == label && candidate.kind == kind && nth-- == 0) {
            return candidate;
        }
    }
    throw std::runtime_error("no such control: " + std::string(label));
}

TEST(InspectorControls, standInTheirOrder) {
    EditProject project = plainProject();
    project.appearanceSettings.backgroundStyle = BackgroundStyle::solidBlack;
    EXPECT_THAT(shownLabels(project, true),
                ElementsAre("Aspect Ratio", "Background Size", "APPEARANCE", "Background",
                            "Corner Radius", "Shadow", "CURSOR", "Style", "Size", "Smoothing",
                            "KEYSTROKES", "Size", "Display Duration", "CAMERA", "Position", "Size",
                            "Corner Radius", "Margin", "Border", "Shadow"));
}

TEST(InspectorControls, eachBackgroundHasItsOwn) {
    struct Case {
        BackgroundStyle style;
        std::vector<std::string> added;
    };
    for (const auto& [style, added] :
         {Case{BackgroundStyle::solidWhite, {}}, Case{BackgroundStyle::solidCustom, {"Color"}},
          Case{BackgroundStyle::gradient, {"Preset"}}, Case{BackgroundStyle::blur, {"Blur Radius"}},
          Case{BackgroundStyle::wallpaper, {"Preset", "Animate"}}}) {
        EditProject project = plainProject();
        project.appearanceSettings.backgroundStyle = style;
        const auto labels = shownLabels(project, false);
        const auto begin = std::ranges::find(labels, "Background") + 1;
        EXPECT_EQ(std::vector(begin, std::ranges::find(labels, "Corner Radius")), added);
    }
}

TEST(InspectorControls, shadowHasItsSlidersWhileItIsOn) {
    EditProject project = plainProject();
    project.appearanceSettings.shadowEnabled = true;
    EXPECT_THAT(shownLabels(project, false), testing::Contains("Opacity"));
    project.appearanceSettings.shadowEnabled = false;
    EXPECT_THAT(shownLabels(project, false), testing::Not(testing::Contains("Opacity")));
}

TEST(InspectorControls, takeWithoutACameraSaysSo) {
    const auto labels = shownLabels(plainProject(), false);
    EXPECT_THAT(std::vector(std::ranges::find(labels, "CAMERA"), labels.end()),
                ElementsAre("CAMERA", "No camera recorded"));
}

struct SliderCase {
    const char* label;
    int nth;
    double from;
    double to;
    double step;
    double value;
    const char* text;
};

class InspectorSlider : public testing::TestWithParam<SliderCase> {};

TEST_P(InspectorSlider, hasItsRangeAndItsText) {
    const auto& [label, nth, from, to, step, value, text] = GetParam();
    const InspectorControl& slider = control(label, Kind::slider, nth);
    EXPECT_EQ(slider.from, from);
    EXPECT_EQ(slider.to, to);
    EXPECT_EQ(slider.step, step);
    EXPECT_EQ(slider.format(value), text);
}

INSTANTIATE_TEST_SUITE_P(All, InspectorSlider,
                         testing::Values(SliderCase{"Background Size", 0, 0, 0.3, 0.01, 0.03, "3%"},
                                         SliderCase{"Blur Radius", 0, 20, 80, 5, 40, "40"},
                                         SliderCase{"Corner Radius", 0, 0, 40, 1, 13, "13px"},
                                         SliderCase{"Radius", 0, 5, 50, 1, 20, "20"},
                                         SliderCase{"Opacity", 0, 0.1, 1, 0.1, 0.3, "30%"},
                                         SliderCase{"Size", 0, 12, 120, 2, 24, "24px"},
                                         SliderCase{"Display Duration", 0, 1, 5, 0.5, 2.5, "2.5s"},
                                         SliderCase{"Size", 1, 0.1, 0.4, 0.02, 0.2, "20%"},
                                         SliderCase{"Corner Radius", 1, 0, 420, 0, 33.4, "33px"},
                                         SliderCase{"Margin", 0, 0.01, 0.1, 0.01, 0.03, "3%"},
                                         SliderCase{"Border", 0, 0, 8, 1, 3, "3px"}));

TEST(InspectorControls, everyOneEditsAFieldOfItsOwn) {
    const std::string before = encodeEditProject(plainProject()).value();
    std::set<std::string> results;
    for (const InspectorControl& control : inspectorControls()) {
        if (!control.setValue) {
            continue;
        }
        EditProject project = plainProject();
        const double value = control.value(project);
        const double other = control.kind == Kind::slider
                                 ? (value == control.to ? control.from : control.to)
                                 : (value == 0 ? 1 : 0);
        control.setValue(project, other);
        EXPECT_EQ(control.value(project), other) << control.label;
        EXPECT_TRUE(results.insert(encodeEditProject(project).value()).second) << control.label;
    }
    EXPECT_EQ(results.count(before), 0U);
    EXPECT_EQ(results.size(), 25U);
}

TEST(InspectorControls, choicesMayStandInAnotherOrderThanTheirCases) {
    EditProject project = plainProject();
    control("Style", Kind::choice).setValue(project, 1);
    EXPECT_EQ(project.cursorSettings.cursorStyle, CursorStyle::system);
    control("Preset", Kind::wallpapers).setValue(project, 3);
    EXPECT_EQ(project.appearanceSettings.wallpaperPreset, WallpaperPreset::forest);
    control("Position", Kind::choice).setValue(project, 0);
    EXPECT_EQ(project.cameraSettings.position, CameraPosition::topLeft);
    control("Aspect Ratio", Kind::choice).setValue(project, 1);
    EXPECT_TRUE(project.outputSettings.autoAspectRatio);
}

TEST(InspectorControls, sliderStaysOnItsSteps) {
    const InspectorControl& size = control("Size", Kind::slider, 1);
    EXPECT_DOUBLE_EQ(snapped(size, 0.211), 0.22);
    EXPECT_EQ(snapped(size, 7), 0.4);
    EXPECT_EQ(snapped(size, -7), 0.1);
    EXPECT_EQ(snapped(control("Corner Radius", Kind::slider, 1), 33.37), 33.37);
}

} // namespace
} // namespace tavi
