#include "SettingsStore.h"

#include "IniFile.h"
#include "io/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace ferrule {
namespace {

// Stored value texts carry their type: "dword:266", "sz:text", "binary:text", "expand_sz:text".
const QString kDword = QStringLiteral("dword:");
const QString kString = QStringLiteral("sz:");
const QString kBinary = QStringLiteral("binary:");
const QString kExpand = QStringLiteral("expand_sz:");

QString settingsRoot() {
    const QString moved = qEnvironmentVariable("FERRULE_SETTINGS_ROOT");
    if (!moved.isEmpty()) return moved;
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Tonebench");
}

QString hiveName(RegRoot root) {
    return root == RegRoot::LocalMachine ? QStringLiteral("HKEY_LOCAL_MACHINE")
                                         : QStringLiteral("HKEY_CURRENT_USER");
}

// %NAME% is replaced by the environment variable NAME; unknown names stay as written.
QString expandEnvironment(const QString& text) {
    static const QRegularExpression var(QStringLiteral("%([^%]+)%"));
    QString out;
    qsizetype last = 0;
    auto it = var.globalMatch(text);
    while (it.hasNext()) {
        const auto m = it.next();
        out += text.mid(last, m.capturedStart() - last);
        const QByteArray name = m.captured(1).toLocal8Bit();
        out += qEnvironmentVariableIsSet(name.constData()) ? qEnvironmentVariable(name.constData())
                                                           : m.captured(0);
        last = m.capturedEnd();
    }
    return out + text.mid(last);
}

bool fail(QVariant& result) {
    if (result.typeId() == QMetaType::QString)
        result = QString();
    else
        result = 0;
    return false;
}

// The key's file, read whole; nullopt when it is not a readable regular file.
std::optional<QByteArray> readKey(const QString& file) {
    if (!QFileInfo(file).isFile()) return std::nullopt;
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly)) return std::nullopt;
    return in.readAll();
}

QString dropTerminator(QString s) {
    if (s.endsWith(QChar(0))) s.chop(1);
    return s;
}

} // namespace

QString settingsFileFor(RegRoot root, const QString& key) {
    QString path = key;
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return settingsRoot() + QLatin1Char('/') + hiveName(root) + QLatin1Char('/') + path +
           QStringLiteral(".ini");
}

bool RegRead(RegRoot root, const QString& key, const QString& valueName, QVariant& result) {
    const std::optional<QByteArray> bytes = readKey(settingsFileFor(root, key));
    if (!bytes) return fail(result);
    const std::optional<QString> stored = IniFile(*bytes).value(valueName);
    if (!stored) return fail(result);
    const QString& raw = *stored;
    if (raw.startsWith(kDword)) {
        bool ok = false;
        const qlonglong v = raw.mid(kDword.size()).toLongLong(&ok);
        if (!ok) return fail(result);
        result = int(quint32(v)); // the four bytes as a little-endian 32-bit integer
        return true;
    }
    if (raw.startsWith(kString) || raw.startsWith(kBinary)) {
        const QString data = dropTerminator(raw.mid(raw.indexOf(QLatin1Char(':')) + 1));
        if (data.isEmpty()) return fail(result);
        result = data;
        return true;
    }
    if (raw.startsWith(kExpand)) {
        const QString expanded = expandEnvironment(dropTerminator(raw.mid(kExpand.size())));
        if (expanded.isEmpty()) return fail(result);
        result = expanded;
        return true;
    }
    // A value a person typed without its type: a number where a number is expected, otherwise
    // the text as it stands.
    if (raw.isEmpty()) return fail(result);
    if (result.typeId() != QMetaType::QString) {
        bool ok = false;
        const int v = raw.toInt(&ok);
        if (!ok) return fail(result);
        result = v;
        return true;
    }
    result = raw;
    return true;
}

bool RegWrite(RegRoot root, const QString& key, const QString& valueName, const QVariant& value,
              bool asBinary) {
    const QString file = settingsFileFor(root, key);
    const QFileInfo info(file);
    if (!info.isFile() || !info.isWritable()) return false;
    QString stored;
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UChar:
        stored = kDword + QString::number(value.toInt());
        break;
    case QMetaType::QString:
        stored = (asBinary ? kBinary : kString) + value.toString();
        break;
    default:
        return false;
    }
    // Only the value's own line changes, and the file is written only when it does.
    const std::optional<QByteArray> bytes = readKey(file);
    if (!bytes) return false;
    IniFile ini(*bytes);
    if (!ini.setValue(valueName, stored)) return true;
    return AtomicFile::write(file, ini.bytes(), nullptr);
}

bool RegCreateKey(RegRoot root, const QString& key) {
    const QString file = settingsFileFor(root, key);
    if (QFileInfo(file).isFile()) return true;
    if (!QDir().mkpath(QFileInfo(file).absolutePath())) return false;
    return AtomicFile::write(file, "; Tonebench settings\n", nullptr);
}

int readLastPage(int model) {
    QVariant stored = 0;
    if (!RegRead(RegRoot::LocalMachine, kEditorKey, lastPageValue(model), stored)) return 1;
    const int page = stored.toInt();
    return page >= 0 && page <= kLastPageKept ? page : 1;
}

bool writeLastPage(int model, int page) {
    return RegWrite(RegRoot::LocalMachine, kEditorKey, lastPageValue(model), page);
}

} // namespace ferrule
