#pragma once

#include <QString>
#include <QStringList>

namespace ferrule {

// "Title!A!B" for a group of `count` options: the options in order, then the title. Exactly
// `count` "!" are consumed; further ones stay in the last option.
QStringList splitGroupOptions(const QString& optionList, int count);
// Options each group number takes: 2 for 0-5, 4 for 6 and 8, 3 for 7.
int optionCount(int group);

} // namespace ferrule
