#include "EditorDescription.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaProperty>
#include <QWidget>

namespace ferrule {

namespace {

constexpr int kTwipsPerPixel = 15;

QJsonValue toJson(const QVariant& v) {
    switch (v.typeId()) {
    case QMetaType::Bool:
        return v.toBool();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UChar:
    case QMetaType::LongLong:
        return v.toLongLong();
    case QMetaType::Double:
    case QMetaType::Float:
        return v.toDouble();
    case QMetaType::QStringList:
        return QJsonArray::fromStringList(v.toStringList());
    default:
        return v.toString();
    }
}

// The properties a control's class declares itself (not those of QWidget or QObject), and the
// dynamic ones the window gives its plain pictures and labels.
QJsonObject ownProperties(const QObject* o) {
    QJsonObject out;
    const QMetaObject* mo = o->metaObject();
    const int first = o->isWidgetType() ? QWidget::staticMetaObject.propertyCount()
                                        : QObject::staticMetaObject.propertyCount();
    for (int i = first; i < mo->propertyCount(); ++i) {
        const QMetaProperty p = mo->property(i);
        if (p.isReadable()) out.insert(QString::fromLatin1(p.name()), toJson(p.read(o)));
    }
    for (const QByteArray& name : o->dynamicPropertyNames()) {
        if (name.startsWith("_q_") || name == "ferruleOwnFont" || name == "ferruleCommandButton")
            continue;
        out.insert(QString::fromLatin1(name), toJson(o->property(name.constData())));
    }
    return out;
}

QJsonObject position(const QWidget* w, const QWidget* area) {
    const QPoint at = w->mapTo(area, QPoint(0, 0));
    return {{QStringLiteral("left"), at.x() * kTwipsPerPixel},
            {QStringLiteral("top"), at.y() * kTwipsPerPixel},
            {QStringLiteral("width"), w->width() * kTwipsPerPixel},
            {QStringLiteral("height"), w->height() * kTwipsPerPixel}};
}

} // namespace

QByteArray describeEditor(QWidget* editor) {
    QJsonObject root = ownProperties(editor);
    root.insert(QStringLiteral("caption"), editor->windowTitle());

    QJsonArray buttons;
    QJsonArray controls;
    const QWidget* area = editor->findChild<QWidget*>(QStringLiteral("PageArea"));
    const auto widgets = editor->findChildren<QWidget*>();
    for (const QWidget* w : widgets) {
        if (!w->isVisibleTo(editor)) continue;
        if (w->inherits("ferrule::ImageButton")) {
            QJsonObject b = ownProperties(w);
            b.insert(QStringLiteral("name"), w->objectName());
            b.insert(QStringLiteral("position"), position(w, editor));
            buttons.append(b);
        } else if (w->property("ferruleKind").isValid() && area) {
            QJsonObject c = ownProperties(w);
            c.insert(QStringLiteral("kind"), w->property("ferruleKind").toString());
            c.insert(QStringLiteral("name"), w->objectName());
            c.insert(QStringLiteral("position"), position(w, area));
            controls.append(c);
        }
    }
    // Option groups and the selector list are plain objects that place the window's labels;
    // their position is their own Left and Top.
    const auto objects = editor->findChildren<QObject*>();
    for (const QObject* o : objects) {
        if (o->isWidgetType() || !o->property("ferruleKind").isValid() ||
            !o->property("visible").toBool())
            continue;
        QJsonObject c = ownProperties(o);
        c.insert(QStringLiteral("kind"), o->property("ferruleKind").toString());
        c.insert(QStringLiteral("name"), o->objectName());
        controls.append(c);
    }
    root.insert(QStringLiteral("buttons"), buttons);
    root.insert(QStringLiteral("controls"), controls);
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

} // namespace ferrule
