#include "app/QuitQuestion.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QWidget>

#include <utility>

namespace sonotrace {

namespace {

class CloseGuard : public QObject {
public:
    CloseGuard(QWidget& window, std::function<bool()> mayClose)
        : QObject(&window), mayClose_(std::move(mayClose)) {
        QCoreApplication::instance()->installEventFilter(this); // sees all events, the window's too
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Quit)
            letSessionEnd();
        if (watched != parent() || event->type() != QEvent::Close || sessionEnds_ || mayClose_())
            return false;
        event->ignore();
        return true;
    }

private:
    /// The windows are closed next; whatever comes after that is another matter.
    void letSessionEnd() {
        sessionEnds_ = true;
        QMetaObject::invokeMethod(
            this, [this] { sessionEnds_ = false; }, Qt::QueuedConnection);
    }

    const std::function<bool()> mayClose_;
    bool sessionEnds_ = false;
};

} // namespace

QuitAnswer askHowToQuit(QWidget& window, const QString& path) {
    QMessageBox question(&window);
    question.setObjectName("quitQuestion");
    question.setIcon(QMessageBox::Question);
    question.setTextFormat(Qt::PlainText);
    question.setText(
        QString("A recording runs. Without being stopped it is left without its length:\n%1").arg(path));
    const auto* stop = question.addButton("&Stop Recording and Quit", QMessageBox::AcceptRole);
    const auto* quit = question.addButton("&Quit", QMessageBox::DestructiveRole);
    question.addButton(QMessageBox::Cancel);
    question.setDefaultButton(QMessageBox::Cancel);
    question.exec();
    if (question.clickedButton() == stop)
        return QuitAnswer::StopRecordingAndQuit;
    return question.clickedButton() == quit ? QuitAnswer::Quit : QuitAnswer::Cancel;
}

void guardClosing(QWidget& window, std::function<bool()> mayClose) {
    new CloseGuard(window, std::move(mayClose));
}

} // namespace sonotrace
