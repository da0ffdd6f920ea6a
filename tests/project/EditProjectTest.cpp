#include "project/EditProject.h"

#include "project/AppSettings.h"
#include "project/EditProjectJson.h"
#include "project/RecordingFolder.h"
#include "project/RecordingMetadataJson.h"
#include "project/TakeLoader.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

using test::readFile;
using test::TemporaryFolder;
using test::writeFile;

const std::string kFourKeys =
    R"({"recordingPath":"file:\/\/\/takes\/one\/","keyframes":[],)"
    R"("outputSettings":{"resolution":[1280,720],"fps":30},"cursorSettings":{}})";

PixelBufferPtr noImage(const std::filesystem::path&) {
    return nullptr;
}

EditProject makeSample() {
    EditProject project;
    project.recordingPath = "file:///takes/a%20b/";
    project.keyframes.resize(1);
    project.keyframes[0].waypoints = {{1, 2, 3}};
    project.keyframes[0].zoomCurve.resize(1);
    project.outputSettings.autoAspectRatio = true;
    project.cursorSettings.cursorSize = 40;
    project.autoZoomSettings.aggressiveness = 0.9;
    project.appearanceSettings.padding = 0.1;
    project.cameraSettings.enabled = true;
    project.trimState = {1, 9, {TimeRange{}}};
    return project;
}

/// One edit, the same ids at every call.
const EditProject& sample() {
    static const EditProject project = makeSample();
    return project;
}

TEST(EditProjectJson, readsBackWhatItWrote) {
    EXPECT_EQ(decodeEditProject(encodeEditProject(sample()).value()).value(), sample());
}

TEST(EditProjectJson, writesExactlyTheEightKeysInOrderWithEscapedSlashes) {
    EditProject project = sample();
    project.cursorEvents.resize(3);
    project.videoHeight = 99;
    const std::string json = encodeEditProject(project).value();
    EXPECT_TRUE(json.starts_with(R"({"recordingPath":"file:\/\/\/takes\/a%20b\/","keyframes":[{)"));
    std::size_t last = 0;
    for (const char* key :
         {"recordingPath", "keyframes", "outputSettings", "cursorSettings", "autoZoomSettings",
          "appearanceSettings", "cameraSettings", "trimState"}) {
        const auto at = json.find("\"" + std::string(key) + "\":");
        ASSERT_NE(at, std::string::npos) << key;
        EXPECT_GE(at, last) << key;
        last = at;
    }
    EXPECT_EQ(json.find("cursorEvents"), std::string::npos);
    EXPECT_EQ(json.find("videoHeight"), std::string::npos);
    EXPECT_EQ(json.find('\n'), std::string::npos);
}

TEST(EditProjectJson, theFourRequiredKeysOpenWithDefaultsForTheRest) {
    const auto project = decodeEditProject(kFourKeys);
    ASSERT_TRUE(project);
    EXPECT_EQ(project->appearanceSettings, AppearanceSettings{});
    EXPECT_EQ(project->cameraSettings, CameraSettings{});
    EXPECT_EQ(project->autoZoomSettings, AutoZoomSettings{});
    EXPECT_EQ(project->trimState, TrimState{});
    EXPECT_EQ(project->outputSettings.fps, 30);
}

TEST(EditProjectJson, eachOfTheFourIsRequired) {
    for (const char* key : {"recordingPath", "keyframes", "outputSettings", "cursorSettings"}) {
        std::string json = kFourKeys;
        json.replace(json.find(key), 1, "X");
        EXPECT_FALSE(decodeEditProject(json)) << key;
    }
}

TEST(EditProjectJson, anOptionalRecordThatIsPresentObeysItsOwnRules) {
    std::string json = kFourKeys;
    json.insert(json.size() - 1, R"(,"appearanceSettings":{})");
    EXPECT_FALSE(decodeEditProject(json));
    json = kFourKeys;
    json.insert(json.size() - 1, R"(,"appearanceSettings":null)");
    EXPECT_TRUE(decodeEditProject(json));
}

TEST(EditProjectJson, cursorListsOfAnotherWriterAreIgnored) {
    std::string json = kFourKeys;
    json.insert(json.size() - 1, R"(,"cursorEvents":[{"timestamp":1}],"videoHeight":"tall")");
    const auto project = decodeEditProject(json);
    ASSERT_TRUE(project);
    EXPECT_TRUE(project->cursorEvents.empty());
    EXPECT_EQ(project->videoHeight, 0);
}

TEST(EditProjectJson, theRecordingPathIsAnyTextButTheEmptyOne) {
    std::string json = kFourKeys;
    const std::string url = R"("file:\/\/\/takes\/one\/")";
    EXPECT_TRUE(decodeEditProject(json.replace(json.find(url), url.size(), "\"odd\"")));
    EXPECT_FALSE(decodeEditProject(json.replace(json.find("\"odd\""), 5, "\"\"")));
}

