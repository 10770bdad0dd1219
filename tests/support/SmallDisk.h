#pragma once

// A small tmpfs of the test's own, to meet a full disk or a read-only file system for real.
// Mounting needs the right to mount (root, as on the test machines); without it, available()
// is false and says why.

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

class SmallDisk {
public:
    explicit SmallDisk(int kilobytes) {
        mounted_ =
            QProcess::execute(QStringLiteral("mount"),
                              {QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                               QStringLiteral("size=%1k").arg(kilobytes), QStringLiteral("tmpfs"),
                               dir_.path()}) == 0;
    }
    ~SmallDisk() {
        if (mounted_) QProcess::execute(QStringLiteral("umount"), {dir_.path()});
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool available() const { return mounted_; }
    QString path(const QString& name) const { return dir_.filePath(name); }
    QString root() const { return dir_.path(); }
    bool makeReadOnly() {
        return QProcess::execute(
                   QStringLiteral("mount"),
                   {QStringLiteral("-o"), QStringLiteral("remount,ro"), dir_.path()}) == 0;
    }

private:
    QTemporaryDir dir_;
    bool mounted_ = false;
};
