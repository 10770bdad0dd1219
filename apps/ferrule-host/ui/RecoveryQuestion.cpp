#include "RecoveryQuestion.h"

#include <QMessageBox>
#include <QPushButton>

namespace ferrule {

bool askToRecover(const QString& question, QWidget* parent) {
    QMessageBox box(QMessageBox::Question, QStringLiteral("Recover Changes"), question,
                    QMessageBox::NoButton, parent);
    box.setObjectName(QStringLiteral("RecoverQuestion"));
    QPushButton* recover = box.addButton(QStringLiteral("Recover"), QMessageBox::AcceptRole);
    box.addButton(QMessageBox::Discard);
    box.setDefaultButton(recover);
    box.setEscapeButton(recover);
    box.exec();
    return box.clickedButton() == recover;
}

} // namespace ferrule
