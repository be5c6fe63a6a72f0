#pragma once

#include <QAbstractListModel>

// Common base of the orderable stores (sprites, palettes, animations, sounds):
// the organizer speaks only to this interface.
class QOrganizableObject : public QAbstractListModel
{
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    virtual void move(int from, int to) = 0;
    virtual void autoOrganize() = 0;
};
