#pragma once

#include "HostProcess.h"
#include "ImageFiles.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

// A test's own folder for the files it gives ferrule-host, and its private settings root there.
class HostFiles : public ::testing::Test {
protected:
    QString path(const QString& name) const { return dir.filePath(name); }
    QString root() const { return dir.filePath(QStringLiteral("settings")); }
    HostRun host(const QStringList& args) const { return runHost(args, root()); }

    QTemporaryDir dir;
};
