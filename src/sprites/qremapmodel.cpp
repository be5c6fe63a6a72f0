#include "qremapmodel.h"

QRemapModel::QRemapModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

int QRemapModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int QRemapModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 4;
}

static int cellOf(const QRemapModel::Row &r, int column)
{
    switch (column) {
    case 0: return r.srcGroup;
    case 1: return r.srcNumber;
    case 2: return r.dstGroup;
    default: return r.dstNumber;
    }
}

QVariant QRemapModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size() || index.column() < 0 || index.column() > 3)
        return QVariant();
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return QVariant();
    return cellOf(m_rows.at(index.row()), index.column());
}

bool QRemapModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || index.row() < 0 || index.column() < 0 || index.column() > 3)
        return false;
    bool ok = false;
    const int v = value.toInt(&ok);
    if (!ok)
        return false;
    setCell(index.row(), index.column(), v);
    return true;
}

QVariant QRemapModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QVariant();
    if (orientation == Qt::Vertical)
        return section + 1;
    switch (section) {
    case 0: return tr("Src Grp");
    case 1: return tr("Src Num");
    case 2: return tr("Dst Grp");
    case 3: return tr("Dst Num");
    default: return QVariant();
    }
}

Qt::ItemFlags QRemapModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsEditable;
}

void QRemapModel::addRow()
{
    const int row = int(m_rows.size());
    beginInsertRows(QModelIndex(), row, row);
    m_rows.append(Row{});
    endInsertRows();
    touched();
}

void QRemapModel::removeRow(int row)
{
    if (row < 0 || row >= m_rows.size())
        return;
    beginRemoveRows(QModelIndex(), row, row);
    m_rows.removeAt(row);
    endRemoveRows();
    touched();
}

void QRemapModel::clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
    touched();
}

void QRemapModel::setRow(int row, int srcGroup, int srcNumber, int dstGroup, int dstNumber)
{
    if (row < 0 || row >= m_rows.size())
        return;
    m_rows[row] = Row{srcGroup, srcNumber, dstGroup, dstNumber};
    emit dataChanged(index(row, 0), index(row, 3));
    touched();
}

void QRemapModel::setCell(int row, int column, int value)
{
    if (row < 0 || column < 0 || column > 3)
        return;
    if (row >= m_rows.size()) {
        // Editing past the end makes one new row, whatever the row asked for.
        const int at = int(m_rows.size());
        beginInsertRows(QModelIndex(), at, at);
        m_rows.append(Row{0, 0, -1, -1});
        endInsertRows();
        row = at;
    }
    Row &r = m_rows[row];
    switch (column) {
    case 0: r.srcGroup = value; break;
    case 1: r.srcNumber = value; break;
    case 2: r.dstGroup = value; break;
    default: r.dstNumber = value; break;
    }
    emit dataChanged(index(row, column), index(row, column));
    touched();
}

void QRemapModel::setRows(const QList<Row> &rows)
{
    beginResetModel();
    m_rows = rows;
    endResetModel();
    touched();
}

const QRemapModel::Row *QRemapModel::find(int group, int number) const
{
    for (const Row &r : m_rows)
        if (r.srcGroup == group && r.srcNumber == number)
            return &r;
    return nullptr;
}

void QRemapModel::touched()
{
    // The invalid index tells listeners "something in the table changed".
    emit dataChanged(QModelIndex(), QModelIndex());
}
