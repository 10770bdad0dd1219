#pragma once

#include <QBasicTimer>
#include <QHash>
#include <QRect>
#include <QStaticText>
#include <QWidget>

#include <functional>
#include <optional>

namespace ferrule {

struct HostFontSettings;

// Gives the text a value label shows: (value, format, model type) → text. The editor asks the
// host; without one the plain number is shown.
using ValueTextSource = std::function<QString(int value, int format, int type)>;

// What the knob and the slider share: a value with an upper bound, the value label whose text
// comes from the value-text source, the "off" state, committing a user change (which raises
// Change), stepping by a click on the label, and the context help on a right-button release.
// Positions are twips from the control's top-left corner. The keyboard and the wheel step the
// value through the same commit as the mouse; each user gesture (a press to its release, a
// key press, a burst of wheel notches) is reported by its start and its finish.
class ValueControl : public QWidget {
    Q_OBJECT
    Q_PROPERTY(int Max READ Max WRITE setMax)
    Q_PROPERTY(int TFormat READ TFormat WRITE setTFormat)
    Q_PROPERTY(int MemLoc READ MemLoc WRITE setMemLoc)
    Q_PROPERTY(int pType READ pType WRITE setPType)
    Q_PROPERTY(int Value READ Value WRITE setValue)
    Q_PROPERTY(bool Off READ Off WRITE setOff)
    Q_PROPERTY(int LabelWidth READ LabelWidth WRITE setLabelWidth)
    Q_PROPERTY(QString caption READ caption WRITE setCaption)
    Q_PROPERTY(QString valueText READ valueText)
    Q_PROPERTY(int poolIndex READ poolIndex)
    Q_PROPERTY(bool dragging READ dragging)
    Q_PROPERTY(int minimum READ minimum)
    Q_PROPERTY(bool inputEnabled READ acceptsInput)
    Q_PROPERTY(QRect valueLabelRect READ valueLabelRect)
public:
    ValueControl(int poolIndex, QWidget* parent);

    int Max() const { return max_; }
    virtual void setMax(int m);
    int TFormat() const { return format_; }
    void setTFormat(int f) { format_ = f; }
    int MemLoc() const { return memLoc_; }
    void setMemLoc(int a) { memLoc_ = a; }
    int pType() const { return type_; }
    void setPType(int t) { type_ = t; }
    int Value() const { return value_; }
    virtual void setValue(int v) = 0;
    bool Off() const { return off_; }
    void setOff(bool off);
    int LabelWidth() const { return labelWidth_; }
    virtual void setLabelWidth(int n) = 0;
    QString caption() const { return caption_; }
    void setCaption(const QString& c) { caption_ = c; }
    QString valueText() const;
    int poolIndex() const { return poolIndex_; }
    bool dragging() const { return dragging_; }

    void setValueTextSource(ValueTextSource source) { source_ = std::move(source); }
    void applyHostFont(const HostFontSettings& font);

    // A user's change: sets the value and raises Change, unless it is the current value.
    void CommitValue(int v);
    // A change asked for by an assistive tool: one whole gesture, within the range, only where
    // the mouse could change the value.
    void setValueFromUser(int v);
    // A press on the value label: the left button steps down, any other up.
    void labelPressed(Qt::MouseButton button);
    // The text the context help shows: the caption and the current value text.
    QString helpText() const;
    // The value label's rectangle, in pixels of the control.
    QRect valueLabelRect() const { return labelRect_; }
    // Pixels the value box is drawn inside its rectangle on the left and right, so that the
    // boxes of neighbours that meet stay apart.
    void setLabelInset(int pixels);
    // What a key does to the value: arrows step by 1, Page Up/Down by a tenth of the range (at
    // least 1), Home/End go to the ends. Returns the new value, or nothing for another key.
    std::optional<int> valueForKey(int key) const;
    // The step of one wheel notch: 1, or with Shift a tenth of the range (at least 1).
    int pageStep() const;
    // The value `delta` steps away, as far as the range allows.
    int stepped(int delta) const;
    bool gestureOpen() const { return gestureOpen_; }

signals:
    void Change(int value);
    // A user gesture starts and finishes: everything between is one edit.
    void gestureStarted();
    void gestureFinished();
    // An error while handling the mouse (the value text could not be had).
    void failed(const QString& message);

protected:
    virtual int minimum() const { return 0; }
    virtual bool acceptsInput() const { return !off_; }
    virtual void rangeChanged() {}
    // Stores a value and rewrites the label with the value's text, also while Off is set (no
    // indicator move).
    void storeValue(int v);
    void rewriteLabel();
    void setLabelGeometry(int left, int width, int top);
    void showHelp(const QPoint& globalPos);
    // Runs a mouse-driven action; an error is reported through `failed`, never thrown out.
    void guarded(const std::function<void()>& action);
    // Paints the value label: black text on white, centred.
    void paintValueLabel(QPainter& p) const;
    // A press inside the value label steps the value; true when it was there.
    bool pressOnLabel(const QMouseEvent* e);
    // A drag ends when the left button is released or the control loses the focus; releasing
    // any other button shows the context help, unless it was pressed on the value label, which
    // is a control of its own that only steps the value.
    void mouseReleaseEvent(QMouseEvent* e) override;
    // The second press of a double-click is no press of its own: it neither steps nor drags.
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;
    void hideEvent(QHideEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    void keyReleaseEvent(QKeyEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void timerEvent(QTimerEvent* e) override;
    void startGesture();
    void finishGesture();

    int max_ = 100;
    int value_ = 0;
    int labelWidth_ = 0;
    bool dragging_ = false;

private:
    int format_ = 2;
    int memLoc_ = 0;
    int type_ = 3;
    bool off_ = false;
    int poolIndex_;
    QString caption_;
    QString text_;
    QRect labelRect_;
    int labelInset_ = 0;
    mutable QHash<QString, QStaticText> staticTexts_;
    mutable QFont staticFont_;
    ValueTextSource source_;
    bool gestureOpen_ = false;
    bool pressedOnLabel_ = false;
    int wheelRemainder_ = 0;
    QBasicTimer wheelBurst_;
};

} // namespace ferrule
