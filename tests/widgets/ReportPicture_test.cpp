#include "widgets/ReportPicture.h"

#include <QPainter>

#include <gtest/gtest.h>

namespace sonotrace {
namespace {

/// Of one colour that nothing else on the page has, and with all rulers.
class PlainPlot : public ReportPlot {
public:
    QSize least() const override { return {300, 150}; }
    std::vector<RulerSide> sides() const override {
        return {RulerSide::Left, RulerSide::Bottom, RulerSide::Right};
    }
    int stripWidth() const override { return 14; }
    std::vector<RulerScale> build(const QSize&) override {
        return {{.side = RulerSide::Left, .unit = "%", .axis = {-100, 100}},
                {.side = RulerSide::Right, .unit = "dB", .axis = {-100, 0}},
                {.side = RulerSide::Bottom, .unit = "Hz", .axis = {0, 22050}}};
    }
    void paint(QPainter& painter, const QFont&) override {
        painter.fillRect(-1000, -1000, 9000, 9000, QColor(255, 0, 255)); // more than its own
    }
};

ReportContent content(const QString& last) {
    ReportContent content;
    content.title = "Test";
    content.origin = {"Program 1", "2026-01-02T03:04:05Z", "A source"};
    for (int i = 0; i < 14; ++i)
        content.settings.push_back({"Setting " + std::to_string(i), "some value"});
    for (int i = 0; i < 28; ++i)
        content.readings.push_back({QString("Harmonic %1").arg(i), "-100.00 dBFS", {}});
    content.readings.push_back({"Last", last, {}});
    return content;
}

ReportPicture page(const QString& last = "1 dB") {
    return {content(last), std::make_unique<PlainPlot>()};
}

QRect faceOf(const QImage& image) {
    QRect face;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) == qRgb(255, 0, 255))
                face |= QRect(x, y, 1, 1);
    return face;
}

TEST(ReportPicture, HasRoomForAllItsTextsAndAFaceThatCanBeReadAtEverySize) {
    for (const QSize pixels : {QSize(640, 400), QSize(1280, 720), QSize(800, 1200), QSize(3840, 2160)}) {
        const PageSize size = PageSize::ofPixels(pixels);
        const QImage image = page().image(size);
        ASSERT_EQ(image.size(), pixels);
        EXPECT_NE(image, page("7 dB").image(size)) << "the last reading is not on the page";
        const QRect face = faceOf(image);
        EXPECT_GE(face.width(), 300 * size.leastScale) << pixels.width();
        EXPECT_GE(face.height(), 150 * size.leastScale) << pixels.width();
        for (int x = 0; x < image.width(); ++x) // nothing runs into the margins
            ASSERT_EQ(image.pixel(x, 2) & image.pixel(x, image.height() - 3), qRgb(255, 255, 255));
    }
}

TEST(ReportPicture, HasAFaceOfAsManyPointsAsTheScreen) {
    const ReportPicture picture = page();
    EXPECT_EQ(faceOf(picture.image(picture.around({500, 123}, 1.0))).size(), QSize(500, 123));
    EXPECT_EQ(faceOf(picture.image(picture.around({500, 123}, 2.0))).size(), QSize(1000, 246));
}

TEST(ReportPicture, IsNothingWhereNothingCanBePainted) {
    for (const QSize pixels : {QSize(0, 0), QSize(-5, 100), QSize(100, 40000)}) {
        EXPECT_TRUE(page().png(PageSize::ofPixels(pixels)).isEmpty());
        EXPECT_TRUE(page().pdf(PageSize::ofPixels(pixels)).isEmpty());
    }
    EXPECT_FALSE(page().png(PageSize::ofPixels({1, 1})).isEmpty());
}

TEST(ReportPicture, IsOnPaperOfTheRightSizeWithItsFontsAndNoPixels) {
    const QByteArray pdf = page().pdf(PageSize::a4());
    EXPECT_TRUE(pdf.startsWith("%PDF-"));
    EXPECT_TRUE(pdf.contains("/MediaBox [0 0 842 595]") ||
                pdf.contains("/MediaBox [0 0 842.000000 595.000000]"))
        << pdf.mid(pdf.indexOf("/MediaBox"), 60).toStdString();
    EXPECT_TRUE(pdf.contains("/FontFile"));
    EXPECT_FALSE(pdf.contains("/Subtype /Image"));
}

} // namespace
} // namespace sonotrace
