#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <functional>

namespace ferrule {

// The host side of the plug-in contract: the system data, the font, the value texts, the update
// flag, the panel colour and the MIDI output. The plug-in reaches every member by name.
class HostObject : public QObject {
    Q_OBJECT
    Q_PROPERTY(int FontFamily READ fontFamily)
    Q_PROPERTY(QString FontName READ fontName)
    Q_PROPERTY(bool FontItalic READ fontItalic)
    Q_PROPERTY(bool FontBold READ fontBold)
    Q_PROPERTY(float FontSize READ fontSize)
    Q_PROPERTY(bool FontUnderline READ fontUnderline)
    Q_PROPERTY(bool FontStrikethrough READ fontStrikethrough)
    Q_PROPERTY(bool GTUpdate READ gtUpdate)
    Q_PROPERTY(int ShadingColourPanelEnd READ panelColour)
public:
    explicit HostObject(const QByteArray& image, QObject* parent = nullptr);

    Q_INVOKABLE int SysData(int index) const;
    Q_INVOKABLE void SysData(int index, int value);
    Q_INVOKABLE void MIDISendEx(int address, const QByteArray& data, int model);
    Q_INVOKABLE void SetGTUpdate(bool flag, int model);
    Q_INVOKABLE QString ValueText(int value, int format, int type) const;

    int fontFamily() const { return 0; }
    QString fontName() const;
    bool fontItalic() const { return false; }
    bool fontBold() const { return false; }
    float fontSize() const;
    bool fontUnderline() const { return false; }
    bool fontStrikethrough() const { return false; }
    // False whenever nothing could receive the blocks, so that no transmission starts.
    bool gtUpdate() const { return gtUpdate_ && (!outputProbe_ || outputProbe_()); }
    int panelColour() const { return panelColour_; }
    void setPanelColour(int colour) { panelColour_ = colour; }
    // A host that refuses the update flag: GTUpdate is false and SetGTUpdate leaves it so.
    void setRefuseUpdate(bool refuse) {
        refuseUpdate_ = refuse;
        if (refuse) gtUpdate_ = false;
    }

    const QByteArray& image() const { return image_; }
    bool changed() const { return changed_; }
    // Whether the plug-in wrote the data back (it does so on OK only), changed or not.
    bool written() const { return written_; }

    // Where MIDISendEx hands each block: address, data bytes, model.
    void setBlockSink(std::function<void(int, const QByteArray&, int)> sink);
    // Tells whether the blocks would reach anything; without, SetGTUpdate refuses the flag.
    void setOutputProbe(std::function<bool()> probe) { outputProbe_ = std::move(probe); }

signals:
    // The plug-in asked for the update flag while nothing could receive the blocks.
    void transmissionRefused();

private:
    QByteArray image_;
    bool changed_ = false;
    bool written_ = false;
    bool gtUpdate_ = true;
    bool refuseUpdate_ = false;
    int panelColour_ = 0xCEBEB0; // red in bits 0-7: a light steel blue
    std::function<void(int, const QByteArray&, int)> sink_;
    std::function<bool()> outputProbe_;
};

} // namespace ferrule
