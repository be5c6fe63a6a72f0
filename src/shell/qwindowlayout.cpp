#include "qwindowlayout.h"

#include "base/qmugenmodel.h"
#include "qpanelwidget.h"

#include <QBoxLayout>
#include <QDockWidget>
#include <QLabel>
#include <QMainWindow>
#include <QStackedLayout>
#include <QStatusBar>
#include <QTabBar>
#include <QToolBar>

QWindowLayout::QWindowLayout(QMainWindow *window, QDockWidget *actionDock, QObject *parent)
    : QObject(parent)
    , m_window(window)
    , m_actionDock(actionDock)
{
    buildCentre();
    buildToolBars();
    buildStatusBar();
}

QDockWidget *QWindowLayout::actionDock() const
{
    return m_actionDock;
}

void QWindowLayout::buildCentre()
{
    auto *central = m_window->centralWidget();
    if (!central) {
        central = new QWidget;
        m_window->setCentralWidget(central);
    }
    auto *outer = new QVBoxLayout(central);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);

    m_tabBar = new QTabBar(central);
    m_tabBar->setObjectName(QStringLiteral("projectTabs"));
    m_tabBar->setMovable(true);
    m_tabBar->setTabsClosable(true);
    m_tabBar->setExpanding(false);
    m_tabBar->setDocumentMode(true);
    outer->addWidget(m_tabBar);

    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    outer->addLayout(row, 1);

    m_leftPanel = new QPanelWidget(central);
    m_leftPanel->setObjectName(QStringLiteral("leftPanel"));
    m_leftPanel->setMinimumWidth(220);
    m_leftStack = new QStackedLayout(m_leftPanel);
    row->addWidget(m_leftPanel);

    auto *centre = new QVBoxLayout;
    m_centre = centre;
    centre->setContentsMargins(0, 0, 0, 0);
    centre->setSpacing(0);
    m_centralStack = new QStackedLayout;
    centre->addLayout(m_centralStack, 1);
    m_editorToolBar = new QToolBar(central);
    m_editorToolBar->setObjectName(QStringLiteral("editorToolBar"));
    m_editorToolBar->hide();
    centre->addWidget(m_editorToolBar);
    row->addLayout(centre, 1);

    m_rightPanel = new QPanelWidget(central);
    m_rightPanel->setObjectName(QStringLiteral("rightPanel"));
    m_rightPanel->setMinimumWidth(220);
    m_rightStack = new QStackedLayout(m_rightPanel);
    row->addWidget(m_rightPanel);

    m_leftPanel->hide();
    m_rightPanel->hide();
}

void QWindowLayout::addBelowCentre(QWidget *bar)
{
    m_centre->insertWidget(m_centre->indexOf(m_centralStack) + 1, bar);
}

void QWindowLayout::buildToolBars()
{
    m_mainToolBar = new QToolBar(tr("Main"), m_window);
    m_mainToolBar->setObjectName(QStringLiteral("mainToolBar"));
    m_mainToolBar->setFloatable(false);
    m_extraToolBar = new QToolBar(tr("Extra"), m_window);
    m_extraToolBar->setObjectName(QStringLiteral("extraToolBar"));
    m_extraToolBar->setFloatable(false);
}

void QWindowLayout::buildStatusBar()
{
    QStatusBar *bar = m_window->statusBar();
    for (int i = 0; i < StatusFieldCount; ++i) {
        auto *field = new QLabel(bar);
        field->setObjectName(QStringLiteral("statusField%1").arg(i));
        field->setMinimumWidth(250);
        bar->addWidget(field);
        field->hide();
        m_statusFields.append(field);
    }
    m_projectStatus = new QLabel(bar);
    m_projectStatus->setObjectName(QStringLiteral("projectStatus"));
    bar->addPermanentWidget(m_projectStatus);
}

void QWindowLayout::setStatusText(int field, const QString &text)
{
    QLabel *label = m_statusFields.value(field);
    if (!label)
        return;
    label->setText(text);
    label->setVisible(!text.isEmpty());
}

void QWindowLayout::setPanelsWanted(bool left, bool right)
{
    m_wantLeft = left;
    m_wantRight = right;
}

