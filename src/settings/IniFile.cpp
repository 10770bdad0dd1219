#include "IniFile.h"

#include <QUrl>

namespace ferrule {

IniFile::IniFile(const QByteArray& bytes) {
    qsizetype at = 0;
    while (at < bytes.size()) {
        const qsizetype end = bytes.indexOf('\n', at);
        Line line;
        if (end < 0) {
            line.text = bytes.mid(at);
            at = bytes.size();
        } else {
            line.text = bytes.mid(at, end - at);
            line.ending = "\n";
            at = end + 1;
        }
        // A carriage return ends a line only before a line feed: read again, a file ending in
        // one alone would not end its last line there.
        if (line.text.endsWith('\r') && !line.ending.isEmpty()) {
            line.text.chop(1);
            line.ending.prepend('\r');
            newline_ = "\r\n";
        }
        lines_.push_back(line);
    }
}

QByteArray IniFile::bytes() const {
    QByteArray out;
    for (const Line& l : lines_)
        out += l.text + l.ending;
    return out;
}

bool IniFile::isSection(const QByteArray& trimmed) {
    return trimmed.startsWith('[') && trimmed.endsWith(']');
}

bool IniFile::isDefaultSection(const QByteArray& trimmed) {
    return trimmed.compare("[General]", Qt::CaseInsensitive) == 0;
}

QString IniFile::decodeKey(const QByteArray& key) {
    // QSettings writes "Spaced Key" as "Spaced%20Key"; either spelling means the same value.
    return QUrl::fromPercentEncoding(key.trimmed());
}

QString IniFile::decodeValue(const QByteArray& raw) {
    const QByteArray v = raw.trimmed();
    if (v.size() < 2 || !v.startsWith('"') || !v.endsWith('"')) return QString::fromUtf8(v);
    // A quoted value: backslash escapes inside the quotes.
    QString out;
    const QString inner = QString::fromUtf8(v.mid(1, v.size() - 2));
    for (qsizetype i = 0; i < inner.size(); ++i) {
        QChar c = inner[i];
        if (c == QLatin1Char('\\') && i + 1 < inner.size()) {
            c = inner[++i];
            if (c == QLatin1Char('n')) c = QLatin1Char('\n');
            if (c == QLatin1Char('t')) c = QLatin1Char('\t');
            if (c == QLatin1Char('r')) c = QLatin1Char('\r');
        }
        out += c;
    }
    return out;
}

QByteArray IniFile::encodeValue(const QString& value) {
    const bool plain = !value.isEmpty() && value == value.trimmed() &&
                       !value.contains(QLatin1Char('"')) && !value.contains(QLatin1Char(';')) &&
                       !value.contains(QLatin1Char('\n')) && !value.contains(QLatin1Char('\r')) &&
                       !value.contains(QLatin1Char('#'));
    if (plain) return value.toUtf8();
    QString quoted = QStringLiteral("\"");
    for (QChar c : value) {
        if (c == QLatin1Char('"') || c == QLatin1Char('\\')) quoted += QLatin1Char('\\');
        if (c == QLatin1Char('\n')) {
            quoted += QStringLiteral("\\n");
            continue;
        }
        if (c == QLatin1Char('\r')) {
            quoted += QStringLiteral("\\r");
            continue;
        }
        quoted += c;
    }
    return (quoted + QLatin1Char('"')).toUtf8();
}

int IniFile::find(const QString& name) const {
    const QString wanted = QUrl::fromPercentEncoding(name.toUtf8());
    bool inDefault = true; // keys before any section belong to the default section
    int found = -1;
    for (int i = 0; i < int(lines_.size()); ++i) {
        const QByteArray t = lines_[std::size_t(i)].text.trimmed();
        if (isSection(t)) {
            inDefault = isDefaultSection(t);
            continue;
        }
        if (!inDefault || t.isEmpty() || t.startsWith(';') || t.startsWith('#')) continue;
        const qsizetype eq = t.indexOf('=');
        if (eq <= 0) continue;
        if (decodeKey(t.left(eq)).compare(wanted, Qt::CaseInsensitive) == 0) found = i;
    }
    return found; // the last one wins, as a person reading the file would expect
}

std::optional<QString> IniFile::value(const QString& name) const {
    const int i = find(name);
    if (i < 0) return std::nullopt;
    const QByteArray& text = lines_[std::size_t(i)].text;
    return decodeValue(text.mid(text.indexOf('=') + 1));
}

int IniFile::insertionPoint() const {
    // After the last key of [General] if there is one; else before the first other section;
    // else at the end.
    int general = -1, lastInGeneral = -1, firstSection = -1;
    bool inGeneral = false;
    for (int i = 0; i < int(lines_.size()); ++i) {
        const QByteArray t = lines_[std::size_t(i)].text.trimmed();
        if (isSection(t)) {
            inGeneral = isDefaultSection(t);
            if (inGeneral) general = i;
            if (!inGeneral && firstSection < 0 && general < 0) firstSection = i;
            continue;
        }
        if (inGeneral && !t.isEmpty()) lastInGeneral = i;
    }
    if (general >= 0) return (lastInGeneral >= 0 ? lastInGeneral : general) + 1;
    if (firstSection >= 0) return firstSection;
    return int(lines_.size());
}

bool IniFile::setValue(const QString& name, const QString& value) {
    const int i = find(name);
    if (i >= 0) {
        Line& line = lines_[std::size_t(i)];
        if (value == decodeValue(line.text.mid(line.text.indexOf('=') + 1))) return false;
        // Keep the key as it was written and the spacing around the '='.
        const qsizetype eq = line.text.indexOf('=');
        qsizetype valueStart = eq + 1;
        while (valueStart < line.text.size() && line.text[valueStart] == ' ')
            ++valueStart;
        line.text = line.text.left(valueStart) + encodeValue(value);
        return true;
    }
    const int at = insertionPoint();
    // The line before the new one must end its line.
    if (at > 0 && lines_[std::size_t(at - 1)].ending.isEmpty())
        lines_[std::size_t(at - 1)].ending = newline_;
    QByteArray key = name.toUtf8();
    if (key.contains('=') || key.trimmed() != key || key.startsWith('[') || key.startsWith(';'))
        key = QUrl::toPercentEncoding(name);
    lines_.insert(lines_.begin() + at, Line{key + '=' + encodeValue(value), newline_});
    return true;
}

} // namespace ferrule
