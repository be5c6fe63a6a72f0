#include "qsounds.h"

QSounds::QSounds(int cacheType, int cacheCompression, QObject *parent)
    : QOrganizableObject(parent)
    , m_cacheType(cacheType)
    , m_cacheCompression(cacheCompression)
{
}

int QSounds::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant QSounds::data(const QModelIndex &, int) const
{
    return QVariant();
}

void QSounds::move(int from, int to)
{
    if (from < 0 || to < 0 || from >= count() || to >= count())
        return;
}

void QSounds::autoOrganize()
{
}

void QSounds::clear()
{
    m_path.clear();
    m_modified = false;
    emit changed();
}
