#pragma once

// Drives the plug-in's modal editor as a person would, from inside the running dialog: a left
// click on a knob's value steps it down by one (unless `step` is off), then OK (or Cancel). Arm
// it just before the editor opens.

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <functional>

struct EditorDriver {
    int memLoc = -1; // the knob's image index
    int before = -1; // its value before the click
    bool done = false;
    std::function<void()> beforeClose; // runs between the click and closing the editor
    bool cancel = false;               // close with Cancel instead of OK
    bool step = true;                  // click a knob
    QWidget* editor = nullptr;         // the editor window, once it is open

    void arm() {
        auto* timer = new QTimer;
        timer->setInterval(20);
        QObject::connect(timer, &QTimer::timeout, [this, timer] {
            for (QWidget* w : QApplication::topLevelWidgets())
                if (w->objectName() == QLatin1String("SysForm") && w->isVisible()) editor = w;
            if (!editor) return;
            timer->stop();
            timer->deleteLater();
            // The plug-in has its own copy of the control classes: find them by class name and
            // read them through their properties.
            for (QWidget* knob : step ? editor->findChildren<QWidget*>() : QList<QWidget*>()) {
                if (qstrcmp(knob->metaObject()->className(), "ferrule::RKnob") != 0) continue;
                if (!knob->isVisible() || knob->property("Off").toBool() ||
                    knob->property("Value").toInt() <= knob->property("minimum").toInt())
                    continue;
                memLoc = knob->property("MemLoc").toInt();
                before = knob->property("Value").toInt();
                QTest::mouseClick(knob, Qt::LeftButton, {},
                                  knob->property("valueLabelRect").toRect().center());
                break;
            }
            if (beforeClose) beforeClose();
            QWidget* ok = editor->findChild<QWidget*>(cancel ? QStringLiteral("CButton2")
                                                             : QStringLiteral("CButton3"));
            if (ok) QTest::mouseClick(ok, Qt::LeftButton, {}, ok->rect().center());
            done = true;
        });
        timer->start();
    }
};
