#include "widgets/ReportPicture.h"

#include "widgets/Paper.h"
#include "widgets/ReportBlock.h"

#include <QBuffer>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <QPdfWriter>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonotrace {

namespace {

constexpr double kTitleSize = 1.4; // of a text
constexpr int kMargin = 20;
constexpr QSize kUsualPage(1280, 720);
constexpr double kSmallestScale = 0.75; // of a page as it is asked for,
constexpr double kLeastScale = 0.5;     // and where much has to stand on it
constexpr double kStep = 0.95;          // from one try of a scale to the next
constexpr double kPointsPerInch = 96.0;
constexpr double kA4Scale = 300.0 / kPointsPerInch;
constexpr int kPaperResolution = 1200; // dots an inch: lines are rounded to them
constexpr int kPngQuality = 75;        ///< twice as fast to write as the smallest file, and a fifth larger
constexpr int kMostPixels = 32767;     // each way, that a painter can reach

QFont titleFont(QFont font) {
    font.setPixelSize(static_cast<int>(kTitleSize * kPageTextSize));
    font.setBold(true);
    return font;
}

int headHeight() {
    return QFontMetrics(titleFont(pageFont(false))).height() + metricsOfPage().height() + kPageGap;
}

std::vector<Reading> asReadings(const std::vector<Setting>& settings) {
    std::vector<Reading> readings;
    readings.reserve(settings.size());
    for (const Setting& setting : settings)
        readings.push_back({QString::fromStdString(setting.name), QString::fromStdString(setting.value), {}});
    return readings;
}

/// The same at every scale, as all measures of the layout.
int rulerPoints(RulerSide side) {
    return static_cast<int>(std::ceil(rulerDepth(side, pageFont(false))));
}

/// Room that the rulers take at the sides of a face.
QMargins rulerMargins(const ReportPlot& plot) {
    QMargins margins;
    for (const RulerSide side : plot.sides()) {
        const int depth = rulerPoints(side);
        if (side == RulerSide::Left)
            margins.setLeft(depth);
        else if (side == RulerSide::Right)
            margins.setRight(depth);
        else
            margins.setBottom(depth);
    }
    margins.setRight(margins.right() + plot.stripWidth());
    return margins;
}

/// Without the blanks that keep a number in its place on the screen.
std::vector<Reading> withoutPadding(std::vector<Reading> readings) {
    for (Reading& reading : readings)
        reading.value.remove(QChar(0x2007)); // figure space
    return readings;
}

} // namespace

/// Places on a page, in points.
struct ReportPicture::Layout {
    QSize page;
    double scale = 1; ///< pixels a point
    QRect head;
    QRect face;
    QRect settings;
    QRect readings;
    bool isWhole = false; ///< nothing is cut
};

PageSize PageSize::ofPixels(const QSize& pixels) {
    const double scale = std::min(static_cast<double>(pixels.width()) / kUsualPage.width(),
                                  static_cast<double>(pixels.height()) / kUsualPage.height());
    const double taken = std::max(scale, kSmallestScale);
    return {pixels, taken, std::min(taken, std::max(kLeastScale, taken / 2.0)), false};
}

PageSize PageSize::a4() {
    return {QSize(3508, 2480), kA4Scale, kA4Scale / 2.0, false};
}

ReportPicture::ReportPicture(ReportContent content, std::unique_ptr<ReportPlot> plot)
    : content_(std::move(content)),
      settings_(asReadings(content_.settings)),
      readings_(withoutPadding(content_.readings)),
      plot_(std::move(plot)) {}

int ReportPicture::textHeight(int width) const {
    return blockHeight(settings_, width, content_.group) + blockHeight(readings_, width, content_.group);
}

PageSize ReportPicture::around(const QSize& face, double scale) const {
    const QMargins rulers = rulerMargins(*plot_);
    const int inner = face.width() + rulers.left() + rulers.right();
    const QSize points(inner + 2 * kMargin, 2 * kMargin + headHeight() + face.height() + rulers.top() +
                                                rulers.bottom() + textHeight(inner));
    return {(QSizeF(points) * scale).toSize(), scale, scale, true};
}

