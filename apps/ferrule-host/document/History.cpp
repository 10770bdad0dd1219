#include "History.h"

#include "HostSettings.h"
#include "device/SyxFile.h"
#include "io/AtomicFile.h"
#include "settings/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTimeZone>

#include <algorithm>
#include <array>

namespace ferrule {

namespace {

constexpr std::array kKinds = {Snapshot::Kind::Received, Snapshot::Kind::Requested,
                               Snapshot::Kind::Sent, Snapshot::Kind::Verified};
const QString kTimeFormat = QStringLiteral("yyyyMMdd'T'HHmmsszzz");

QString baseName(const Snapshot& s) {
    return QStringLiteral("%1-gt%2-%3")
        .arg(s.time.toString(kTimeFormat))
        .arg(s.model)
        .arg(Snapshot::kindName(s.kind));
}

QString portsFileOf(const QString& syxPath) {
    return syxPath.chopped(4) + QStringLiteral(".ports");
}

QByteArray readAll(const QString& path, qint64 max) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > max) return {};
    return file.readAll();
}

// A whole .syx file as far as its ends tell: it begins with a message and ends one. The
// messages themselves are checked when the snapshot is opened.
bool looksWhole(const QString& path) {
    QFile file(path);
    const qint64 size = file.size();
    if (size < 2 || size > SyxFile::kMaxSize || !file.open(QIODevice::ReadOnly)) return false;
    const QByteArray first = file.read(1);
    return file.seek(size - 1) && first == "\xF0" && file.read(1) == "\xF7";
}

} // namespace

QString Snapshot::kindName(Kind kind) {
    switch (kind) {
    case Kind::Received:
        return QStringLiteral("received");
    case Kind::Requested:
        return QStringLiteral("requested");
    case Kind::Sent:
        return QStringLiteral("sent");
    case Kind::Verified:
        return QStringLiteral("verified");
    }
    return {};
}

QString Snapshot::localTime() const {
    return time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

History::History(QString folder, int limit, QObject* parent)
    : QObject(parent)
    , folder_(std::move(folder))
    , limit_(std::max(1, limit)) {}

QString History::defaultFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
           QStringLiteral("/history");
}

int History::configuredLimit() {
    QVariant value = QString();
    if (!RegRead(RegRoot::LocalMachine, kHostKey, QStringLiteral("HistorySize"), value))
        return kDefaultLimit;
    bool ok = false;
    const int limit = value.toString().toInt(&ok);
    return ok && limit >= 1 ? limit : kDefaultLimit;
}

std::optional<Snapshot> History::of(const QString& path) {
    const QFileInfo file(path);
    static const QRegularExpression name(
        QStringLiteral("^(\\d{8}T\\d{9})-gt(\\d+)-([a-z]+)\\.syx$"));
    const QRegularExpressionMatch m = name.match(file.fileName());
    if (!m.hasMatch()) return std::nullopt;
    Snapshot s;
    const QDateTime named = QDateTime::fromString(m.captured(1), kTimeFormat);
    s.time = QDateTime(named.date(), named.time(), QTimeZone::utc());
    s.model = m.captured(2).toInt();
    const auto kind = std::find_if(kKinds.begin(), kKinds.end(), [&](Snapshot::Kind k) {
        return Snapshot::kindName(k) == m.captured(3);
    });
    if (!s.time.isValid() || kind == kKinds.end()) return std::nullopt;
    s.kind = *kind;
    s.path = file.absoluteFilePath();
    if (!looksWhole(s.path)) return std::nullopt;
    const QString ports = QString::fromUtf8(readAll(portsFileOf(s.path), 4096));
    s.ports = ports.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return s;
}

QList<Snapshot> History::snapshots() const {
    QList<Snapshot> list;
    const QStringList names = QDir(folder_).entryList({QStringLiteral("*.syx")}, QDir::Files,
                                                      QDir::Name | QDir::Reversed);
    for (const QString& fileName : names)
        if (std::optional<Snapshot> s = of(QDir(folder_).filePath(fileName))) list << *s;
    std::stable_sort(list.begin(), list.end(),
                     [](const Snapshot& a, const Snapshot& b) { return a.time > b.time; });
    return list;
}

std::optional<Snapshot> History::record(Snapshot::Kind kind, int model, const QByteArray& image,
                                        const QByteArray& header, const QStringList& ports,
                                        QString* error) {
    error->clear();
    const QByteArray syx = SyxFile::write(
        {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())},
        model, header);
    const QList<Snapshot> earlier = snapshots();
    const auto previous = std::find_if(earlier.begin(), earlier.end(),
                                       [model](const Snapshot& s) { return s.model == model; });
    if (previous != earlier.end() && readAll(previous->path, SyxFile::kMaxSize) == syx)
        return std::nullopt;
    if (!QDir().mkpath(folder_)) {
        *error = QStringLiteral("the folder \"%1\" cannot be made").arg(folder_);
        return std::nullopt;
    }

    Snapshot s{QDateTime::currentDateTimeUtc(), model, kind, ports, {}};
    const QDir dir(folder_);
    // Every snapshot has a time of its own, so that the order is never in doubt.
    while (!dir.entryList({s.time.toString(kTimeFormat) + QStringLiteral("-*")}, QDir::Files)
                .isEmpty())
        s.time = s.time.addMSecs(1);
    s.path = dir.filePath(baseName(s) + QStringLiteral(".syx"));
    // The ports first: the .syx file appearing is what stores the snapshot.
    if (!ports.isEmpty() &&
        !AtomicFile::write(portsFileOf(s.path), ports.join(QLatin1Char('\n')).toUtf8(), error,
                           AtomicFile::Flush::Cache))
        return std::nullopt;
    if (!AtomicFile::write(s.path, syx, error, AtomicFile::Flush::Cache)) {
        QFile::remove(portsFileOf(s.path));
        return std::nullopt;
    }
    dropBeyondLimit();
    emit stored(s);
    return s;
}

void History::dropBeyondLimit() const {
    const QList<Snapshot> list = snapshots();
    for (qsizetype i = limit_; i < list.size(); ++i) {
        QFile::remove(list[i].path);
        QFile::remove(portsFileOf(list[i].path));
    }
}

} // namespace ferrule
