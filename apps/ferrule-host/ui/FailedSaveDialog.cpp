#include "FailedSaveDialog.h"

#include "plugin/ProgramName.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace ferrule {

SaveChoice askAfterFailedSave(const QString& error, bool changedOnDisk, QWidget* parent) {
    QMessageBox box(QMessageBox::Warning, programName(),
                    QStringLiteral("The system data could not be saved.\n%1\n\nYour changes are "
                                   "kept until you choose.")
                        .arg(error),
                    QMessageBox::NoButton, parent);
    // A file changed elsewhere is not tried again: it is replaced, or the data goes elsewhere.
    QPushButton* retry =
        box.addButton(changedOnDisk ? QStringLiteral("Overwrite") : QStringLiteral("Retry"),
                      changedOnDisk ? QMessageBox::DestructiveRole : QMessageBox::AcceptRole);
    QPushButton* saveAs = box.addButton(QStringLiteral("Save As…"), QMessageBox::ActionRole);
    box.addButton(QStringLiteral("Discard"), QMessageBox::DestructiveRole);
    box.setDefaultButton(changedOnDisk ? saveAs : retry);
    box.exec();
    if (box.clickedButton() == retry)
        return {changedOnDisk ? SaveChoice::Overwrite : SaveChoice::Retry, {}};
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