ReportPicture::Layout ReportPicture::layOut(const PageSize& page, double scale) const {
    Layout layout;
    layout.scale = scale;
    const QSize points = (QSizeF(page.pixels) / scale).toSize();
    layout.page = points;
    const QRect inner = QRect(QPoint(0, 0), points).adjusted(kMargin, kMargin, -kMargin, -kMargin);
    const int settings = blockHeight(settings_, inner.width(), content_.group);
    const int text = textHeight(inner.width());
    layout.head = QRect(inner.topLeft(), QSize(inner.width(), headHeight()));
    const QRect below = inner.adjusted(0, layout.head.height(), 0, 0);
    const QMargins rulers = rulerMargins(*plot_);
    const QSize room = QRect(below).marginsRemoved(rulers).size() - QSize(0, text);
    const QSize least = plot_->least();
    layout.isWhole = room.width() >= least.width() && room.height() >= least.height();
    // What has no room at all goes over the page's lower edge.
    const int atLeast = page.isExact ? 1 : std::max(1, std::min(least.height(), below.height() / 2));
    const int height = std::max(room.height(), atLeast);
    layout.face =
        QRect(below.left() + rulers.left(), below.top() + rulers.top(), std::max(room.width(), 1), height);
    layout.settings =
        QRect(inner.left(), layout.face.bottom() + 1 + rulers.bottom(), inner.width(), settings);
    layout.readings = QRect(inner.left(), layout.settings.bottom() + 1, inner.width(), text - settings);
    return layout;
}

ReportPicture::Layout ReportPicture::fitted(const PageSize& page) const {
    double scale = page.scale;
    Layout layout = layOut(page, scale);
    while (!layout.isWhole && scale * kStep >= page.leastScale) {
        scale *= kStep;
        layout = layOut(page, scale);
    }
    return layout;
}

QImage ReportPicture::image(const PageSize& page) const {
    if (page.pixels.isEmpty() || page.pixels.width() > kMostPixels || page.pixels.height() > kMostPixels)
        return {};
    QImage image(page.pixels, QImage::Format_RGB32);
    if (image.isNull())
        return {};
    const int dotsPerMetre = qRound(page.scale * kPointsPerInch / 0.0254);
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    image.setText("Title", content_.title);
    image.setText("Software", QString::fromStdString(content_.origin.program));
    image.setText("Source", QString::fromStdString(content_.origin.source));
    image.setText("Creation Time", QString::fromStdString(content_.origin.time));
    image.fill(Qt::white);
    const Layout layout = fitted(page);
    QPainter painter(&image);
    painter.scale(layout.scale, layout.scale);
    paint(painter, layout);
    return image;
}

QByteArray pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return !image.isNull() && image.save(&buffer, "PNG", kPngQuality) ? bytes : QByteArray();
}

QByteArray ReportPicture::png(const PageSize& page) const {
    return pngOf(image(page));
}

