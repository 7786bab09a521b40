#include "generator/WavRecorder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace sonotrace {
namespace {

std::vector<unsigned char> bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::uint32_t number(const std::vector<unsigned char>& bytes, std::size_t at, std::size_t size = 4) {
    std::uint32_t value = 0;
    for (std::size_t i = size; i-- > 0;)
        value = value << 8U | bytes.at(at + i);
    return value;
}

class WavRecorderTest : public testing::Test {
protected:
    WavRecorderTest() : folder_(std::filesystem::temp_directory_path() / ("wav" + std::to_string(getpid()))) {
        std::filesystem::create_directories(folder_);
    }
    ~WavRecorderTest() override { std::filesystem::remove_all(folder_); }

    /// Taps `frames` frames of a counter, 5000 at a time as the render does.
    void play(std::size_t frames) {
        for (std::size_t done = 0; done < frames;) {
            const std::size_t count = std::min<std::size_t>(5000, frames - done);
            std::vector<std::int16_t> buffer(2 * count);
            for (std::size_t i = 0; i < count; ++i, ++frame_)
                std::memcpy(&buffer[2 * i], &frame_, 4);
            recorder_.tap(buffer);
            done += count;
        }
    }

    const std::filesystem::path folder_;
    WavRecorder recorder_;
    std::uint32_t frame_ = 0;
};

TEST_F(WavRecorderTest, WritesTheHeaderAndTheSamplesAcrossTheRingsEnd) {
    play(1000); // not recording: not kept
    ASSERT_TRUE(recorder_.start(folder_ / "a.wav"));
    for (int i = 0; i < 30; ++i) { // 660,000 frames: the ring's 250,000 are gone around twice
        play(22000);
        ASSERT_TRUE(recorder_.flush());
    }
    play(7);
    EXPECT_TRUE(recorder_.stop());
    const auto bytes = bytesOf(folder_ / "a.wav");
    const std::uint32_t dataBytes = 660007 * 4;
    ASSERT_EQ(bytes.size(), 44 + dataBytes);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "RIFF");
    EXPECT_EQ(std::string(bytes.begin() + 8, bytes.begin() + 16), "WAVEfmt ");
    EXPECT_EQ(std::string(bytes.begin() + 36, bytes.begin() + 40), "data");
    const std::tuple<std::size_t, std::size_t, std::uint32_t> fields[] = {
        {4, 4, dataBytes + 36}, {16, 4, 16}, {20, 2, 1},  {22, 2, 2},        {24, 4, 44100},
        {28, 4, 176400},        {32, 2, 4},  {34, 2, 16}, {40, 4, dataBytes}};
    for (const auto& [at, size, value] : fields)
        EXPECT_EQ(number(bytes, at, size), value) << "at " << at;
    for (std::uint32_t i = 0; i < 660007; ++i)
        ASSERT_EQ(number(bytes, 44 + 4 * i), 1000 + i);
}

TEST_F(WavRecorderTest, ASecondRecordingsHeaderCountsTheFirst) {
    ASSERT_TRUE(recorder_.start(folder_ / "a.wav"));
    EXPECT_TRUE(recorder_.stop());
    EXPECT_EQ(bytesOf(folder_ / "a.wav").size(), 44U);
    EXPECT_EQ(number(bytesOf(folder_ / "a.wav"), 4), 36U);
    EXPECT_EQ(number(bytesOf(folder_ / "a.wav"), 40), 0U);
    recorder_.start(folder_ / "b.wav");
    play(5000);
    recorder_.stop();
    recorder_.start(folder_ / "c.wav");
    play(10000);
    recorder_.flush();
    EXPECT_EQ(number(bytesOf(folder_ / "c.wav"), 40), 20000U) << "the header as written at the start";
    EXPECT_DOUBLE_EQ(recorder_.seconds(), 10000 / 44100.0);
    recorder_.stop();
    EXPECT_EQ(number(bytesOf(folder_ / "c.wav"), 40), 60000U);
    EXPECT_EQ(bytesOf(folder_ / "c.wav").size(), 44U + 40000U);
}

TEST_F(WavRecorderTest, SaysWhatItCannotWriteAndGoesOn) {
    EXPECT_FALSE(recorder_.start(folder_ / "no such folder" / "a.wav"));
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(recorder_.start(folder_ / "pipe")) << "without waiting for a reader";
    EXPECT_FALSE(recorder_.isRecording());
    play(5000);
    EXPECT_TRUE(recorder_.flush());
    EXPECT_TRUE(recorder_.stop());
    EXPECT_EQ(recorder_.recordedBytes(), 0U);
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "no device that is always full";
    ASSERT_TRUE(recorder_.start("/dev/full"));
    play(20000);
    EXPECT_FALSE(recorder_.flush());
    EXPECT_TRUE(recorder_.isRecording());
    EXPECT_FALSE(recorder_.stop());
    EXPECT_FALSE(recorder_.isRecording());
}

TEST(WavHeader, KnowsOtherRatesAndSampleSizes) {
    const auto field = [](int channels, int selector, int bits, std::size_t at) {
        const auto header = wavHeader(channels, selector, bits, 0);
        std::uint32_t value = 0;
        std::memcpy(&value, &header[at], 4);
        return value;
    };
    EXPECT_EQ(field(2, 0, 16, 24), 11025U);
    EXPECT_EQ(field(2, 1, 16, 24), 22050U);
    EXPECT_EQ(field(2, 7, 16, 24), 44100U);
    EXPECT_EQ(field(1, 2, 16, 28), 88200U);
    EXPECT_EQ(field(2, 2, 8, 28), 88200U); // doubled for 16 bits only
}

} // namespace
} // namespace sonotrace
