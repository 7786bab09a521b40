#include "base/SystemLog.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace sonotrace {
namespace {

TEST(SystemLog, DropsAndCountsLinesThatNobodyReadsAndWaitsForNobody) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
    const int terminal = dup(STDERR_FILENO);
    dup2(pipe[1], STDERR_FILENO);
    std::string read(1 << 20, '\0');
    const auto drain = [&] {
        const ssize_t count = ::read(pipe[0], read.data(), read.size());
        return read.substr(0, static_cast<std::size_t>(count));
    };
    for (int line = 0; line < 100000; ++line) // more than the pipe holds
        systemLog("line %d", line);
    EXPECT_TRUE(drain().starts_with("line 0\nline 1\n"));
    const auto dropped = droppedLogLines();
    EXPECT_GT(dropped, 1000U);
    systemLog("read again");
    systemLog("and again");
    EXPECT_EQ(drain(),
              std::to_string(dropped) + " log lines were dropped, nobody read them\nread again\nand again\n");
    struct stat log {};
    fstat(pipe[1], &log);
    const std::string journal = std::to_string(log.st_dev) + ":" + std::to_string(log.st_ino);
    for (const auto& [stream, line] : {std::pair(journal, "<7>often\n"), {journal + "1", "often\n"}}) {
        setenv("JOURNAL_STREAM", stream.c_str(), 1);
        frequentLog("often");
        EXPECT_EQ(drain(), line);
    }
    unsetenv("JOURNAL_STREAM");
    dup2(terminal, STDERR_FILENO);
    for (const int descriptor : {pipe[0], pipe[1], terminal})
        close(descriptor);
}

} // namespace
} // namespace sonotrace
