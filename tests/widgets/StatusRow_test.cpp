#include "widgets/StatusRow.h"

#include "widgets/InputHints.h"

#include <QImage>

#include <gtest/gtest.h>

namespace sonotrace {
namespace {

using enum Hint::Urgency;
using Phase = QueueState::Phase;

QString said(const Hints& hints) {
    QString text;
    for (const Hint& hint : hints)
        text += hint.text + '|';
    return text;
}

TEST(StatusRow, TheMostUrgentHintIsSeenAndAllCanBeRead) {
    StatusRow row;
    row.say({{Usual, "on Line"}, {Usual, "triggered"}});
    EXPECT_EQ(row.text(), "on Line · triggered");
    row.resize(200, 24);
    const QImage calm = row.grab().toImage();
    row.say({{Usual, "on <b>Line"}, {Warning, "overflow"}, {Progress, "block 3"}, {Warning, "clips"}});
    EXPECT_EQ(row.text(), "overflow");
    EXPECT_EQ(row.accessibleDescription(), "overflow. clips. block 3. on <b>Line");
    EXPECT_TRUE(row.toolTip().contains("&lt;b&gt;Line"));
    row.say({{Warning, "on Line · triggered"}});
    EXPECT_NE(row.grab().toImage(), calm) << "a warning looks like one";
    EXPECT_EQ(row.minimumSizeHint().width(), 0) << "a long text must not widen the window";
}

TEST(InputHints, SayWhatIsSoInWords) {
    QueueState running;
    running.phase = Phase::Running;
    running.deviceName = "Line";
    QueueState moved = running;
    moved.moved = true;
    EXPECT_EQ(streamHint(running, false).urgency, Usual);
    EXPECT_EQ(streamHint(moved, false).urgency, Warning);
    EXPECT_EQ(streamHint(running, true).text, "Samples are lost: Line");
    EXPECT_EQ(streamHint(QueueState(), false).urgency, Fault);

    EXPECT_EQ(said(volumeHints({.slider = 0.5F, .device = {}, .exponent = 3})), "");
    EXPECT_EQ(said(volumeHints({.slider = 0.7F, .device = 0.7F, .exponent = 3})), "");
    EXPECT_EQ(said(volumeHints({.slider = 0.7F, .device = 0.0F, .exponent = 3})),
              "Volume is 0: nothing is heard|");
    EXPECT_EQ(said(volumeHints({.slider = 1.0F, .device = 0.7F, .exponent = 3})),
              "The device stands at 70 % (-9.3 dB), set elsewhere|");

    EXPECT_EQ(said(signalHints({3.9, 3.9, 0.9}, std::nullopt)),
              "The input is at full scale and may clip: lower the level before it|");
    EXPECT_EQ(
        said(signalHints({4.1, 3.9, 1.1}, ChannelFold::Sum)),
        "Left + right overflow: lower the volume or feed one channel|No signal at all: every sample is 0|");

    EXPECT_EQ(waitingTime(3.04) + waitingTime(600) + waitingTime(36000) + waitingTime(864000),
              "3.0 s10 min10 h10 days");
}

} // namespace
} // namespace sonotrace