QByteArray ReportPicture::pdf(const PageSize& page) const {
    if (page.pixels.isEmpty() || page.pixels.width() > kMostPixels || page.pixels.height() > kMostPixels)
        return {};
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(content_.title);
    writer.setCreator(QString::fromStdString(content_.origin.program));
    writer.setResolution(kPaperResolution);
    const QSizeF inches = QSizeF(page.pixels) / page.scale / kPointsPerInch;
    writer.setPageSize(QPageSize(inches, QPageSize::Inch, content_.title, QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    const Layout layout = fitted(page);
    QPainter painter;
    if (!painter.begin(&writer))
        return {};
    const double dots = kPaperResolution * inches.width() * layout.scale / page.pixels.width();
    painter.scale(dots, dots);
    paint(painter, layout);
    return painter.end() ? bytes : QByteArray();
}

void ReportPicture::paint(QPainter& painter, const Layout& layout) const {
    painter.setFont(pageFont(layout.scale == 1.0));
    paintHead(painter, layout);
    paintPlot(painter, layout);
    paintBlock(painter, "Settings", settings_, layout.settings, content_.group);
    paintBlock(painter, "Readings", readings_, layout.readings, content_.group);
}

void ReportPicture::paintHead(QPainter& painter, const Layout& layout) const {
    const QFont font = painter.font();
    const QFontMetrics metrics = metricsOfPage();
    const int titleLine = QFontMetrics(titleFont(font)).height();
    const QRect first(layout.head.topLeft(), QSize(layout.head.width(), titleLine));
    const QRect second(first.left(), first.bottom() + 1, first.width(), metrics.height());
    const QString time = QString::fromStdString(content_.origin.time).replace('T', ' ');
    const QString program = QString::fromStdString(content_.origin.program);
    painter.setPen(kPageInk);
    painter.drawText(first, Qt::AlignRight | Qt::AlignBottom, time);
    painter.setFont(titleFont(font));
    painter.drawText(first, Qt::AlignLeft | Qt::AlignBottom, content_.title);
    painter.setFont(font);
    painter.setPen(kPageQuietInk);
    painter.drawText(second, Qt::AlignRight | Qt::AlignTop, program);
    const int room = second.width() - metrics.horizontalAdvance(program) - 2 * kPageGap;
    painter.drawText(second, Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine,
                     metrics.elidedText(QString::fromStdString(content_.origin.source), Qt::ElideMiddle,
                                        std::max(room, 0)));
}

/// In pixels of its own, as on the screen: what reaches beyond it is cut in the same way, to the last pixel.
void ReportPicture::paintFace(QPainter& painter, const Layout& layout) const {
    const QRect& face = layout.face;
    const QFont font = painter.font(); // a copy: the plot sets others
    painter.save();
    if (isOnPaper(painter)) {
        painter.translate(face.topLeft());
        painter.setClipRect(QRect(QPoint(0, 0), face.size()));
        plot_->paint(painter, font);
    } else {
        const QSizeF pixels = QSizeF(face.size()) * layout.scale;
        QImage image(qCeil(pixels.width()), qCeil(pixels.height()), QImage::Format_RGB32);
        QPainter facePainter(&image);
        facePainter.scale(layout.scale, layout.scale);
        facePainter.setFont(font);
        plot_->paint(facePainter, font);
        facePainter.end();
        painter.resetTransform();
        painter.drawImage((QPointF(face.topLeft()) * layout.scale).toPoint(), image);
    }
    painter.restore();
}

void ReportPicture::paintPlot(QPainter& painter, const Layout& layout) const {
    const QRect& face = layout.face;
    const std::vector<RulerScale> rulers = plot_->build(face.size());
    const auto paintAt = [&painter](const QPoint& corner, const auto& what) {
        painter.save();
        painter.translate(corner);
        what();
        painter.restore();
    };
    const QFont font = painter.font();
    paintFace(painter, layout);
    const int strip = plot_->stripWidth();
    if (strip > 0)
        paintAt(face.topRight() + QPoint(1, 0),
                [&] { plot_->paintStrip(painter, QSize(strip, face.height())); });
    for (const RulerScale& ruler : rulers) {
        const int depth = rulerPoints(ruler.side);
        QPoint corner = face.bottomLeft() + QPoint(0, 1);
        QSize size(face.width(), depth);
        if (ruler.side != RulerSide::Bottom) {
            const bool isLeft = ruler.side == RulerSide::Left;
            corner = isLeft ? face.topLeft() - QPoint(depth, 0) : face.topRight() + QPoint(1 + strip, 0);
            size = QSize(depth, face.height());
        }
        paintAt(corner, [&] {
            painter.setClipRect(QRect(QPoint(0, 0), size)); // as a widget would: ticks end at the face
            RulerPainter(painter, ruler, size, {font, kPageInk, Qt::white}).paint();
        });
    }
}

} // namespace sonotrace
