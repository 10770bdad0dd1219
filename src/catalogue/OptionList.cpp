#include "OptionList.h"

namespace ferrule {

int optionCount(int group) {
    if (group == 6 || group == 8) return 4;
    if (group == 7) return 3;
    return 2;
}

QStringList splitGroupOptions(const QString& optionList, int count) {
    QStringList options;
    qsizetype from = optionList.indexOf(QLatin1Char('!'));
    const QString title = optionList.left(from);
    for (int k = 0; k < count; ++k) {
        const qsizetype next = k + 1 < count ? optionList.indexOf(QLatin1Char('!'), from + 1) : -1;
        options << (next < 0 ? optionList.mid(from + 1)
                             : optionList.mid(from + 1, next - from - 1));
        from = next;
    }
    options << title;
    return options;
}

} // namespace ferrule
