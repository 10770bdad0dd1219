// A settings file as a person may have written it. Read and written back unchanged it is the
// same bytes; a value set reads back as set, from the object and from the bytes it writes, and
// no other value changes.

#include "FuzzLaw.h"

#include "settings/IniFile.h"

#include <QStringList>

#include <cstdint>
#include <optional>

using namespace ferrule;

namespace {

// The names the program reads and writes, and names a person might add.
const QStringList& names() {
    static const QStringList list = {QStringLiteral("SysLastDisp3"),
                                     QStringLiteral("SysLastDisp10"),
                                     QStringLiteral("ColourSchemeX2"),
                                     QStringLiteral("MidiApi"),
                                     QStringLiteral("MidiIn"),
                                     QStringLiteral("MidiOut"),
                                     QStringLiteral("RecentFiles"),
                                     QStringLiteral("Spaced Key"),
                                     QStringLiteral("a=b"),
                                     QStringLiteral("[x]")};
    return list;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    IniFile ini(bytes);
    FERRULE_LAW(ini.bytes() == bytes);

    std::vector<std::optional<QString>> before;
    for (const QString& n : names())
        before.push_back(ini.value(n));

    // The value set and the name it goes to come from the input too: its last line, say a port
    // name as another program spelled it.
    const qsizetype lastLine = bytes.lastIndexOf('\n');
    const QString value = QString::fromUtf8(bytes.mid(lastLine + 1));
    const qsizetype which = size == 0 ? 0 : data[0] % names().size();
    const QString& name = names()[which];
    const bool changed = ini.setValue(name, value);
    FERRULE_LAW(changed == (before[std::size_t(which)] != value));
    FERRULE_LAW(ini.value(name) == value);
    const IniFile reread(ini.bytes());
    FERRULE_LAW(reread.value(name) == value);
    FERRULE_LAW(reread.bytes() == ini.bytes());
    if (!changed) FERRULE_LAW(ini.bytes() == bytes);
    for (qsizetype i = 0; i < names().size(); ++i)
        if (i != which) {
            // The names differ in more than case, so no other value may change.
            FERRULE_LAW(reread.value(names()[i]) == before[std::size_t(i)]);
        }
    return 0;
}
