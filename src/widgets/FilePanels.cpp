#include "widgets/FilePanels.h"

#include <QFileDialog>

namespace sonotrace {

namespace {

std::optional<QString> run(QFileDialog& panel) {
    if (panel.exec() != QDialog::Accepted || panel.selectedFiles().isEmpty())
        return std::nullopt;
    return panel.selectedFiles().first();
}

} // namespace

std::optional<QString> askForFileToOpen(QWidget* parent, const QString& message) {
    QFileDialog panel(parent, message);
    panel.setAcceptMode(QFileDialog::AcceptOpen);
    panel.setFileMode(QFileDialog::ExistingFile);
    return run(panel);
}

std::optional<QString> askForFileToSave(QWidget* parent, const QString& message, const QString& filter,
                                        const QString& suffix) {
    QFileDialog panel(parent, message);
    panel.setAcceptMode(QFileDialog::AcceptSave);
    panel.setFileMode(QFileDialog::AnyFile);
    if (!filter.isEmpty())
        panel.setNameFilter(filter);
    panel.setDefaultSuffix(suffix);
    return run(panel);
}

} // namespace sonotrace
