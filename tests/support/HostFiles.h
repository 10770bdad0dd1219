#pragma once

#include "HostProcess.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// A test's own folder for the files it gives ferrule-host, and its private settings root there.
class HostFiles : public ::testing::Test {
protected:
    QString path(const QString& name) const { return dir.filePath(name); }
    QString root() const { return dir.filePath(QStringLiteral("settings")); }

    static void writeFile(const QString& file, const QByteArray& bytes) {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    static QByteArray readFile(const QString& file) {
        QFile f(file);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    QTemporaryDir dir;
};
