#include "mainwindow.h"

#include "ui_mainwindow.h"

#include "base/qmugenmodel.h"
#include "qinterface.h"
#include "scripting/qsnippetmanager.h"

#include <QCloseEvent>
#include <QMessageBox>

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , ui(new Ui::MainWindow)
{
    ui->setupUi(this);
}

MainWindow::~MainWindow()
{
    delete ui;
}

QDockWidget *MainWindow::actionDock() const
{
    return ui->dockWidget;
}

QListView *MainWindow::actionList() const
{
    return ui->actList;
}

void MainWindow::setController(QInterface *controller, QMugenModel *config, QSnippetManager *snippets)
{
    m_controller = controller;
    m_config = config;
    m_snippets = snippets;
}

bool MainWindow::askClose()
{
    if (m_closeQuestion)
        return m_closeQuestion(this);
    return QMessageBox::question(this, tr("Close"), tr("Do you really want to close Brawlforge?"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
           == QMessageBox::Yes;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    // Open projects are not asked about here: the one question is the guard.
    if (m_config && m_config->flag(QStringLiteral("confirm_close")) && !askClose()) {
        event->ignore();
        return;
    }
    QMainWindow::closeEvent(event);
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        retranslate();
}

void MainWindow::retranslate()
{
    ui->retranslateUi(this);
    if (m_controller)
        m_controller->retranslate();
    if (m_snippets)
        m_snippets->refresh();
}
