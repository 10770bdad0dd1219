#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVector>

#include <QLabel>

namespace ferrule {

// An option group drawn with glyph pictures: each item is a 13 × 13 glyph with a label to its
// right, and the group may have a title label. Two or more items make a radio group; one item
// makes a check box. The glyphs and labels belong to the window; the group places them, swaps
// the glyph pictures and raises Click when a click changes the selection.
class cCheckRadio : public QObject {
    Q_OBJECT
    Q_PROPERTY(int Selected READ Selected WRITE setSelected)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)
    Q_PROPERTY(int TFormat READ TFormat WRITE setTFormat)
    Q_PROPERTY(int hoverIndex READ hoverIndex)
    Q_PROPERTY(int itemCount READ itemCount)
    Q_PROPERTY(QString title READ title)
    Q_PROPERTY(QStringList captions READ captions)
    Q_PROPERTY(bool visible READ isVisible)
    Q_PROPERTY(int left READ left)
    Q_PROPERTY(int top READ top)
public:
    explicit cCheckRadio(QObject* parent = nullptr);

    void SetMyImages(const QVector<QLabel*>& glyphs);
    void SetMyTexts(const QVector<QLabel*>& labels);
    void SetStyle(int count, int horizontalStep, double verticalStep);
    void SetTextEx(const QStringList& texts, int offset);
    void setTop(int y);
    void setLeft(int x);
    void setVisible(bool visible);
    void setEnabled(bool enabled);
    bool Enabled() const { return enabled_; }
    int Selected() const;
    void setSelected(int value);
    void ClickOn(int index);
    void setMouseOver(int item);
    void MouseDown();
    int TFormat() const { return tFormat_; }
    void setTFormat(int v) { tFormat_ = v; }

    int hoverIndex() const { return hover_; }
    int itemCount() const { return lastIndex_ + 1; }
    int selectedIndex() const { return selected_; }
    bool hasTitle() const { return labels_.size() - 1 > lastIndex_; }
    QString title() const;
    QStringList captions() const;
    bool isVisible() const { return visible_; }
    int left() const { return left_; }
    int top() const { return top_; }
    QLabel* glyph(int i) const;
    QLabel* label(int i) const;
    // The CheckImage index a glyph shows.
    static int glyphPicture(const QLabel* glyph);

signals:
    void Click(int value);

private:
    void redraw();
    void showPicture(int item, int checkImage);
    QLabel* titleLabel() const;

    int selected_ = 1;
    bool enabled_ = true;
    int hover_ = -1;
    QVector<QPointer<QLabel>> glyphs_{nullptr};
    QVector<QPointer<QLabel>> labels_{nullptr};
    int lastIndex_ = -1;
    int verticalStep_ = 720;
    int horizontalStep_ = 210;
    int tFormat_ = 0;
    bool visible_ = false;
    int left_ = 0;
    int top_ = 0;
};

} // namespace ferrule
