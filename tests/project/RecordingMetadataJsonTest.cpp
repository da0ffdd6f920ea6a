#include "project/RecordingMetadataJson.h"

#include <gtest/gtest.h>

#include <random>

namespace tavi {
namespace {

const std::string kFiveKeys = R"({"startDate":789003250.25,"duration":6,"screenWidth":640,)"
                              R"("screenHeight":360,"cursorEvents":[]})";

RecordingMetadata sample() {
    RecordingMetadata metadata;
    metadata.startDate = Date{789003250.25};
    metadata.duration = 6.5;
    metadata.screenWidth = 640;
    metadata.screenHeight = 360;
    metadata.cursorEvents.resize(2);
    metadata.cursorEvents[1].eventType = CursorEventType::keyDown;
    metadata.cursorEvents[1].keyCharacter = "a";
    metadata.cursorEvents[1].keyModifiers = 0x100000;
    metadata.cursorImageInfos = {{1, 2, 24, 24}};
    metadata.hasAudioRecording = true;
    metadata.cameraStartDelay = 0.125;
    return metadata;
}

TEST(RecordingMetadataJson, isOneCompactLineWithKeysInFieldOrder) {
    RecordingMetadata metadata = sample();
    metadata.cursorEvents.clear();
    EXPECT_EQ(encodeRecordingMetadata(metadata).value(),
              R"({"startDate":789003250.25,"duration":6.5,"screenWidth":640,"screenHeight":360,)"
              R"("cursorEvents":[],"cursorImageInfos":[{"hotspotX":1,"hotspotY":2,"width":24,)"
              R"("height":24}],"hasCameraRecording":false,"hasAudioRecording":true,)"
              R"("cameraStartDelay":0.125})");
}

TEST(RecordingMetadataJson, readsBackWhatItWrote) {
    EXPECT_EQ(decodeRecordingMetadata(encodeRecordingMetadata(sample()).value()).value(), sample());
}

TEST(RecordingMetadataJson, anOlderSidecarWithTheFiveRequiredKeysDecodes) {
    const auto metadata = decodeRecordingMetadata(kFiveKeys);
    ASSERT_TRUE(metadata);
    EXPECT_TRUE(metadata->cursorImageInfos.empty());
    EXPECT_FALSE(metadata->hasCameraRecording);
    EXPECT_FALSE(metadata->hasAudioRecording);
    EXPECT_EQ(metadata->cameraStartDelay, 0);
}

TEST(RecordingMetadataJson, aDateAsTextFails) {
    std::string json = kFiveKeys;
    json.replace(json.find("789003250.25"), 12, R"("2026-01-01T00:00:00Z")");
    const auto metadata = decodeRecordingMetadata(json);
    ASSERT_FALSE(metadata);
    EXPECT_EQ(metadata.error().kind, JsonError::Kind::wrongType);
    EXPECT_EQ(metadata.error().detail, "startDate");
}

TEST(RecordingMetadataJson, eachRequiredKeyIsRequired) {
    for (const char* key :
         {"startDate", "duration", "screenWidth", "screenHeight", "cursorEvents"}) {
        std::string json = kFiveKeys;
        json.replace(json.find(key), 1, "X");
        const auto metadata = decodeRecordingMetadata(json);
        ASSERT_FALSE(metadata) << key;
        EXPECT_EQ(metadata.error().detail, key);
    }
}

TEST(RecordingMetadataJson, oneBadEventFailsTheWhole) {
    RecordingMetadata metadata = sample();
    std::string json = encodeRecordingMetadata(metadata).value();
    json.replace(json.find("\"move\""), 6, "\"swim\"");
    EXPECT_FALSE(decodeRecordingMetadata(json));
    EXPECT_FALSE(MetadataDecoder().decodeSummary(json));
}

TEST(RecordingMetadataJson, aSummaryIsTheDateAndDurationOfTheWhole) {
    MetadataDecoder decoder;
    const std::string json = encodeRecordingMetadata(sample()).value();
    for (int i = 0; i < 3; ++i) {
        const auto summary = decoder.decodeSummary(json);
        ASSERT_TRUE(summary);
        EXPECT_EQ(summary->startDate, sample().startDate);
        EXPECT_EQ(summary->duration, 6.5);
    }
}

TEST(RecordingMetadataJson, aNumberThatIsNotFiniteFailsTheEncode) {
    RecordingMetadata metadata = sample();
    metadata.cursorEvents[0].x = std::numeric_limits<double>::infinity();
    const auto json = encodeRecordingMetadata(metadata);
    ASSERT_FALSE(json);
    EXPECT_EQ(json.error().detail, "x");
}

class BrokenJson : public testing::TestWithParam<std::string> {};

TEST_P(BrokenJson, endsInATypedError) {
    const auto metadata = decodeRecordingMetadata(GetParam());
    ASSERT_FALSE(metadata);
    EXPECT_FALSE(metadata.error().description().empty());
}

std::string nested(std::size_t depth) {
    return R"({"cursorEvents":)" + std::string(depth, '[') + std::string(depth, ']') + "}";
}

INSTANTIATE_TEST_SUITE_P(Texts, BrokenJson,
                         testing::Values("", " ", "{", "[]", "null", "5", "\"text\"", "{}", "{]",
                                         "\xff\xfe", "{\"startDate\":\"\xc3\x28\"}",
                                         kFiveKeys + "x", kFiveKeys + kFiveKeys,
                                         R"({"startDate":NaN})", R"({"startDate":01})",
                                         R"({"startDate":1e999})", "{'startDate':1}", nested(5000),
                                         nested(1'000'000), std::string(1000, '\0'),
                                         R"({"startDate":"\ud800"})"));

TEST(RecordingMetadataJson, everyTruncationOfAFileEndsInATypedError) {
    const std::string json = encodeRecordingMetadata(sample()).value();
    for (std::size_t length = 0; length < json.size(); ++length) {
        EXPECT_FALSE(decodeRecordingMetadata(json.substr(0, length))) << length;
    }
}

TEST(RecordingMetadataJson, randomDamageNeverCrashes) {
    const std::string json = encodeRecordingMetadata(sample()).value();
    std::mt19937 random(7);
    int decoded = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::string damaged = json;
        damaged[random() % damaged.size()] = static_cast<char>(random());
        decoded += decodeRecordingMetadata(damaged).has_value();
    }
    EXPECT_GT(decoded, 0);
    EXPECT_LT(decoded, 20'000);
}

TEST(RecordingMetadataJson, aFileOfTwoHundredMegabytesIsReadOrRefused) {
    std::string json =
        R"({"startDate":1,"duration":6,"screenWidth":6,"screenHeight":3,"cursorEvents":[)";
    const std::string event =
        R"({"timestamp":1.0,"x":2.0,"y":3.0,"eventType":"move","cursorImageId":0})";
    json.reserve(std::size_t{200} << 20);
    json += event;
    while (json.size() < (std::size_t{200} << 20) - 1000) {
        json += ",";
        json += event;
    }
    json += "]";
    EXPECT_FALSE(MetadataDecoder().decodeSummary(json)) << "the closing brace is missing";
    json += "}";
    EXPECT_TRUE(MetadataDecoder().decodeSummary(json));
}

} // namespace
} // namespace tavi
