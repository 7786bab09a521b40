#include "end_to_end/EndToEnd.h"
#include "support/ToolWindow.h"

#include <gtest/gtest.h>

namespace sonotrace {
namespace {

class GeneratorEndToEnd : public OnEachServer {
protected:
    GeneratorEndToEnd() {
        writePreferences("Freq0=997\nVolL0=1\nVolR0=0.5\nEnabled0=1\n"
                         "Freq1=333\nVolL1=1\nGenType1=2\nEnabled1=1\n"
                         "Freq2=50\nVolR2=1\nGenType2=5\nEnabled2=1\n"
                         "Freq3=50\nVolR3=1\nGenType3=7\nEnabled3=1\n");
    }
};

TEST_P(GeneratorEndToEnd, WhatTheSinkGetsIsWhatIsRenderedAndTheBankIsStoredOnTerm) {
    const Monitor monitor("speaker.monitor", path("heard"));
    ASSERT_TRUE(waitFor([&] { return !monitor.heard().empty(); }));
    Program program({"--audio", "pulse"});
    ASSERT_TRUE(waitFor([&] { return monitor.soundingFrames() > 120000; }, 20));
    EXPECT_TRUE(program.quit());
    RenderBench bench;
    bench.set(0, {997, 0, 1, 0.5, 0, 1});
    bench.set(1, {333, 0, 1, 0, 2, 1});
    bench.set(2, {50, 0, 0, 1, 5, 1});
    bench.set(3, {50, 0, 0, 1, 7, 1});
    EXPECT_GT(longestMatch(bench.render(40), monitor.heard()), std::size_t{2} * 110000);
    EXPECT_TRUE(program.output().endsWith("applicationWillTerminate\n"));
    const Preferences stored;
    EXPECT_EQ(stored.floatValue("Freq1"), 333.0F);
    EXPECT_EQ(stored.integerValue("GenType2"), 5);
}

INSTANTIATE_TEST_SUITE_P(Servers, GeneratorEndToEnd, kServers, serverName);

class ServerTrouble : public GeneratorEndToEnd {};
INSTANTIATE_TEST_SUITE_P(Servers, ServerTrouble, testing::Values(PrivateServer::Kind::PulseAudio),
                         serverName);

TEST_P(ServerTrouble, WithoutAServerTheLoopbackPlays) {
    server_.stop();
    Program program;
    EXPECT_TRUE(waitFor([&] {
        return program.output().contains("Device: Built-in Loopback id 1 UID: loopback\n");
    })) << program.output().toStdString();
    EXPECT_TRUE(program.output().contains("No sound server answers: using the built-in loopback\n"));
    EXPECT_TRUE(program.quit());
}

TEST_P(ServerTrouble, FewDescriptorsOrNoneAtTheStartAreSurvived) {
    for (const char* trouble : {"exec <&- >&- 2>&-", "ulimit -n 26"}) {
        QProcess shell;
        shell.start("sh", {"-c", QString("%1; exec %2 --audio pulse").arg(trouble, SONOTRACE_PROGRAM)});
        EXPECT_FALSE(shell.waitForFinished(1500)) << trouble;
        shell.terminate();
        EXPECT_TRUE(shell.waitForFinished(5000)) << trouble;
        EXPECT_EQ(std::pair(shell.exitStatus(), shell.exitCode()), std::pair(QProcess::NormalExit, 0))
            << trouble;
    }
}

TEST(CommandLine, WhatNeedsNoWindowNeedsNoDisplay) {
    const auto run = [](const char* line) {
        QProcess process;
        process.setEnvironment({"XDG_RUNTIME_DIR=/nowhere"});
        process.start(SONOTRACE_PROGRAM, QString(line).split(' '));
        EXPECT_TRUE(process.waitForFinished()) << line;
        return std::tuple(process.exitCode(), process.readAllStandardError().count("sonotrace: "),
                          process.readAllStandardOutput().count("onotrace") > 0);
    };
    for (const char* wrong :
         {"--audio tape", "--no-such-option", "/dev/null /dev/null", "--audio", "/no/such/file"})
        EXPECT_EQ(run(wrong), std::tuple(2, 1, false)) << wrong;
    for (const char* right : {"--help", "--version"})
        EXPECT_EQ(run(right), std::tuple(0, 0, true)) << right;
}

} // namespace
} // namespace sonotrace
