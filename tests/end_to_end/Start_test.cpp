#include "end_to_end/EndToEnd.h"

#include <QDir>
#include <QLocalSocket>
#include <QTemporaryDir>

#include <csignal>

namespace sonotrace {
namespace {

class Start : public testing::Test {
protected:
    Start() {
        qputenv("XDG_CONFIG_HOME", home_.path().toUtf8());
        qputenv("XDG_RUNTIME_DIR", home_.path().toUtf8());
    }

    /// Waits until a program has opened its windows.
    static testing::AssertionResult runs(Program& program) {
        if (waitFor([&] { return program.output().contains("BuildControls"); }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << program.output().toStdString();
    }

    QTemporaryDir home_;
    const QStringList loopback_{"--audio", "loopback"};
};

TEST_F(Start, ASecondOneHandsOverToTheFirstThatAnswers) {
    auto killed = std::make_unique<Program>(loopback_);
    EXPECT_TRUE(runs(*killed));
    killed.reset(); // leaves its socket
    Program first(loopback_);
    EXPECT_TRUE(runs(first));
    const QStringList sockets = QDir(home_.path()).entryList({"sonotrace-*"}, QDir::System);
    ASSERT_EQ(sockets.size(), 1);
    QLocalSocket hostile;
    hostile.connectToServer(home_.filePath(sockets.first()));
    EXPECT_TRUE(hostile.waitForConnected());
    hostile.write(QByteArray(4 << 20, 'x'));
    EXPECT_TRUE(hostile.waitForDisconnected(5000));
    for (int again = 0; again < 9; ++again) { // one more than are served at once
        Program second(loopback_ + QStringList(SONOTRACE_PROGRAM));
        EXPECT_TRUE(second.ends());
        EXPECT_EQ(second.output(), "Sonotrace runs already: its window comes to the front\n");
    }
    EXPECT_TRUE(waitFor([&] { return first.output().contains(SONOTRACE_PROGRAM "\n"); })) << "opened there";
    first.signal(SIGSTOP);
    Program third(loopback_);
    EXPECT_TRUE(runs(third));
    EXPECT_TRUE(third.output().startsWith("Sonotrace runs already and does not answer: "));
    first.signal(SIGCONT);
    EXPECT_TRUE(third.quit());
    EXPECT_TRUE(first.quit());
    qunsetenv("XDG_RUNTIME_DIR");
    Program fourth(loopback_);
    EXPECT_TRUE(runs(fourth));
    EXPECT_TRUE(fourth.quit());
}

} // namespace
} // namespace sonotrace
