#include "scope/ScopeView.h"

#include <QImage>

#include <gtest/gtest.h>

#include <cmath>

namespace sonotrace {
namespace {

/// How many pixels are clearly lit in a picture, but in the other neither there nor beside. (In the left
/// half: on the right they are not quite at the same place.)
int missing(const QImage& picture, const QImage& other) {
    int count = 0;
    for (int x = 1; x < picture.width() / 2; ++x) {
        for (int y = 1; y < picture.height() - 1; ++y) {
            int k = 0;
            while (k < 9 && qGreen(other.pixel(x + k % 3 - 1, y + k / 3 - 1)) < 5)
                ++k;
            count += k == 9 && qGreen(picture.pixel(x, y)) > 25 ? 1 : 0;
        }
    }
    return count;
}

TEST(ScopeColumns, LookLikeTheLineThatIsPaintedOfFewerSamples) {
    ScopeControls controls{.offset = {40, -15}, .invert = {true, true}}; // cut off above
    ScopeCapture capture(controls, [] {});
    std::vector<std::int16_t> signal;
    for (int i = 0; i < 11025; ++i) {
        signal.push_back(static_cast<std::int16_t>(20000 * std::sin(i * 0.05)));
        signal.push_back(i % 50 < 25 ? 0 : std::sin(i * 1.28) < 0 ? -32767 : 32767);
    }
    capture.capture(signal);
    capture.capture(signal);
    ScopeView view;
    view.resize(500, 200);
    view.setModel(controls, capture);
    for (const int scale : {1, 2}) {
        QImage pictures[2];
        for (QImage& picture : pictures) {
            controls.sweep = &picture == pictures ? 1000 : 1001;
            picture = QImage(view.size() * scale, QImage::Format_RGB32);
            picture.setDevicePixelRatio(scale);
            view.render(&picture);
        }
        EXPECT_NE(pictures[0], pictures[1]);
        EXPECT_EQ(missing(pictures[0], pictures[1]) + missing(pictures[1], pictures[0]), 0);
        for (QImage& picture : pictures)
            picture = picture.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        EXPECT_NEAR(qGreen(pictures[0].pixel(0, 0)), qGreen(pictures[1].pixel(0, 0)), 1);
    }
}

} // namespace
} // namespace sonotrace