TEST(OpenProject, aFreshOneTakesTheOptionsOfTheLibrary) {
    const TemporaryFolder library;
    AppSettings settings;
    settings.outputSettings.fps = 24;
    settings.cameraSettings.enabled = true;
    saveAppSettings(settings, library.path());
    const auto folder = library / "take one";
    std::filesystem::create_directories(folder);
    for (const auto& path : {folder, folder / "", folder / "." / "."}) {
        const EditProject project = openProject(path);
        EXPECT_EQ(project.outputSettings, settings.outputSettings) << path;
        EXPECT_EQ(project.cameraSettings, settings.cameraSettings);
        EXPECT_TRUE(project.keyframes.empty());
        EXPECT_EQ(project.trimState, TrimState{});
    }
    EXPECT_EQ(openProject(folder).recordingPath,
              "file://" + library.path().string() + "/take%20one/");
}

TEST(OpenProject, oneThatDoesNotDecodeIsReplacedByAFreshOneAndStaysUntilASave) {
    const TemporaryFolder library;
    const auto folder = library / "take";
    writeFile(folder / "project.json", "{broken");
    EditProject project = openProject(folder);
    EXPECT_EQ(project.recordingPath, folderUrl(folder));
    EXPECT_EQ(readFile(folder / "project.json"), "{broken");
    project.outputSettings.fps = 12;
    EXPECT_TRUE(saveProject(project, folder));
    EXPECT_EQ(openProject(folder).outputSettings.fps, 12);
}

TEST(OpenProject, keepsARecordingPathOfAnotherPlace) {
    const TemporaryFolder library;
    writeFile(library / "renamed/project.json", kFourKeys);
    EXPECT_EQ(openProject(library / "renamed").recordingPath, "file:///takes/one/");
}

RecordingMetadata sidecar() {
    RecordingMetadata metadata;
    metadata.screenHeight = 720;
    metadata.cameraStartDelay = 0.5;
    metadata.cursorEvents.resize(4);
    metadata.cursorImageInfos.resize(3);
    return metadata;
}

TEST(LoadRecordingMetadata, overwritesTheDerivedFields) {
    const TemporaryFolder take;
    writeFile(take / "metadata.json", encodeRecordingMetadata(sidecar()).value());
    EditProject project;
    project.videoHeight = 5;
    project.cursorEvents.resize(9);
    loadRecordingMetadata(project, take.path(), noImage);
    EXPECT_EQ(project.cursorEvents.size(), 4u);
    EXPECT_EQ(project.cursorImageInfos.size(), 3u);
    EXPECT_EQ(project.videoHeight, 720);
    EXPECT_EQ(project.cameraStartDelay, 0.5);
}

TEST(LoadRecordingMetadata, aMissingImageLeavesNoGap) {
    const TemporaryFolder take;
    writeFile(take / "metadata.json", encodeRecordingMetadata(sidecar()).value());
    const auto first = std::make_shared<const PixelBuffer>(1, 1);
    const auto third = std::make_shared<const PixelBuffer>(2, 2);
    EditProject project;
    loadRecordingMetadata(project, take.path(), [&](const std::filesystem::path& path) {
        if (path.filename() == "cursor_0.png") {
            return first;
        }
        return path.filename() == "cursor_2.png" ? third : nullptr;
    });
    EXPECT_EQ(project.cursorImages, (std::vector<PixelBufferPtr>{first, third}));
}

TEST(LoadRecordingMetadata, withoutASidecarTheEditStandsWithoutCursorData) {
    const TemporaryFolder take;
    writeFile(take / "project.json", encodeEditProject(sample()).value());
    bool asked = false;
    const EditProject project = loadTake(take.path(), [&](const std::filesystem::path&) {
        asked = true;
        return PixelBufferPtr{};
    });
    EXPECT_EQ(project, sample());
    EXPECT_FALSE(asked);
    writeFile(take / "metadata.json", "[]");
    EXPECT_EQ(loadTake(take.path(), noImage), sample());
}

TEST(LoadRecordingMetadata, renamingTheFolderChangesNothingInside) {
    const TemporaryFolder library;
    const auto before = library / "a";
    writeFile(before / "project.json", encodeEditProject(sample()).value());
    writeFile(before / "metadata.json", encodeRecordingMetadata(sidecar()).value());
    const EditProject project = loadTake(before, noImage);
    std::filesystem::rename(before, library / "b");
    EXPECT_EQ(loadTake(library / "b", noImage), project);
}

TEST(SaveProject, leavesNoOtherFileBehindAndFailsIntoAMissingFolder) {
    const TemporaryFolder take;
    EXPECT_TRUE(saveProject(sample(), take.path()));
    EXPECT_TRUE(saveProject(sample(), take.path()));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(take.path()), {}), 1);
    EXPECT_FALSE(saveProject(sample(), take / "gone"));
}

TEST(SaveProject, aNumberThatIsNotFiniteLeavesTheFileAsItWas) {
    const TemporaryFolder take;
    ASSERT_TRUE(saveProject(sample(), take.path()));
    EditProject broken = sample();
    broken.appearanceSettings.padding = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(saveProject(broken, take.path()));
    EXPECT_EQ(openProject(take.path()), sample());
}

} // namespace
} // namespace tavi
