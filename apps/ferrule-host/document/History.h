#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace ferrule {

// One state of the device kept in the history: its data as a .syx file, and when, of which
// model, how it was learnt and over which ports.
struct Snapshot {
    enum class Kind { Received, Requested, Sent, Verified };
    QDateTime time; // UTC
    int model = 0;
    Kind kind = Kind::Received;
    QStringList ports;
    QString path; // the .syx file

    // "received", "requested", "sent", "verified".
    static QString kindName(Kind kind);
    QString portText() const { return ports.join(QStringLiteral(", ")); }
    // The time in the user's zone, as it is shown: "2026-11-24 12:27:44".
    QString localTime() const;
};

// The history of the device's states: every dump received or requested and every send, kept as
// a .syx file in a folder of the user's data, newest first.
//
// Each snapshot is one file, named after its time (UTC, to the millisecond), model and kind:
// "20261124T112744123-gt10-requested.syx"; the ports are in a small file beside it
// ("….ports", one name a line), written first. Both are written all at once, and the .syx file
// appearing is what stores the snapshot, so a crash at any moment leaves the list whole: at
// worst a ports file without its snapshot, which is ignored. Files whose name is not a
// snapshot's, or which are not a whole .syx file, are skipped and left alone.
//
// A snapshot of the same bytes as the newest one of its model is not stored again; beyond the
// limit, the oldest snapshots go.
class History : public QObject {
    Q_OBJECT
public:
    static constexpr int kDefaultLimit = 200;

    explicit History(QString folder = defaultFolder(), int limit = configuredLimit(),
                     QObject* parent = nullptr);
    // The user's data folder + "/history" ($XDG_DATA_HOME moves it).
    static QString defaultFolder();
    // The host's setting "HistorySize", or kDefaultLimit when it is not a number from 1 up.
    static int configuredLimit();

    const QString& folder() const { return folder_; }
    int limit() const { return limit_; }

    // Every stored snapshot, newest first.
    QList<Snapshot> snapshots() const;
    // The snapshot a file of the history is; nullopt for any other file, or one not whole.
    static std::optional<Snapshot> of(const QString& path);

    // Keeps the model's data of `image` (the whole system image) as it goes to or comes from
    // the device under the data-set `header`. Returns the snapshot stored; nullopt when it is
    // the same as the newest of its model (`error` left empty) or cannot be written (`error`
    // names the reason).
    std::optional<Snapshot> record(Snapshot::Kind kind, int model, const QByteArray& image,
                                   const QByteArray& header, const QStringList& ports,
                                   QString* error);

signals:
    void stored(const ferrule::Snapshot& snapshot);

private:
    QString folder_;
    int limit_;
};

} // namespace ferrule
