#pragma once

#include "base/qorganizableobject.h"

class QSprites;

// List model over the palettes of a sprite store. It has no storage of its
// own: the list lives in the store, and every change goes through it.
class QPaletteObject : public QOrganizableObject
{
    Q_OBJECT

public:
    explicit QPaletteObject(QSprites *sprites, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    // Moves a palette, keeping palette links pointing backwards and the
    // sprites' palette indices on the same colours.
    void move(int from, int to) override;
    // Orders by group, then number, both signed.
    void autoOrganize() override;

    QSprites *sprites() const { return m_sprites; }

    // The store tells the views about changes to the list it holds.
    void beginReset() { beginResetModel(); }
    void endReset() { endResetModel(); }

private:
    QSprites *m_sprites = nullptr;
};
