#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QVariant>
#include <QVector>

#include <functional>
#include <stdexcept>

// A scriptable host for in-process tests of the plug-in. The end-to-end tests use the real
// ferrule-host instead.
class TestHost : public QObject {
    Q_OBJECT
    Q_PROPERTY(int FontFamily MEMBER fontFamily)
    Q_PROPERTY(QString FontName MEMBER fontName)
    Q_PROPERTY(bool FontItalic MEMBER fontItalic)
    Q_PROPERTY(bool FontBold MEMBER fontBold)
    Q_PROPERTY(float FontSize MEMBER fontSize)
    Q_PROPERTY(bool FontUnderline MEMBER fontUnderline)
    Q_PROPERTY(bool FontStrikethrough MEMBER fontStrikethrough)
    Q_PROPERTY(bool GTUpdate MEMBER gtUpdate)
    Q_PROPERTY(int ShadingColourPanelEnd MEMBER panelColour)
public:
    explicit TestHost(QObject* parent = nullptr);

    // SysData values; an entry of `overrides` replaces the image byte (it may be out of range).
    Q_INVOKABLE QVariant SysData(int index) const;
    Q_INVOKABLE void SysData(int index, int value);
    Q_INVOKABLE void MIDISendEx(int address, const QByteArray& data, int model);
    Q_INVOKABLE void SetGTUpdate(bool flag, int model);
    Q_INVOKABLE QString ValueText(int value, int format, int type);

    // Fills the image with a pattern that differs at neighbouring indexes.
    void fillPattern();

    QByteArray image;
    QVector<QPair<int, QVariant>> overrides;
    int reads = 0;
    int writes = 0;
    int fontFamily = 1;
    QString fontName = QStringLiteral("DejaVu Serif");
    bool fontItalic = true;
    bool fontBold = true;
    float fontSize = 11.5F;
    bool fontUnderline = false;
    bool fontStrikethrough = false;
    bool gtUpdate = true;
    bool refuseUpdate = false; // SetGTUpdate leaves the flag as it is
    int panelColour = 0x808080;
    QString valueTextPrefix;
    bool failValueText = false; // ValueText throws, as a host that breaks down would
    struct Block {
        int address;
        QByteArray data;
        int model;
    };
    QVector<Block> blocks;
    std::function<void()> onSend;
};

// A host that lacks the FontStrikethrough member.
class HostWithoutStrikethrough : public QObject {
    Q_OBJECT
    Q_PROPERTY(int FontFamily READ zero)
    Q_PROPERTY(QString FontName READ name)
    Q_PROPERTY(bool FontItalic READ no)
    Q_PROPERTY(bool FontBold READ no)
    Q_PROPERTY(float FontSize READ size)
    Q_PROPERTY(bool FontUnderline READ no)
public:
    int zero() const { return 0; }
    QString name() const { return QStringLiteral("DejaVu Sans"); }
    bool no() const { return false; }
    float size() const { return 9.0F; }
};
