#pragma once

#include <QString>

namespace ferrule {

// The host's font as read once from its seven font members.
struct HostFontSettings {
    int family = 0; // the character set number
    QString name;
    float size = 0.0F;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikethrough = false;
    bool valid = false;
};

} // namespace ferrule
