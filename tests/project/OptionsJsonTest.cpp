#include "project/OptionsJson.h"

#include "project/ZoomKeyframe.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

template<typename T>
std::string encoded(const T& value) {
    JsonWriter json;
    write(json, value);
    return json.finish().value();
}

const std::string kAppearance =
    R"({"backgroundStyle":"blur","solidColor":{"red":0,"green":0,"blue":0,"alpha":1},)"
    R"("gradientPresetIndex":0,"blurRadius":40,"wallpaperPreset":"aurora",)"
    R"("animateBackground":false,"padding":0.03,"cornerRadius":13,"shadowEnabled":false,)"
    R"("shadowRadius":20,"shadowOpacity":0.5})";

const std::string kCamera =
    R"({"enabled":false,"position":"Bottom Right","sizeFraction":0.2,"marginFraction":0.03,)"
    R"("borderWidth":3,"borderColor":{"red":1,"green":1,"blue":1,"alpha":0.9},)"
    R"("shadowEnabled":true,"cornerRadius":1000})";

const std::string kCursor =
    R"({"showCursor":true,"cursorSize":24,"cursorStyle":"Pointer","showClickEffect":false,)"
    R"("smoothingPreset":"Medium","showKeystrokes":false,"keystrokeDisplayDuration":2.5,)"
    R"("keystrokeSize":"M"})";

TEST(OptionsJson, theDefaultsAreWrittenInFieldOrder) {
    EXPECT_EQ(encoded(OutputSettings{}),
              R"({"resolution":[1920,1080],"fps":60,"autoAspectRatio":false})");
    EXPECT_EQ(encoded(CursorSettings{}), kCursor);
    EXPECT_EQ(encoded(AppearanceSettings{}), kAppearance);
    EXPECT_EQ(encoded(CameraSettings{}), kCamera);
    EXPECT_EQ(encoded(AutoZoomSettings{}), R"({"aggressiveness":0.5,"useTemporalDiff":true})");
}

TEST(OptionsJson, anEmptyCursorSettingsDecodesToTheDefaults) {
    EXPECT_EQ(decodeRecord<CursorSettings>("{}").value(), CursorSettings{});
}

TEST(OptionsJson, anEmptyAppearanceFails) {
    EXPECT_FALSE(decodeRecord<AppearanceSettings>("{}"));
    EXPECT_FALSE(decodeRecord<CameraSettings>("{}"));
    EXPECT_FALSE(decodeRecord<AutoZoomSettings>("{}"));
    EXPECT_FALSE(decodeRecord<OutputSettings>("{}"));
}

/// Every key of a record in turn is renamed, so that it is missing.
template<typename T>
void expectEveryKeyRequired(const std::string& json) {
    for (std::size_t at = json.find("\":"); at != std::string::npos;
         at = json.find("\":", at + 1)) {
        std::string damaged = json;
        damaged[at - 1] = '#';
        EXPECT_FALSE(decodeRecord<T>(damaged)) << damaged;
    }
    EXPECT_TRUE(decodeRecord<T>(json));
}

TEST(OptionsJson, everyKeyOfAppearanceCameraAndAutoZoomIsRequired) {
    expectEveryKeyRequired<AppearanceSettings>(kAppearance);
    expectEveryKeyRequired<CameraSettings>(kCamera);
    expectEveryKeyRequired<AutoZoomSettings>(R"({"aggressiveness":0.5,"useTemporalDiff":true})");
}

TEST(OptionsJson, aBackgroundTypeOfAnyKindIsIgnoredAndGoneAfterASave) {
    for (const char* legacy : {R"("blur")", "7", "null", R"({"a":[]})"}) {
        const auto settings =
            decodeRecord<OutputSettings>(std::string(R"({"backgroundType":)") + legacy +
                                         R"(,"resolution":[1280,720],"fps":30})");
        ASSERT_TRUE(settings) << legacy;
        EXPECT_EQ(*settings, (OutputSettings{{1280, 720}, 30, false}));
        EXPECT_EQ(encoded(*settings).find("backgroundType"), std::string::npos);
    }
}

