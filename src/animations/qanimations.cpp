#include "qanimations.h"

QAnimations::QAnimations(QObject *parent)
    : QOrganizableObject(parent)
{
}

int QAnimations::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant QAnimations::data(const QModelIndex &, int) const
{
    return QVariant();
}

void QAnimations::move(int from, int to)
{
    // Both rows must exist; with no rows there is nothing to move.
    if (from < 0 || to < 0 || from >= count() || to >= count())
        return;
}

void QAnimations::autoOrganize()
{
}

void QAnimations::clear()
{
    m_codecName = "UTF-8";
    m_path.clear();
    m_fileName.clear();
    m_modified = false;
    emit changed();
}
