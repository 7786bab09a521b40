#include "app/StatusLine.h"

#include "widgets/PlainLabel.h"
#include "widgets/StreamText.h"

#include <QStatusBar>

namespace sonotrace {

namespace {

QLabel* addLabel(QStatusBar& bar, const char* name, const QString& description, int stretch) {
    auto* label = new QLabel(&bar);
    label->setObjectName(name);
    label->setAccessibleName(description);
    label->setToolTip(description);
    // A long name must not widen the window.
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    bar.addPermanentWidget(label, stretch);
    return label;
}

QString minutes(double seconds) {
    const auto whole = static_cast<qint64>(seconds);
    return QString("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QChar('0'));
}

} // namespace

StatusLine::StatusLine(QStatusBar& bar, const QString& soundSystem)
    : QObject(&bar),
      soundSystem_(soundSystem),
      notice_(addLabel(bar, "noticeLabel", "Notices", 3)),
      recording_(addLabel(bar, "recordingLabel", "Recording", 3)),
      output_(addLabel(bar, "outputLabel", "Sound system and output device", 4)) {
    output_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void StatusLine::showOutput(const QueueState& state) {
    showPlainly(*output_, soundSystem_ + ": " + describeStream(state));
}

void StatusLine::showRecording(const QString& file, double seconds) {
    showPlainly(*recording_,
                file.isEmpty() ? QString() : QString("● Recording %1  %2").arg(file, minutes(seconds)));
}

void StatusLine::showNotice(const QString& text) {
    showPlainly(*notice_, text);
}

} // namespace sonotrace
