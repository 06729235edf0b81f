#include "avstack/AVConfiguration.h"
#include "avstack/InputFormat.h"
#include "core/common/config/KVStore.h"

#include <gtest/gtest.h>

#include <array>

namespace orbelantine {
namespace {

TEST(AVConfiguration, TakesTheAudioTypeFirstAndNamesEachTypeByItsNumber) {
    const char* const audio[] = {"", "low_latency", "mic_inject", "sync_to_video", "karaoke", ""};
    const char* const input[] = {"", "hid", "generic", ""};
    const auto name = [](const std::string& kind, const std::string& type) {
        return type.empty() ? "" : kind + "_pipeline:" + type;
    };
    for (int i = 0; i < 6; ++i) {
        const AVConfiguration made(AudioPipelineType{i}, InputPipelineType{i % 4});
        EXPECT_EQ(AVConfiguration::PipelineTypeToString(made.audioPipelineType),
                  name("audio", audio[i]));
        EXPECT_EQ(AVConfiguration::PipelineTypeToString(made.inputPipelineType),
                  name("input", input[i % 4]));
    }
    EXPECT_EQ(AVConfiguration(AudioPipelineType::MicInject).inputPipelineType, InputPipelineType{});
    EXPECT_EQ(AVConfiguration().audioPipelineType, AudioPipelineType{});
}

TEST(AVConfiguration, KeepsTheSpellingsThatHostsKnow) {
    EXPECT_STREQ(AVConfiguration::AUDIO_SYSTEM_NATIVE_OUTPUT_SAMPLIG_RATE,
                 "audioSystemNativeOutputSamplingRate");
    EXPECT_STREQ(AVConfiguration::DX1_KERNEL_PATH, "dxt1KernelPath");
    EXPECT_STREQ(AVConfiguration::VIDEO_PIPELINE_TYPE_DXT1, "dx1");
    EXPECT_STREQ(AVConfiguration::VIDEO_PIPELINE_ADDITIONAL_LZ4_COMPRESS, "addtionalLz4Compress");
    EXPECT_STREQ(AVConfiguration::VIDEO_PIPELINE_TYPE_DEFAULT, "");
}

TEST(AVConfiguration, TextThatIsReplacedStaysReadableForWhoHasIt) {
    const char* const original = AVConfiguration::RTP_PORT;
    AVConfiguration::replaceText(AVConfiguration::RTP_PORT, std::string("first").c_str());
    const char* const first = AVConfiguration::RTP_PORT;
    AVConfiguration::replaceText(AVConfiguration::RTP_PORT, nullptr);

    EXPECT_STREQ(AVConfiguration::RTP_PORT, "");
    EXPECT_STREQ(first, "first");
    AVConfiguration::replaceText(AVConfiguration::RTP_PORT, original);
    EXPECT_STREQ(AVConfiguration::RTP_PORT, "rtpPort");
}

using Fields = std::array<std::uint32_t, 4>;

Fields fieldsOf(const InputFormat& format) {
    return {format.mouseType, format.keyboardType, format.touchType, format.typeFlags};
}

TEST(InputFormat, KeyboardIsTwoOnlyBesideAMouseAlone) {
    EXPECT_EQ(fieldsOf(InputFormat()), (Fields{0, 0, 0, 0}));
    EXPECT_EQ(fieldsOf(InputFormat(3)), (Fields{3, 2, 0, 0}));
    EXPECT_EQ(fieldsOf(InputFormat(3, 1)), (Fields{3, 1, 0, 0}));
    EXPECT_EQ(fieldsOf(InputFormat(3, 1, 4)), (Fields{3, 1, 4, 0}));
    EXPECT_EQ(fieldsOf(InputFormat(3, 1, 4, 5)), (Fields{3, 1, 4, 5}));
}

TEST(InputFormat, TravelsThroughAStoreThatReadingLeavesAsItWas) {
    KVStore store = InputFormat(1, 2, 3, 0xFFFFFFFF).getAsKVStore();
    EXPECT_EQ(store.getIntAt("mouseType", 99), 1);
    EXPECT_EQ(store.getIntAt("keyboardType", 99), 2);
    EXPECT_EQ(store.getIntAt("touchType", 99), 3);
    EXPECT_EQ(store.getIntAt("typeFlags", 99), -1);
    EXPECT_EQ(fieldsOf(InputFormat(store)), (Fields{1, 2, 3, 0xFFFFFFFF}));
    KVStore none;
    EXPECT_EQ(fieldsOf(InputFormat(none)), (Fields{0, 0, 0, 0}));
    EXPECT_EQ(none.getIntAt("keyboardType", 99), 99);
}

} // namespace
} // namespace orbelantine