void QWindowLayout::restore(const QMugenModel &cfg)
{
    const int w = cfg.number(QStringLiteral("window_width"));
    const int h = cfg.number(QStringLiteral("window_height"));
    if (w > 0 && h > 0) {
        m_window->resize(w, h);
        m_window->move(cfg.number(QStringLiteral("window_left")), cfg.number(QStringLiteral("window_top")));
    }
    m_window->setWindowState(Qt::WindowStates(cfg.number(QStringLiteral("window_state"))));
    m_wantLeft = cfg.flag(QStringLiteral("show_left_panel"));
    m_wantRight = cfg.flag(QStringLiteral("show_right_panel"));

    // Tool bars: areas, order and the break between them.
    auto area = [](int stored) {
        const auto a = Qt::ToolBarArea(stored);
        return a == Qt::LeftToolBarArea || a == Qt::RightToolBarArea || a == Qt::BottomToolBarArea
                   ? a
                   : Qt::TopToolBarArea;
    };
    const Qt::ToolBarArea mainArea = area(cfg.number(QStringLiteral("main_toolbar")));
    const Qt::ToolBarArea extraArea = area(cfg.number(QStringLiteral("extra_toolbar")));
    const bool extraFirst = cfg.flag(QStringLiteral("toolbar_first"));
    QToolBar *first = extraFirst ? m_extraToolBar : m_mainToolBar;
    QToolBar *second = extraFirst ? m_mainToolBar : m_extraToolBar;
    m_window->addToolBar(extraFirst ? extraArea : mainArea, first);
    if (cfg.flag(QStringLiteral("toolbar_break")))
        m_window->addToolBarBreak(extraFirst ? mainArea : extraArea);
    m_window->addToolBar(extraFirst ? mainArea : extraArea, second);

    if (m_actionDock) {
        m_actionDock->setVisible(cfg.flag(QStringLiteral("show_action_list")));
        const int dockArea = cfg.number(QStringLiteral("action_list_area"));
        m_window->addDockWidget(dockArea == Qt::LeftDockWidgetArea ? Qt::LeftDockWidgetArea
                                                                   : Qt::RightDockWidgetArea,
                                m_actionDock);
        const int dockWidth = cfg.number(QStringLiteral("action_list_width"));
        if (dockWidth > 0)
            m_window->resizeDocks({m_actionDock}, {dockWidth}, Qt::Horizontal);
    }
}

void QWindowLayout::save(QMugenModel &cfg) const
{
    cfg.set(QStringLiteral("show_left_panel"), m_wantLeft);
    cfg.set(QStringLiteral("show_right_panel"), m_wantRight);
    const QRect normal = m_window->normalGeometry().isValid() ? m_window->normalGeometry() : m_window->geometry();
    cfg.set(QStringLiteral("window_left"), m_window->pos().x());
    cfg.set(QStringLiteral("window_top"), m_window->pos().y());
    cfg.set(QStringLiteral("window_width"), normal.width());
    cfg.set(QStringLiteral("window_height"), normal.height());
    cfg.set(QStringLiteral("window_state"), int(m_window->windowState()));
    cfg.set(QStringLiteral("main_toolbar"), int(m_window->toolBarArea(m_mainToolBar)));
    cfg.set(QStringLiteral("extra_toolbar"), int(m_window->toolBarArea(m_extraToolBar)));
    const bool extraFirst = m_window->toolBarArea(m_extraToolBar) == m_window->toolBarArea(m_mainToolBar)
                                ? (m_extraToolBar->pos().x() + m_extraToolBar->pos().y()
                                   < m_mainToolBar->pos().x() + m_mainToolBar->pos().y())
                                : false;
    cfg.set(QStringLiteral("toolbar_first"), extraFirst);
    cfg.set(QStringLiteral("toolbar_break"), m_window->toolBarBreak(extraFirst ? m_mainToolBar : m_extraToolBar));
    if (m_actionDock) {
        cfg.set(QStringLiteral("show_action_list"), !m_actionDock->isHidden());
        cfg.set(QStringLiteral("action_list_width"), m_actionDock->width());
        cfg.set(QStringLiteral("action_list_area"), int(m_window->dockWidgetArea(m_actionDock)));
    }
}

void QWindowLayout::retranslate()
{
    m_mainToolBar->setWindowTitle(tr("Main"));
    m_extraToolBar->setWindowTitle(tr("Extra"));
}
