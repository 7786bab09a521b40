#include "app/StatusLine.h"

#include "widgets/PlainLabel.h"
#include "widgets/StreamText.h"

#include <QBoxLayout>
#include <QTimer>

namespace sonotrace {

namespace {

QLabel* newLabel(const char* name, const QString& description) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setAccessibleName(description);
    label->setToolTip(description);
    label->setWordWrap(true);
    label->setMinimumHeight(label->fontMetrics().height()); // an empty one keeps its row
    // A long name must not widen the window.
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

QString minutes(double seconds) {
    const auto whole = static_cast<qint64>(seconds);
    return QString("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QChar('0'));
}

} // namespace

StatusLine::StatusLine(const QString& soundSystem)
    : soundSystem_(soundSystem),
      notice_(newLabel("noticeLabel", "Notices")),
      recording_(newLabel("recordingLabel", "Recording")),
      output_(newLabel("outputLabel", "Sound system and output device")) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(14, 0, 14, 8);
    column->setSpacing(2);
    column->addWidget(output_);
    auto* row = new QHBoxLayout;
    column->addLayout(row);
    row->addWidget(recording_, 1);
    row->addWidget(notice_, 1);
    shareRow();
}

void StatusLine::showOutput(const QueueState& state) {
    showPlainly(*output_, soundSystem_ + ": " + describeStream(state));
}

void StatusLine::showRecording(const QString& file, double seconds) {
    showPlainly(*recording_,
                file.isEmpty() ? QString() : QString("● Recording %1  %2").arg(file, minutes(seconds)));
    shareRow();
}

void StatusLine::showNotice(const QString& text) {
    showPlainly(*notice_, text);
    shareRow();
}

/// Who has nothing to say makes room; somebody keeps the row's height.
void StatusLine::shareRow() {
    recording_->setVisible(!recording_->text().isEmpty());
    notice_->setVisible(!notice_->text().isEmpty() || recording_->text().isEmpty());
}

void StatusLine::showNotice(const QString& text, std::chrono::milliseconds duration) {
    const QString before = notice_->text();
    showNotice(text);
    QTimer::singleShot(duration, this, [this, text, before] {
        if (notice_->text() == text)
            showNotice(before);
    });
}

} // namespace sonotrace
