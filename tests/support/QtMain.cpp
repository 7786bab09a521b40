#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // No display is needed, and none of the user's preferences is touched.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
