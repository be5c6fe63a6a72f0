#include "sprites/qpaletteobject.h"

#include "sprites/qsprites.h"

QPaletteObject::QPaletteObject(QSprites *sprites, QObject *parent)
    : QOrganizableObject(parent), m_sprites(sprites)
{
}

int QPaletteObject::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() || !m_sprites ? 0 : m_sprites->paletteCount();
}

QVariant QPaletteObject::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid() || !m_sprites || index.row() >= m_sprites->paletteCount())
        return QVariant();
    const QPaletteInfo info = m_sprites->paletteInfo(index.row());
    return QStringLiteral("%1, %2").arg(info.group).arg(info.number);
}

void QPaletteObject::move(int from, int to)
{
    if (m_sprites)
        m_sprites->movePalette(from, to);
}

void QPaletteObject::autoOrganize()
{
    if (m_sprites)
        m_sprites->autoOrganizePalettes();
}
