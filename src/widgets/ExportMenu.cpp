#include "widgets/ExportMenu.h"

#include "widgets/FilePanels.h"
#include "widgets/Preferences.h"

#include <QActionGroup>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPushButton>

#include <algorithm>
#include <array>
#include <utility>

namespace sonotrace {

namespace {

constexpr char kSizeKey[] = "EXPORT_pictureSize";

/// In menu order, whose number is what the preferences keep; the first and the last have no pixels here.
struct OfferedSize {
    const char* name;
    const char* title;
    QSize pixels;
};
constexpr std::array<OfferedSize, 6> kSizes = {{{"sizeScreen", "As on &Screen", {}},
                                                {"size640", "&640 × 400", QSize(640, 400)},
                                                {"size1280", "&1280 × 720", QSize(1280, 720)},
                                                {"size1920", "1&920 × 1080", QSize(1920, 1080)},
                                                {"size3840", "&3840 × 2160", QSize(3840, 2160)},
                                                {"sizeA4", "&A4 Page", {}}}};

std::size_t chosenSize(const Preferences& preferences) {
    const std::int32_t stored = preferences.integerValue(kSizeKey);
    return static_cast<std::size_t>(std::clamp(stored, 0, static_cast<std::int32_t>(kSizes.size()) - 1));
}

} // namespace

ExportMenu::ExportMenu(QPushButton& button, Preferences& preferences, WindowExports exports)
    : QMenu(&button), button_(button), preferences_(preferences), exports_(std::move(exports)) {
    button.setMenu(this);
    setToolTipsVisible(true);
    add("copyPicture", "&Copy Picture", Qt::CTRL | Qt::SHIFT | Qt::Key_C,
        "The page to the clipboard, as an image", &ExportMenu::copyPicture);
    add("savePicture", "&Save Picture…", Qt::CTRL | Qt::SHIFT | Qt::Key_S,
        "The page to a file, PNG or PDF: the picture with its scales, settings and readings",
        &ExportMenu::savePicture);
    addSizes();
    addSeparator();
    add("copyData", "Copy &Data", Qt::CTRL | Qt::SHIFT | Qt::Key_D,
        "The numbers to the clipboard, comma-separated", &ExportMenu::copyData);
    add("saveData", "Save Da&ta…", Qt::CTRL | Qt::SHIFT | Qt::Key_E,
        "The numbers to a file, comma-separated, with all settings in front", &ExportMenu::saveData);
}

QAction* ExportMenu::add(const char* name, const QString& title, const QKeySequence& shortcut,
                         const QString& tip, void (ExportMenu::*operation)()) {
    QAction* const action = addAction(title);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    action->setToolTip(tip);
    connect(action, &QAction::triggered, this, operation);
    button_.window()->addAction(action); // else its keys would work in the open menu only
    return action;
}

void ExportMenu::addSizes() {
    QMenu* const menu = addMenu("Picture Si&ze");
    auto* const group = new QActionGroup(menu);
    for (std::size_t i = 0; i < kSizes.size(); ++i) {
        QAction* const action = menu->addAction(kSizes[i].title);
        action->setObjectName(kSizes[i].name);
        action->setCheckable(true);
        group->addAction(action);
        connect(action, &QAction::triggered, this,
                [this, i] { preferences_.setInteger(kSizeKey, static_cast<std::int32_t>(i)); });
    }
    // It may have been chosen in another window.
    connect(menu, &QMenu::aboutToShow, this, [this, group] {
        group->actions()[static_cast<qsizetype>(chosenSize(preferences_))]->setChecked(true);
    });
}

PageSize ExportMenu::page(const ReportPicture& picture) const {
    const std::size_t size = chosenSize(preferences_);
    if (size == 0)
        return picture.around(exports_.face(), button_.devicePixelRatioF());
    return size + 1 == kSizes.size() ? PageSize::a4() : PageSize::ofPixels(kSizes[size].pixels);
}

bool ExportMenu::isThere() {
    const QString missing = exports_.missing();
    if (!missing.isEmpty())
        Q_EMIT said(missing);
    return missing.isEmpty();
}

void ExportMenu::copyPicture() {
    if (!isThere())
        return;
    const ReportPicture picture = exports_.picture();
    const QImage image = picture.image(page(picture));
    QGuiApplication::clipboard()->setImage(image);
    Q_EMIT said(image.isNull() ? QString("The picture is too large for the memory")
                               : QString("Picture copied: %1 × %2").arg(image.width()).arg(image.height()));
}

void ExportMenu::savePicture() {
    if (!isThere())
        return;
    const ReportPicture picture = exports_.picture();
    const PageSize size = page(picture);
    const QImage image = picture.image(size);
    const QByteArray pdf = picture.pdf(size); // before the panel: sound goes on meanwhile
    const auto path =
        askForFileToSave(button_.window(), preferences_, kReportPages, "Choose file to save the picture to");
    if (!path)
        return;
    const bool isPdf = path->endsWith(".pdf", Qt::CaseInsensitive);
    Q_EMIT said(writeFile(*path, isPdf ? pdf : pngOf(image), "Picture saved to %1"));
}

void ExportMenu::copyData() {
    if (!isThere())
        return;
    const QByteArray table = QByteArray::fromStdString(exports_.table());
    auto* const content = new QMimeData;
    content->setText(QString::fromUtf8(table));
    content->setData("text/csv", table);
    QGuiApplication::clipboard()->setMimeData(content);
    Q_EMIT said("Data copied");
}

void ExportMenu::saveData() {
    if (!isThere())
        return;
    const QByteArray table = QByteArray::fromStdString(exports_.table());
    const auto path =
        askForFileToSave(button_.window(), preferences_, kTables, "Choose file to save the data to");
    if (path)
        Q_EMIT said(writeFile(*path, table, "Data saved to %1"));
}

} // namespace sonotrace
