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

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ferrule {

namespace {

constexpr std::array kKinds = {Snapshot::Kind::Received, Snapshot::Kind::Requested,
                               Snapshot::Kind::Sent, Snapshot::Kind::Verified};
bool newestFirst(const Snapshot& a, const Snapshot& b) {
    return a.time > b.time;
}

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

// The files are small and there may be a few hundred of them: read with the system's calls, not
// through QFile's buffers.
QByteArray readAll(const QString& path, qint64 max) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return {};
    struct stat st = {};
    QByteArray bytes;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size <= max) {
        bytes.resize(qsizetype(st.st_size));
        if (::pread(fd, bytes.data(), bytes.size(), 0) != bytes.size()) bytes.clear();
    }
    ::close(fd);
    return bytes;
}

// A whole .syx file as far as its ends tell: it begins with a message and ends one. The
// messages themselves are checked when the snapshot is opened.
bool looksWhole(const QString& path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return false;
    struct stat st = {};
    unsigned char first = 0, last = 0;
    const bool whole = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size >= 2 &&
                       st.st_size <= SyxFile::kMaxSize && ::pread(fd, &first, 1, 0) == 1 &&
                       ::pread(fd, &last, 1, st.st_size - 1) == 1 && first == 0xF0 && last == 0xF7;
    ::close(fd);
    return whole;
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
    static const QRegularExpression name(QStringLiteral(
        "^(\\d{4})(\\d\\d)(\\d\\d)T(\\d\\d)(\\d\\d)(\\d\\d)(\\d{3})-gt(\\d+)-([a-z]+)\\.syx$"));
    const QRegularExpressionMatch m = name.match(file.fileName());
    if (!m.hasMatch()) return std::nullopt;
    const auto number = [&m](int i) { return m.capturedView(i).toInt(); };
    Snapshot s;
    s.time = QDateTime(QDate(number(1), number(2), number(3)),
                       QTime(number(4), number(5), number(6), number(7)), QTimeZone::utc());
    s.model = number(8);
    const auto kind = std::find_if(kKinds.begin(), kKinds.end(), [&](Snapshot::Kind k) {
        return Snapshot::kindName(k) == m.capturedView(9);
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
    const QStringList names =
        QDir(folder_).entryList({QStringLiteral("*.syx")}, QDir::Files, QDir::NoSort);
    for (const QString& fileName : names)
        if (std::optional<Snapshot> s = of(QDir(folder_).filePath(fileName))) list << *s;
    std::sort(list.begin(), list.end(), newestFirst);
    return list;
}

std::optional<Snapshot> History::record(Snapshot::Kind kind, int model, const QByteArray& image,
                                        const QByteArray& header, const QStringList& ports,
                                        QString* error) {
    error->clear();
    const QByteArray syx = SyxFile::write(
        {reinterpret_cast<const std::uint8_t*>(image.constData()), std::size_t(image.size())},
        model, header);
    QList<Snapshot> kept = snapshots();
    const auto previous = std::find_if(kept.begin(), kept.end(),
                                       [model](const Snapshot& s) { return s.model == model; });
    if (previous != kept.end() && readAll(previous->path, SyxFile::kMaxSize) == syx)
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
    // Beyond the limit, the oldest go (the new one too, should the clock have gone back).
    kept.insert(std::lower_bound(kept.begin(), kept.end(), s, newestFirst), s);
    for (qsizetype i = limit_; i < kept.size(); ++i) {
        QFile::remove(kept[i].path);
        QFile::remove(portsFileOf(kept[i].path));
    }
    if (!QFile::exists(s.path)) return std::nullopt;
    emit stored(s);
    return s;
}

} // namespace ferrule
