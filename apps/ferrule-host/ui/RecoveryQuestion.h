#pragma once

#include <QString>

class QWidget;

namespace ferrule {

// The question on the next start after changes were left unsaved, in a message box: Recover
// (the default button) or Discard. True: Recover.
bool askToRecover(const QString& question, QWidget* parent = nullptr);

} // namespace ferrule
