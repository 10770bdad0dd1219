#pragma once

#include "TestHost.h"
#include "editor/SysForm.h"
#include "sysdata/ModuleState.h"

#include <memory>

// An editor window set up on a test host, for tests that build pages and drive controls.
class EditorFixture {
public:
    EditorFixture() {
        host.fillPattern();
        state.host.setHost(&host);
        form = std::make_unique<ferrule::SysForm>(state);
        form->setErrorReporter([this](const QString& m) { errors << m; });
        form->Setup();
        form->Form_Load();
        form->show();
    }
    // Lays the window out for a model and builds a page afresh.
    void open(int model, int page) {
        form->SetFormat(model);
        rebuild(page);
    }
    void rebuild(int page) {
        form->ShowTab(0);
        form->ShowTab(page);
    }

    TestHost host;
    ferrule::ModuleState state;
    std::unique_ptr<ferrule::SysForm> form;
    QStringList errors;
};
