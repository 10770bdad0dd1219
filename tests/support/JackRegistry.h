#pragma once

// JACK's registry of running servers: one shared-memory file for the whole machine
// (/dev/shm/jack-shm-registry) with room for eight servers, each entry the server's process id
// and "jack-<uid>:<name>:". A server that ends cleanly clears its entry; one that is killed
// leaves it behind, and JACK takes a left entry back only for a server of the same name. Left
// entries of other names add up until no server can start anywhere on the machine.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <unistd.h>
#include <vector>

class JackRegistry {
public:
    static constexpr int kServers = 8;
    static QString defaultPath() { return QStringLiteral("/dev/shm/jack-shm-registry"); }

    struct Entry {
        qint64 pid = 0;
        QString name; // the server's name, without JACK's "jack-<uid>:" and ":"
        bool live = false;
    };

    // The entries in use, read from `path`; none when there is no registry or it is not one.
    static std::vector<Entry> read(const QString& path = defaultPath()) {
        std::vector<Entry> out;
        QFile f(path);
        if (!f.open(QIODevice::ReadOnly)) return out;
        const QByteArray head = f.read(kServersAt + kServers * kMaxEntry);
        // The header: magic, protocol, type, size, its own length, an entry's length; then the
        // servers, as many as the header's length holds beyond those six words.
        if (head.size() < kServersAt || word(head, 0) != kMagic) return out;
        const int stride = (int(word(head, 16)) - kServersAt) / kServers;
        if (stride < 8 || stride > kMaxEntry || head.size() < kServersAt + kServers * stride)
            return out;
        const QByteArray prefix = "jack-" + QByteArray::number(::getuid()) + ':';
        for (int i = 0; i < kServers; ++i) {
            const char* at = head.constData() + kServersAt + i * stride;
            const auto pid = std::int32_t(word(head, kServersAt + i * stride));
            if (pid == 0) continue;
            QByteArray name(at + 4, int(::strnlen(at + 4, std::size_t(stride - 4))));
            if (name.startsWith(prefix)) name = name.mid(prefix.size());
            if (name.endsWith(':')) name.chop(1);
            out.push_back({pid, QString::fromLocal8Bit(name), alive(pid)});
        }
        return out;
    }

    // "the JACK registry of servers is full (8 on this machine): a (pid 1), b (pid 2, gone)...",
    // or empty while it has room.
    static QString fullMessage(const std::vector<Entry>& entries) {
        if (int(entries.size()) < kServers) return {};
        QStringList names;
        int gone = 0;
        for (const Entry& e : entries) {
            names << QStringLiteral("%1 (pid %2%3)")
                         .arg(e.name)
                         .arg(e.pid)
                         .arg(e.live ? QString() : QStringLiteral(", gone"));
            gone += !e.live;
        }
        QString message = QStringLiteral("the JACK registry of servers is full (%1 on this "
                                         "machine): %2")
                              .arg(kServers)
                              .arg(names.join(QStringLiteral(", ")));
        if (gone > 0)
            message += QStringLiteral("; %1 left by servers that were killed: stop every JACK "
                                      "server and remove %2")
                           .arg(gone)
                           .arg(defaultPath());
        return message;
    }

    // Removes the files a server of `name` left in /dev/shm (its sockets and its clients'
    // semaphores); only for a server that no longer runs.
    static void removeFilesOf(const QString& name,
                              const QString& folder = QStringLiteral("/dev/shm")) {
        const QDir dir(folder);
        const QString uid = QString::number(::getuid());
        for (const QString& pattern : {QStringLiteral("jack_%1_*").arg(name),
                                       QStringLiteral("jack_sem.%1_%2_*").arg(uid, name)})
            for (const QString& file : dir.entryList({pattern}, QDir::Files | QDir::System))
                QFile::remove(dir.filePath(file));
    }

    // Removes the files in /dev/shm of every server whose name begins with `prefix` and that
    // has no live entry: servers that were killed leave their sockets and their clients'
    // semaphores behind. The files are listed before the registry is read, so a server that
    // starts meanwhile has its entry read with them.
    static void removeLeftFiles(const QString& prefix) {
        const QDir dir(QStringLiteral("/dev/shm"));
        const QStringList files = dir.entryList(
            {QStringLiteral("jack_%1*").arg(prefix),
             QStringLiteral("jack_sem.%1_%2*").arg(QString::number(::getuid()), prefix)},
            QDir::Files | QDir::System);
        QStringList live;
        for (const Entry& e : read())
            if (e.live) live << e.name;
        const QRegularExpression name(QRegularExpression::escape(prefix) +
                                      QStringLiteral("\\d+-\\d+"));
        for (const QString& file : files) {
            const QRegularExpressionMatch m = name.match(file);
            if (m.hasMatch() && !live.contains(m.captured(0))) QFile::remove(dir.filePath(file));
        }
    }

    static bool alive(qint64 pid) { return ::kill(pid_t(pid), 0) == 0 || errno != ESRCH; }

private:
    static constexpr std::uint32_t kMagic = 0x4a41434b; // "JACK"
    static constexpr int kServersAt = 24;
    static constexpr int kMaxEntry = 264; // a process id and a name of 257 characters, aligned
    static std::uint32_t word(const QByteArray& b, int at) {
        std::uint32_t v = 0;
        std::memcpy(&v, b.constData() + at, sizeof v);
        return v;
    }
};
