#pragma once

#include <QPixmap>
#include <QString>

#include <array>

namespace ferrule {

// The pictures of the window's image buttons, drawn in code the first time each is asked for and
// kept at the indexes the window uses: mode buttons mImg 0-4 (normal), 10-14 (pressed), 20-24
// (current model); tab buttons Img 0-12 (normal), 20-32 (pressed), 40-52 (current page); command
// buttons CButton 4-7 (normal), 8-11 (pressed), 12 and 13 (transmit button while sending: normal,
// pressed).
class ButtonArt {
public:
    static constexpr int kTabWidth = 32; // pixels; tabs stand 495 twips apart
    static constexpr int kTabHeight = 80;
    static constexpr int kModeWidth = 56;
    static constexpr int kModeHeight = 26;
    static constexpr int kCommandWidth = 71;
    static constexpr int kCommandHeight = 28;

    ButtonArt();

    // The screen's device pixel ratio the pictures are drawn at (1 until set).
    void setRatio(qreal ratio);

    const QPixmap& mImg(int index) const;
    const QPixmap& Img(int index) const;
    const QPixmap& CButton(int index) const;

    static QString tabCaption(int tab);
    static QString modeCaption(int index);
    static QString commandCaption(int index);

private:
    template <class Draw> static const QPixmap& cached(QPixmap& slot, bool& drawn, Draw draw) {
        if (!drawn) {
            slot = draw();
            drawn = true;
        }
        return slot;
    }

    qreal ratio_ = 1.0;
    mutable QPixmap mImg_[25];
    mutable QPixmap Img_[53];
    mutable QPixmap CButton_[14];
    mutable std::array<bool, 25> mImgDrawn_{};
    mutable std::array<bool, 53> ImgDrawn_{};
    mutable std::array<bool, 14> CButtonDrawn_{};
};

} // namespace ferrule
