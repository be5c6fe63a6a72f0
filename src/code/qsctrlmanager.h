#pragma once

#include "base/qentryfolder.h"

// The library of ready-made state controllers: the .sctrl files of the data
// folders, by name, for the wizards' list.
class QSCtrlManager : public QEntryFolder
{
    Q_OBJECT

public:
    explicit QSCtrlManager(const QStringList &folders, QObject *parent = nullptr);
    ~QSCtrlManager() override;
};
