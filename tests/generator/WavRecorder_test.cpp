#include "generator/WavRecorder.h"

#include "support/FullDisk.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <semaphore>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace sonotrace {
namespace {

class WavRecorderTest : public testing::Test {
protected:
    WavRecorderTest() { std::filesystem::create_directories(folder_); }
    ~WavRecorderTest() override { std::filesystem::remove_all(folder_); }

    /// Taps `frames` frames of a counter.
    void play(std::size_t frames) {
        std::vector<std::int16_t> buffer(2 * frames);
        for (std::size_t i = 0; i < frames; ++i, ++frame_)
            std::memcpy(&buffer[2 * i], &frame_, 4);
        recorder_.tap(buffer);
    }

    /// How the recording comes out that ends here.
    bool stop() {
        recorder_.stop();
        std::optional<bool> whole;
        for (; !whole; whole = recorder_.outcome()) // the disk takes its time
            std::this_thread::yield();
        return *whole;
    }

    /// The file's header counts `inHeader` frames, and `frames` follow, counted up from `first`.
    void expectFile(const char* name, std::uint32_t inHeader, std::uint32_t first, std::size_t frames) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(file), {});
        ASSERT_EQ(bytes.size(), 44 + 4 * frames) << name;
        EXPECT_EQ(std::memcmp(bytes.data(), wavHeader(2, 2, 16, 4 * inHeader).data(), 44), 0) << name;
        for (std::size_t at = 44; at < bytes.size(); at += 4, ++first)
            ASSERT_EQ(std::memcmp(&bytes[at], &first, 4), 0) << name << " at " << at;
    }

    const std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("wav" + std::to_string(getpid()));
    WavRecorder recorder_;
    std::uint32_t frame_ = 0;
};

TEST_F(WavRecorderTest, WritesWhatIsPlayedAndCountsAllSinceTheProgramStarted) {
    play(1000); // not recording: not kept
    ASSERT_TRUE(recorder_.start(folder_ / "a"));
    for (int i = 0; i < 30; ++i) { // the ring's 250,000 frames are gone around twice
        play(22000);
        ASSERT_TRUE(recorder_.flush());
    }
    play(7);
    EXPECT_TRUE(stop());
    expectFile("a", 660007, 1000, 660007);

    ASSERT_TRUE(recorder_.start(folder_ / "b"));
    play(260000); // with no flush in time: the ring begins to be overwritten
    EXPECT_TRUE(recorder_.flush());
    expectFile("b", 660007, 661007 + 250000, 10000);
    EXPECT_DOUBLE_EQ(recorder_.seconds(), 10000 / 44100.0);
    EXPECT_FALSE(stop());
    EXPECT_EQ(recorder_.lostFrames(), 250000U);
    expectFile("b", 660007 + 10000, 661007 + 250000, 10000);
}

TEST_F(WavRecorderTest, SaysWhatItCannotWriteAndGoesOn) {
    ASSERT_TRUE(recorder_.start(folder_ / "a"));
    EXPECT_FALSE(recorder_.start(folder_ / "no such folder" / "a"));
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(recorder_.start(folder_ / "pipe")) << "without waiting for a reader";
    EXPECT_FALSE(recorder_.isRecording());

    for (const int fault : {0, 1, 2, 3}) { // the disk is full at the start, at the flush, at the stop, never
        setDiskFull(fault == 0);
        EXPECT_TRUE(recorder_.start(folder_ / "a"));
        EXPECT_EQ(recorder_.flush(), fault != 0);
        setDiskFull(fault == 1);
        play(5000);
        EXPECT_EQ(recorder_.flush(), fault > 1);
        setDiskFull(fault == 2);
        EXPECT_EQ(stop(), fault == 3) << fault;
    }
}

TEST(WriterThread, LetsADiskThatStallsWaitAlone) {
    WriterThread writer;
    std::binary_semaphore disk{0};
    std::atomic<int> written{0};
    writer.post([&] { disk.acquire(); });
    writer.post([&] { ++written; });
    EXPECT_FALSE(writer.wait(std::chrono::milliseconds(1)));
    EXPECT_EQ(writer.pending(), 2U);
    disk.release();
    EXPECT_TRUE(writer.wait(std::chrono::seconds(10)));
    EXPECT_EQ(written, 1);
}

TEST(WavHeader, HasTheFieldsOfPcm) {
    const char expected[] =
        "RIFF\x0C\4\0\0WAVEfmt \x10\0\0\0\1\0\2\0\x44\xAC\0\0\x10\xB1\2\0\4\0\x10\0data\xE8\3\0";
    EXPECT_EQ(std::memcmp(wavHeader(2, 2, 16, 1000).data(), expected, 44), 0);
}

} // namespace
} // namespace sonotrace
