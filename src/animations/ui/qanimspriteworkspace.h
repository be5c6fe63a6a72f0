#pragma once

#include "shell/qinterfaceworkspace.h"

// The stage shared by the sprites, animations and sounds editors.
class QAnimSpriteWorkspace : public QInterfaceWorkspace
{
    Q_OBJECT

public:
    explicit QAnimSpriteWorkspace(QObject *parent = nullptr);

    int id() const override { return 1; }
    QString name() const override { return QStringLiteral("animsprites"); }
};
