#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace ferrule {

// A settings file as a person may have written it, kept line for line. Reading is tolerant
// (keys in any case, before any section or under [General], percent-encoded or not, values
// quoted or not, backslashes as typed); writing changes the one line of the value written, or
// adds one, and leaves every other byte as it was: comments, order, blank lines, line endings.
class IniFile {
public:
    // From the file's bytes.
    explicit IniFile(const QByteArray& bytes = {});

    std::optional<QString> value(const QString& name) const;
    // Sets a value; false when it already had exactly that value (nothing to write).
    bool setValue(const QString& name, const QString& value);
    QByteArray bytes() const;

private:
    struct Line {
        QByteArray text;   // without the line ending
        QByteArray ending; // "\n", "\r\n" or "" for a last line without one
    };
    // The index of the line holding `name` in the default section, or -1.
    int find(const QString& name) const;
    // Where a new value of the default section goes.
    int insertionPoint() const;
    static bool isSection(const QByteArray& trimmed);
    static bool isDefaultSection(const QByteArray& trimmed);
    static QString decodeKey(const QByteArray& key);
    static QString decodeValue(const QByteArray& raw);
    static QByteArray encodeValue(const QString& value);

    std::vector<Line> lines_;
    QByteArray newline_ = "\n";
};

} // namespace ferrule
