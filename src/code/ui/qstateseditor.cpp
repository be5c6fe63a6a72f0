#include "qstateseditor.h"

#include "code/qsyntaxtexteditor.h"
#include "project/qproject.h"
#include "qtextworkspace.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QTabBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

QSyntaxTextEditor *QStatesEditor::document() const
{
    return m_project ? m_project->state(m_current) : nullptr;
}

QList<QSyntaxTextEditor *> QStatesEditor::documentsOf(QProject *project) const
{
    QList<QSyntaxTextEditor *> docs;
    for (int i = 0; project && i < project->statesCount(); ++i)
        docs << project->state(i);
    return docs;
}

void QStatesEditor::activate(bool reload)
{
    if (reload && m_workspace) {
        QTabBar *tabs = m_workspace->tabBar();
        connect(tabs, &QTabBar::currentChanged, this, &QStatesEditor::tabChanged, Qt::UniqueConnection);
        fillTabs();
        tabs->show();
        // Only a real activation takes the shared workspace: a project switch
        // refreshes every editor, current or not.
        m_workspace->setSCtrlPanelAllowed(true);
    }
    QTextDocumentEditor::activate(reload);
}

void QStatesEditor::deactivate()
{
    if (m_active && m_workspace) {
        QTabBar *tabs = m_workspace->tabBar();
        disconnect(tabs, &QTabBar::currentChanged, this, &QStatesEditor::tabChanged);
        tabs->hide();
        m_workspace->setSCtrlPanelAllowed(false);
    }
    QTextDocumentEditor::deactivate();
}

void QStatesEditor::setProject(QProject *project)
{
    if (project != m_project)
        m_current = -1;
    QTextDocumentEditor::setProject(project);
}

void QStatesEditor::fillTabs()
{
    QTabBar *tabs = m_workspace->tabBar();
    const int count = m_project ? m_project->statesCount() : 0;
    if (m_current >= count || (m_current < 0 && count > 0))
        m_current = count > 0 ? 0 : -1;
    m_filling = true;
    while (tabs->count() > 0)
        tabs->removeTab(0);
    for (int i = 0; i < count; ++i) {
        const QSyntaxTextEditor *doc = m_project->state(i);
        const QString file = doc->fileName();
        tabs->addTab(tr("States %1").arg(file.isEmpty() ? QString::number(i + 1) : QFileInfo(file).fileName()));
        tabs->setTabToolTip(i, QDir::toNativeSeparators(file));
    }
    tabs->setCurrentIndex(m_current);
    m_filling = false;
}

void QStatesEditor::tabChanged(int index)
{
    if (m_filling || index == m_current)
        return;
    m_current = index;
    showCurrent();
}

void QStatesEditor::setCurrent(int index)
{
    if (m_workspace && m_active)
        m_workspace->tabBar()->setCurrentIndex(index);
    else
        m_current = index;
}

void QStatesEditor::clear()
{
    if (!m_project)
        return;
    m_project->addState();
    m_current = m_project->statesCount() - 1;
    if (m_active) {
        fillTabs();
        showCurrent();
    }
}

void QStatesEditor::open()
{
    if (!m_project)
        return;
    const QString file = askOpen(openCaption(), QProject::fileFilter(fileKind()));
    if (file.isEmpty())
        return;
    QSyntaxTextEditor *doc = m_project->addState();
    if (!loadInto(doc, file)) {
        m_project->removeState(m_project->statesCount() - 1);
        return;
    }
    doc->setObjectName(QFileInfo(file).fileName());
    m_current = m_project->statesCount() - 1;
    if (m_active) {
        fillTabs();
        showCurrent();
    }
}

void QStatesEditor::saveAs()
{
    QSyntaxTextEditor *doc = document();
    if (!doc)
        return;
    const QString file = askSave(saveAsCaption(), QProject::fileFilter(fileKind()), doc->fileName());
    if (file.isEmpty() || !saveTo(doc, file))
        return;
    doc->setObjectName(QFileInfo(file).fileName());
    if (m_active)
        fillTabs();
}

void QStatesEditor::addOutlineControls(QVBoxLayout *panel)
{
    auto *row = new QHBoxLayout;
    row->setSpacing(0);
    auto *group = new QButtonGroup(panel);
    for (QToolButton **button : {&m_sectionsButton, &m_variablesButton}) {
        *button = new QToolButton;
        (*button)->setCheckable(true);
        (*button)->setAutoRaise(true);
        (*button)->setToolButtonStyle(Qt::ToolButtonTextOnly);
        (*button)->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        group->addButton(*button);
        row->addWidget(*button);
    }
    m_sectionsButton->setObjectName(QStringLiteral("outlineSections"));
    m_sectionsButton->setText(tr("Sections"));
    m_sectionsButton->setToolTip(tr("The statedefs and their states"));
    m_sectionsButton->setChecked(true);
    m_variablesButton->setObjectName(QStringLiteral("outlineVariables"));
    m_variablesButton->setText(tr("Variables"));
    m_variablesButton->setToolTip(tr("The states that set each var and fvar"));
    connect(m_variablesButton, &QToolButton::toggled, this, &QStatesEditor::varList);
    panel->addLayout(row);
}

void QStatesEditor::varList(bool on)
{
    setOutlineView(on ? 1 : 2);
    if (m_variablesButton && m_variablesButton->isChecked() != on)
        (on ? m_variablesButton : m_sectionsButton)->setChecked(true);
}
