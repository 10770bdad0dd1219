#pragma once

#include <QPixmap>
#include <QWidget>

#include <functional>

namespace ferrule {

// A plain picture that reports mouse presses, moves and releases with the pointer position in
// twips, in its own coordinates; it takes the focus from the Tab key, and Space or Enter press it.
// The second press of a double-click is no new press: it is not reported, so that a double-click
// acts once, and its release finds no press to complete.
// The window swaps its picture; `picture` names the source element it shows (for example
// "Img(40)"), so that a tool can read which picture is up. The picture itself is asked for when
// the button is painted: a button that is never seen never has its picture drawn.
class ImageButton : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int index READ index CONSTANT)
    Q_PROPERTY(QString picture READ pictureName)
public:
    ImageButton(int index, QWidget* parent);

    int index() const { return index_; }
    using Picture = std::function<const QPixmap&()>;
    // Shows `picture`, of `size` logical pixels (the button takes that size).
    void setPicture(QSize size, Picture picture, const QString& name);
    QString pictureName() const { return pictureName_; }
    int widthTwips() const;
    int heightTwips() const;

signals:
    void mouseDown(int index, Qt::MouseButton button, int x, int y);
    void mouseMove(int index, Qt::MouseButtons buttons, int x, int y);
    void mouseUp(int index, Qt::MouseButton button, int x, int y);
    // Space or Enter while the button has the keyboard focus.
    void keyActivated(int index);
    // An arrow key while the button has the focus: -1 for Left or Up, +1 for Right or Down.
    void keyStep(int index, int step);

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;

private:
    int index_;
    Picture picture_;
    QString pictureName_;
};

} // namespace ferrule