TEST(OptionsJson, wholeNumbersWithAFractionOfZeroAreIntegers) {
    EXPECT_EQ(decodeRecord<OutputSettings>(R"({"resolution":[1,2],"fps":60.0})").value().fps, 60);
    EXPECT_FALSE(decodeRecord<OutputSettings>(R"({"resolution":[1,2],"fps":60.5})"));
    EXPECT_FALSE(decodeRecord<OutputSettings>(R"({"resolution":[1,2],"fps":null})"));
    EXPECT_FALSE(decodeRecord<OutputSettings>(R"({"resolution":[1],"fps":60})"));
    EXPECT_TRUE(decodeRecord<OutputSettings>(R"({"resolution":[1,2,3],"fps":60})"));
}

template<typename Enum>
void expectRawValues(std::initializer_list<const char*> names) {
    int index = 0;
    for (const char* name : names) {
        EXPECT_EQ(fromRawValue<Enum>(name), static_cast<Enum>(index));
        EXPECT_EQ(rawValue(static_cast<Enum>(index)), name);
        ++index;
    }
    EXPECT_EQ(fromRawValue<Enum>("no such value"), std::nullopt);
    EXPECT_EQ(fromRawValue<Enum>(""), std::nullopt);
}

TEST(OptionsJson, rawValuesAreSpelledAsInTheFiles) {
    expectRawValues<CursorStyle>({"Pointer", "Circle", "System"});
    expectRawValues<CursorSmoothingPreset>({"None", "Slow", "Medium", "Fast", "Rapid"});
    expectRawValues<KeystrokeSize>({"S", "M", "L"});
    expectRawValues<BackgroundStyle>(
        {"solidBlack", "solidWhite", "solidCustom", "gradient", "blur", "wallpaper"});
    expectRawValues<WallpaperPreset>({"aurora", "sunset", "ocean", "lavender", "ember", "forest"});
    expectRawValues<CameraPosition>({"Bottom Right", "Bottom Left", "Top Right", "Top Left"});
    expectRawValues<EasingType>({"Linear", "Ease In", "Ease Out", "Ease In-Out", "Spring"});
}

TEST(ResolvedOutputSize, theWidthFollowsTheVideoAndIsEven) {
    EXPECT_EQ(resolvedOutputSize({1920, 1080}, true, {1512, 982}), (Size{1664, 1080}));
    EXPECT_EQ(resolvedOutputSize({1920, 1080}, true, {1000, 501}), (Size{2156, 1080}));
    EXPECT_EQ(resolvedOutputSize({1920, 1080}, true, {1921, 1080}), (Size{1922, 1080}));
}

TEST(ResolvedOutputSize, halvesAreRoundedAwayFromZero) {
    EXPECT_EQ(resolvedOutputSize({0, 5}, true, {5, 10}).width, 4) << "2.5, 3, even 4";
    EXPECT_EQ(resolvedOutputSize({0, 1}, true, {5, 10}).width, 2) << "0.5, 1, even 2";
}

TEST(ResolvedOutputSize, withoutTheOptionOrAVideoItIsTheResolution) {
    EXPECT_EQ(resolvedOutputSize({1280, 720}, false, {1512, 982}), (Size{1280, 720}));
    EXPECT_EQ(resolvedOutputSize({1920, 1080}, true, {0, 0}), (Size{1920, 1080}));
    EXPECT_EQ(resolvedOutputSize({1920, 1080}, true, {-5, 10}), (Size{1920, 1080}));
}

TEST(AspectChoices, areSixteenToNineAndAuto) {
    EXPECT_EQ(kAspectChoices[0].label, "16:9");
    EXPECT_FALSE(kAspectChoices[0].autoAspectRatio);
    EXPECT_EQ(kAspectChoices[1].label, "Auto");
    EXPECT_TRUE(kAspectChoices[1].autoAspectRatio);
}

} // namespace
} // namespace tavi
