#pragma once

#include "TestHost.h"
#include "host/PlugIn.h"
#include "settings/SettingsStore.h"
#include "sysdata/FerruleError.h"

#include <QFile>
#include <gtest/gtest.h>

#include <functional>
#include <string>

// The message of the FerruleError `f` throws, or empty when it throws none.
inline std::string errorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const ferrule::FerruleError& e) {
        return e.what();
    }
    return {};
}

// A plug-in linked to a host whose image holds a pattern, with the editor's settings key made
// afresh and removed afterwards.
class PlugInFixture : public ::testing::Test {
protected:
    void SetUp() override {
        ferrule::RegCreateKey(ferrule::RegRoot::LocalMachine, ferrule::kEditorKey);
        host.fillPattern();
        plugIn.Interface(&host);
    }
    void TearDown() override {
        QFile::remove(
            ferrule::settingsFileFor(ferrule::RegRoot::LocalMachine, ferrule::kEditorKey));
    }

    TestHost host;
    ferrule::PlugIn plugIn;
};
