#include "FailedSaveDialog.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace ferrule {

SaveChoice askAfterFailedSave(const QString& error, QWidget* parent) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Tonebench"),
                    QStringLiteral("The system data could not be saved.\n%1\n\nYour changes are "
                                   "kept until you choose.")
                        .arg(error),
                    QMessageBox::NoButton, parent);
    QPushButton* retry = box.addButton(QStringLiteral("Retry"), QMessageBox::AcceptRole);
    QPushButton* saveAs = box.addButton(QStringLiteral("Save As…"), QMessageBox::ActionRole);
    box.addButton(QStringLiteral("Discard"), QMessageBox::DestructiveRole);
    box.setDefaultButton(retry);
    box.exec();
    if (box.clickedButton() == retry) return {SaveChoice::Retry, {}};
    if (box.clickedButton() == saveAs) {
        const QString path = QFileDialog::getSaveFileName(
            parent, QStringLiteral("Save system data as"), QString(),
            QStringLiteral("System exclusive (*.syx);;Raw system data (*)"));
        if (!path.isEmpty()) return {SaveChoice::SaveAs, path};
        return {SaveChoice::Retry, {}};
    }
    return {SaveChoice::Discard, {}};
}

} // namespace ferrule
