#include "support/PrivateServer.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace sonotrace {
namespace {

TEST(Program, PlaysRecordsAndListensWithEveryWindowOpen) {
    const PrivateServer server;
    const std::string folder = server.folder() / "pictures";
    const std::string command = "QT_QPA_PLATFORM=offscreen " SONOTRACE_PROGRAM " --audio pulse --pictures ";
    EXPECT_EQ(std::system((command + folder).c_str()), 0); // also what a sanitizer has to say
    EXPECT_GT(std::filesystem::file_size(folder + "/tone.wav"), 50000U);
    for (const char* window : {"Generator", "Sweep", "Spectrum", "Waterfall", "Scope"})
        EXPECT_TRUE(std::filesystem::exists(folder + "/" + window + "Window.png")) << window;
}

} // namespace
} // namespace sonotrace
