#include "avstack/AVConfiguration.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

TEST(AVConfiguration, TakesTheAudioTypeFirstAndNoneForThoseLeftOut) {
    const AVConfiguration both(AudioPipelineType::MicInject, InputPipelineType::Generic);
    EXPECT_EQ(AVConfiguration::PipelineTypeToString(both.inputPipelineType),
              "input_pipeline:generic");
    EXPECT_EQ(AVConfiguration(AudioPipelineType::MicInject).inputPipelineType, InputPipelineType{});
    EXPECT_EQ(AVConfiguration().audioPipelineType, AudioPipelineType{});
}

TEST(AVConfiguration, NamesEachTypeByItsNumber) {
    const char* const audio[] = {"",
                                 "audio_pipeline:low_latency",
                                 "audio_pipeline:mic_inject",
                                 "audio_pipeline:sync_to_video",
                                 "audio_pipeline:karaoke",
                                 ""};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(AVConfiguration::PipelineTypeToString(AudioPipelineType(i)), audio[i]);
    const char* const input[] = {"", "input_pipeline:hid", "input_pipeline:generic", ""};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(AVConfiguration::PipelineTypeToString(InputPipelineType(i)), input[i]);
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

} // namespace
} // namespace orbelantine
