#pragma once

#include <QAbstractTableModel>
#include <QList>

// The palette remap table of a sprite file: rows of source group and number
// mapped to destination group and number. Applied when an image is made and
// when the palette of a sprite is shown.
class QRemapModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    struct Row
    {
        int srcGroup = 1;
        int srcNumber = 1;
        int dstGroup = 1;
        int dstNumber = 1;
        bool operator==(const Row &o) const
        {
            return srcGroup == o.srcGroup && srcNumber == o.srcNumber && dstGroup == o.dstGroup
                && dstNumber == o.dstNumber;
        }
    };

    explicit QRemapModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    // Each of these emits dataChanged() over the invalid index after its change,
    // so that one connection refreshes the picture.
    void addRow();
    void removeRow(int row);
    void clear();
    void setRow(int row, int srcGroup, int srcNumber, int dstGroup, int dstNumber);
    // Sets one cell; a row past the end is first created with source 0, 0 and
    // destination -1, -1.
    void setCell(int row, int column, int value);

    const QList<Row> &rows() const { return m_rows; }
    void setRows(const QList<Row> &rows);
    // First row whose source is group, number; null if none.
    const Row *find(int group, int number) const;

private:
    void touched();

    QList<Row> m_rows;
};
