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

    // The text of a controller, read through the encoding detection with
    // `codepage` as the fallback, lines ended by "\n"; empty when unreadable.
    QString text(const QString &name, int codepage) const;
};
