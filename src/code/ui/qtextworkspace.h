#pragma once

#include "shell/qinterfaceworkspace.h"

class QStackedWidget;

// The central view of the text editors: one page per open text document.
class QTextWorkspace : public QInterfaceWorkspace
{
    Q_OBJECT

public:
    explicit QTextWorkspace(QObject *parent = nullptr);

    int id() const override { return 0; }
    QString name() const override { return QStringLiteral("text"); }
    QStackedWidget *pages() const;
};
