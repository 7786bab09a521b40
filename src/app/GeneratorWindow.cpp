#include "app/GeneratorWindow.h"

#include "app/StatusLine.h"
#include "generator/GeneratorPanel.h"
#include "widgets/Introduce.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace sonotrace {

namespace {

/// The panel's coordinates are fixed, so on a small screen it scrolls.
QScrollArea* scrolled(GeneratorPanel* panel) {
    auto* area = new QScrollArea;
    area->setObjectName("view");
    area->setFrameShape(QFrame::NoFrame);
    area->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    area->setWidget(panel);
    return area;
}

} // namespace

GeneratorWindow buildGeneratorWindow(QMainWindow& window, GeneratorPanel* panel, const QString& soundSystem) {
    window.setObjectName("GeneratorWindow");
    window.setWindowTitle("Sonotrace Generators");

    GeneratorWindow parts{};
    window.menuBar()->setObjectName("myMenu");
    parts.menu = buildMainMenu(*window.menuBar());
    parts.panel = panel;

    auto* outputPopup = new QComboBox;
    introduce(*outputPopup, "outputPopup", "Output device", "The device that the generators play on");
    outputPopup->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    outputPopup->setMinimumContentsLength(24);
    parts.outputPopup = outputPopup;
    auto* outputLabel = new QLabel("O&utput");
    outputLabel->setBuddy(outputPopup);

    auto* syncPhases = new QPushButton("S&ync Phases");
    introduce(*syncPhases, "syncPhases", "Sync phases",
              "Starts all generators and the sweep again from phase 0, together");
    parts.syncPhases = syncPhases;

    auto* allOff = new QPushButton("&All Off");
    introduce(*allOff, "allOffButton", "All off",
              "Switches all generators and the sweep off at once (Ctrl+.)");
    parts.allOff = allOff;

    auto* strip = new QHBoxLayout;
    strip->setContentsMargins(14, 8, 14, 8);
    strip->setSpacing(8);
    strip->addWidget(outputLabel);
    strip->addWidget(outputPopup, 1);
    strip->addSpacing(16);
    strip->addWidget(syncPhases);
    strip->addWidget(allOff);

    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(scrolled(parts.panel), 1);
    column->addLayout(strip);
    parts.status = new StatusLine(soundSystem);
    column->addWidget(parts.status);
    window.setCentralWidget(content);

    const QSize chrome = QSize(2, window.menuBar()->sizeHint().height() + strip->sizeHint().height() +
                                      parts.status->sizeHint().height() + 2);
    window.resize(parts.panel->size() + chrome);
    return parts;
}

} // namespace sonotrace
