#include "qanimspriteworkspace.h"

#include <QFrame>

QAnimSpriteWorkspace::QAnimSpriteWorkspace(QObject *parent)
    : QInterfaceWorkspace(parent)
{
    auto *stage = new QFrame;
    stage->setObjectName(QStringLiteral("animSpriteWorkspace"));
    stage->setFrameShape(QFrame::StyledPanel);
    stage->setAutoFillBackground(true);
    stage->setBackgroundRole(QPalette::Dark);
    m_widget = stage;
}
