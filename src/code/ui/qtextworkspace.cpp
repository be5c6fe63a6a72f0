#include "qtextworkspace.h"

#include <QStackedWidget>

QTextWorkspace::QTextWorkspace(QObject *parent)
    : QInterfaceWorkspace(parent)
{
    auto *pages = new QStackedWidget;
    pages->setObjectName(QStringLiteral("textWorkspace"));
    m_widget = pages;
}

QStackedWidget *QTextWorkspace::pages() const
{
    return static_cast<QStackedWidget *>(m_widget.data());
}
