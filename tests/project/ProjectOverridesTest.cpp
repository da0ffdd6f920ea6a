#include "project/ProjectOverrides.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// A project with the assignment made; fails the test where that is refused.
EditProject with(const std::string& assignment, EditProject project = {}) {
    project.recordingPath = "file:///takes/one/";
    const auto set = setProjectOption(project, assignment);
    EXPECT_TRUE(set) << assignment << ": " << (set ? "" : set.error());
    return project;
}

std::string errorOf(const std::string& assignment) {
    EditProject project;
    project.recordingPath = "file:///takes/one/";
    const EditProject before = project;
    const auto set = setProjectOption(project, assignment);
    EXPECT_EQ(project, before) << assignment;
    return set ? "" : set.error();
}

TEST(ProjectOverrides, setValuesOfEveryKind) {
    EXPECT_EQ(with("outputSettings.fps=30").outputSettings.fps, 30);
    EXPECT_EQ(with("outputSettings.resolution=1280x720").outputSettings.resolution,
              (Size{1280, 720}));
    EXPECT_EQ(with("outputSettings.resolution=[640, 360.5]").outputSettings.resolution,
              (Size{640, 360.5}));
    EXPECT_EQ(with("outputSettings.autoAspectRatio=true").outputSettings.autoAspectRatio, true);
    EXPECT_EQ(with("cursorSettings.cursorSize=40.5").cursorSettings.cursorSize, 40.5);
    EXPECT_EQ(with("cursorSettings.cursorStyle=Circle").cursorSettings.cursorStyle,
              CursorStyle::circle);
    EXPECT_EQ(
        with("appearanceSettings.backgroundStyle=gradient").appearanceSettings.backgroundStyle,
        BackgroundStyle::gradient);
    EXPECT_EQ(with("appearanceSettings.solidColor.green=0.25").appearanceSettings.solidColor.green,
              0.25);
    EXPECT_EQ(with("cameraSettings.position=Top Left").cameraSettings.position,
              CameraPosition::topLeft);
    EXPECT_EQ(with("trimState.inPoint=1").trimState.inPoint, 1);
    EXPECT_EQ(with("trimState.outPoint=2.5").trimState.outPoint, 2.5);
}

TEST(ProjectOverrides, replaceListsWhole) {
    EditProject project;
    project.keyframes.emplace_back();
    project.trimState.outPoint = 4;
    EXPECT_TRUE(with("keyframes=[]", project).keyframes.empty());
    EXPECT_EQ(with("trimState.outPoint=null", project).trimState.outPoint, std::nullopt);
}

TEST(ProjectOverrides, leaveEverythingElseAsItIs) {
    EditProject project;
    project.recordingPath = "file:///takes/\"quoted\"%20n\u00e4me/";
    project.keyframes.emplace_back().timestamp = 0.1;
    project.trimState.cutSegments = {{Uuid::make(), 1, 2}};
    project.cursorEvents = {{1, 2, 3, CursorEventType::rightClick}};
    project.cursorImageInfos = {{1, 2, 3, 4}};
    project.cursorImages = {std::make_shared<PixelBuffer>(2, 2)};
    project.videoHeight = 900;
    project.cameraStartDelay = 0.25;
    EditProject expected = project;
    expected.outputSettings.fps = 24;
    ASSERT_TRUE(setProjectOption(project, "outputSettings.fps", "24"));
    EXPECT_EQ(project, expected);
}

TEST(ProjectOverrides, anUnknownKeyIsRefusedWithTheKeysThereAre) {
    for (const char* key : {"fps", "outputSettings", "outputSettings.", "outputSettings.fp",
                            "outputSettings.fps.x", "recordingPath", "", "cursorEvents"}) {
        EXPECT_THAT(errorOf(std::string(key) + "=1"), HasSubstr("outputSettings.fps, ")) << key;
    }
}

TEST(ProjectOverrides, aBadValueIsRefusedWithTheNamesThereAre) {
    EXPECT_EQ(errorOf("outputSettings.fps=fast"),
              "The option outputSettings.fps can't be \"fast\"");
    EXPECT_EQ(errorOf("cursorSettings.cursorStyle=circle"),
              "The option cursorSettings.cursorStyle can't be \"circle\"; it takes \"Pointer\", "
              "\"Circle\", \"System\"");
    for (const char* bad : {"outputSettings.fps=1.5", "outputSettings.fps=", "keyframes=5",
                            "outputSettings.resolution=12", "outputSettings.resolution=axb",
                            "cursorSettings.showCursor=1", "trimState.inPoint=\"1\"",
                            "outputSettings.fps=1,\"autoAspectRatio\":true"}) {
        EXPECT_THAT(errorOf(bad), HasSubstr("can't be")) << bad;
    }
}

TEST(ProjectOverrides, anAssignmentNeedsAnEqualsSign) {
    EXPECT_EQ(errorOf("outputSettings.fps"),
              "\"outputSettings.fps\" sets nothing; write KEY=VALUE");
}

TEST(ProjectOverrides, theKeysAreThoseOfTheFile) {
    const auto keys = projectOptionKeys();
    EXPECT_EQ(keys.size(), 42u);
    EXPECT_THAT(keys, Contains("trimState.outPoint"));
    EXPECT_THAT(keys, Not(Contains("recordingPath")));
}

} // namespace
} // namespace tavi
