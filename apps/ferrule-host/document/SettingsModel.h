#pragma once

#include <QAbstractItemModel>
#include <QByteArray>
#include <QString>

#include <array>
#include <span>
#include <vector>

namespace ferrule {

struct Parameter;

// The system data of one model by parameter, as a tree: page > heading > parameter (a
// parameter without a heading sits under its page). Columns: the setting's caption and
// instance, the document's value, the value the device is known to hold, and the compared
// data's value, each as text. A value that differs from the document's is marked by colour and
// by a sign, so that it reads without colour too; a page or heading says how many of its
// parameters differ.
//
// The images are taken whole; the model finds the parameters whose values changed and says so
// row by row (a new model is a reset).
class SettingsModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { Setting, Value, Device, Compared, ColumnCount };
    // The sides a value is known from; each fills its column.
    enum Side { DocumentSide, DeviceSide, ComparedSide, SideCount };
    enum Role {
        NameRole = Qt::UserRole + 1, // the parameter's full name (empty for a page or heading)
        DiffersRole,                 // the parameter differs from the device or the compared data
    };
    // The mark of a value that differs from the document's.
    static inline const QString kDiffers = QStringLiteral("≠");

    explicit SettingsModel(QObject* parent = nullptr);

    // The model whose parameters are listed; every side is forgotten when it changes.
    void setModel(int model);
    int model() const { return model_; }
    // A side's image (43,252 bytes); empty when it is not known.
    void setImage(Side side, const QByteArray& image);
    bool known(Side side) const { return known_[side]; }
    const QByteArray& image(Side side) const { return images_[side]; }

    const Parameter* parameter(const QModelIndex& index) const;
    // The parameters an index stands for: a parameter itself, or every one under a heading or a
    // page.
    std::vector<const Parameter*> parametersUnder(const QModelIndex& index) const;
    // The page (tab caption) a row sits on.
    QString page(const QModelIndex& index) const;
    QModelIndex indexOf(const Parameter* parameter, int column = Setting) const;
    QModelIndex pageIndex(const QString& page) const;
    // Whether a parameter's value on `side` is known and differs from the document's.
    bool differs(const Parameter* parameter, Side side) const;
    // How many parameters differ from the document on `side`.
    int differences(Side side) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Node {
        int parent = -1; // node index, -1 for a page
        int row = 0;
        QString text; // a page's or heading's caption
        std::vector<int> children;
        int parameter = -1; // index into the model's parameters, -1 for a page or heading
    };
    void build();
    const Node& node(const QModelIndex& index) const;
    QModelIndex nodeIndex(int node, int column) const;
    void collect(int node, std::vector<const Parameter*>& out) const;
    // The values of a side from its image, and the per-node difference counts.
    std::vector<int> valuesOf(const QByteArray& image) const;
    void countDifferences();
    QString valueText(int parameter, Side side) const;

    int model_ = 0;
    std::span<const Parameter> parameters_;
    std::vector<Node> nodes_;
    std::vector<int> pages_;             // top-level nodes
    std::vector<int> parameterNodes_;    // parameter → its node
    mutable std::vector<QString> names_; // parameter → its name, for the filter
    std::array<QByteArray, SideCount> images_;
    std::array<bool, SideCount> known_{};
    std::array<std::vector<int>, SideCount> values_;
    // Per node, how many parameters under it differ on the device and on the compared side.
    std::array<std::vector<int>, SideCount> counts_;
};

// "1 setting differs", "3 settings differ".
QString settingsDiffer(int count);

} // namespace ferrule
