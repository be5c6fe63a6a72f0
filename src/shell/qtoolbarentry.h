#pragma once

#include <QAction>
#include <QList>
#include <QPointer>

// What a preset lays out for one toolbar: the icon size and the actions, a
// null entry standing for a separator.
struct QToolBarEntry
{
    int iconSize = 16;
    QList<QPointer<QAction>> actions;
};
