// Registration of editors, workspaces, extra editors and controls, and the
// switching between them.
#include "qinterface.h"

#include "shell/qaction2.h"
#include "base/qlifecyclelog.h"
#include "qinterfacecontrol.h"
#include "qinterfaceeditor.h"
#include "qinterfaceextraeditor.h"
#include "qinterfaceworkspace.h"
#include "qpanelwidget.h"

#include <QActionGroup>
#include <QDockWidget>
#include <QMainWindow>
#include <QMenu>
#include <QStackedLayout>
#include <QToolBar>

namespace {
// Pages stand in the order of the numbers of what they belong to, whatever the
// order of registration: the place of a new one is the count of lower numbers.
template <typename Map> int placeOf(const Map &registered, int id)
{
    int place = 0;
    for (auto it = registered.cbegin(); it != registered.cend() && it.key() < id; ++it)
        ++place;
    return place;
}
} // namespace

void QInterface::addWorkspace(std::unique_ptr<QInterfaceWorkspace> workspace)
{
    if (!workspace)
        return;
    const int id = workspace->id();
    if (QWidget *w = workspace->widget()) {
        m_centralStack->insertWidget(placeOf(m_workspacePages, id), w);
        m_workspacePages.insert(id, w);
    }
    m_toolbarEntries[workspace->name()];
    m_workspaces[id] = std::move(workspace);
}

void QInterface::addEditor(std::unique_ptr<QInterfaceEditor> editor)
{
    if (!editor)
        return;
    QInterfaceEditor *e = editor.get();
    const int id = e->id();
    m_editors[id] = std::move(editor);

    QAction2 *a = m_actions.addAction({id, -1}, e->name(), e->captionId(), true);
    a->setObjectName(QString::number(id));
    m_editorGroup->addAction(a);
    m_editorActions.insert(id, a);

    QToolBarEntry entry;
    entry.iconSize = 16;
    m_toolbarEntries.insert(e->tag(), entry);

    auto *page = new QWidget;
    page->setObjectName(e->tag());
    m_leftStack->insertWidget(placeOf(m_editorPages, id), page);
    m_editorPanels.insert(e->tag(), page);
    m_editorPages.insert(id, page);

    connect(e, &QInterfaceEditor::modifiedChanged, this, &QInterface::updateEditorName);
    e->setupPanel();
}

void QInterface::addExtraEditor(std::unique_ptr<QInterfaceExtraEditor> editor)
{
    if (!editor)
        return;
    QInterfaceExtraEditor *x = editor.get();
    const int id = x->id();
    m_extraEditors[id] = std::move(editor);
    auto *page = new QWidget;
    page->setObjectName(x->name());
    m_rightStack->insertWidget(placeOf(m_extraPages, id), page);
    m_extraPanels.insert(x->name(), page);
    m_extraPages.insert(id, page);
    m_toolbarEntries[x->name()];
    connect(x, &QInterfaceExtraEditor::modifiedChanged, this, &QInterface::updateExtraEditorName);
}

void QInterface::addControl(const QString &name, std::unique_ptr<QInterfaceControl> control)
{
    if (control)
        m_controls[name] = std::move(control);
}

void QInterface::setControlEnabled(const QString &name, bool enabled)
{
    if (QInterfaceControl *c = control(name))
        c->setEnabled(enabled);
}

QInterfaceControl *QInterface::control(const QString &name) const
{
    const auto it = m_controls.find(name);
    return it == m_controls.end() ? nullptr : it->second.get();
}

QList<QInterfaceControl *> QInterface::controls() const
{
    QList<QInterfaceControl *> list;
    for (const auto &[name, c] : m_controls)
        list.append(c.get());
    return list;
}

QInterfaceEditor *QInterface::editor(int id) const
{
    const auto it = m_editors.find(id);
    return it == m_editors.end() ? nullptr : it->second.get();
}

QInterfaceWorkspace *QInterface::workspace(int id) const
{
    const auto it = m_workspaces.find(id);
    return it == m_workspaces.end() ? nullptr : it->second.get();
}

QInterfaceExtraEditor *QInterface::extraEditor(int id) const
{
    const auto it = m_extraEditors.find(id);
    return it == m_extraEditors.end() ? nullptr : it->second.get();
}

void QInterface::connectEditor(QInterfaceEditor *e)
{
    // Unique connections: a refresh of the current editor must never double
    // its edit commands.
    const auto unique = Qt::UniqueConnection;
    connect(this, &QInterface::editUndo, e, &QInterfaceEditor::undo, unique);
    connect(this, &QInterface::editRedo, e, &QInterfaceEditor::redo, unique);
    connect(this, &QInterface::editCut, e, &QInterfaceEditor::cut, unique);
    connect(this, &QInterface::editCopy, e, &QInterfaceEditor::copy, unique);
    connect(this, &QInterface::editPaste, e, &QInterfaceEditor::paste, unique);
    connect(this, &QInterface::editFind, e, &QInterfaceEditor::find, unique);
    connect(this, &QInterface::editReplace, e, &QInterfaceEditor::replace, unique);
}

void QInterface::disconnectEditor(QInterfaceEditor *e)
{
    disconnect(this, &QInterface::editUndo, e, &QInterfaceEditor::undo);
    disconnect(this, &QInterface::editRedo, e, &QInterfaceEditor::redo);
    disconnect(this, &QInterface::editCut, e, &QInterfaceEditor::cut);
    disconnect(this, &QInterface::editCopy, e, &QInterfaceEditor::copy);
    disconnect(this, &QInterface::editPaste, e, &QInterfaceEditor::paste);
    disconnect(this, &QInterface::editFind, e, &QInterfaceEditor::find);
    disconnect(this, &QInterface::editReplace, e, &QInterfaceEditor::replace);
}

void QInterface::editorSwitch(QAction *action)
{
    if (!action)
        return;
    bool ok = false;
    const int id = action->objectName().toInt(&ok);
    editorSwitch(ok ? id : NoEditor);
}

void QInterface::editorSwitch(int id)
{
    QInterfaceEditor *current = editor(m_currentEditor);
    QInterfaceEditor *target = editor(id);
    if (current && current != target) {
        disconnectEditor(current);
        current->deactivate();
    }
    if (!target) {
        m_currentEditor = NoEditor;
        m_actions.setScope(NoEditor);
        m_mainToolBar->clear();
        m_extraToolBar->clear();
        m_editorToolBar->clear();
        m_editorToolBar->hide();
        m_leftPanel->hide();
        m_rightPanel->hide();
        setExtraEditor(NoExtraEditor);
        return;
    }
    connectEditor(target);
    m_currentEditor = id;
    m_actions.setScope(id);
    if (QAction *a = m_editorActions.value(id))
        a->setChecked(true);

    target->activate(true);

    const int ws = target->workspaceId();
    if (ws != m_currentWorkspace) {
        if (QInterfaceWorkspace *old = workspace(m_currentWorkspace))
            old->deactivate();
        if (QWidget *page = m_workspacePages.value(ws))
            m_centralStack->setCurrentWidget(page);
        m_currentWorkspace = ws;
        if (QInterfaceWorkspace *w = workspace(ws))
            w->activate();
    }

    // With bit 0 the editor's buttons join the main toolbar; otherwise they
    // stand in the editor's own bar below the workspace.
    const int flags = target->layoutFlags();
    const QToolBarEntry *mainEntry = &m_toolbarEntries[QStringLiteral("main")];
    const QToolBarEntry *extraEntry = &m_toolbarEntries[QStringLiteral("extra")];
    const QToolBarEntry *own = &m_toolbarEntries[target->tag()];
    if (flags & QInterfaceEditor::MainToolbarButtons) {
        fillToolBar(m_mainToolBar, {mainEntry, own});
        fillToolBar(m_editorToolBar, {});
    } else {
        fillToolBar(m_mainToolBar, {mainEntry});
        fillToolBar(m_editorToolBar, {own});
    }
    fillToolBar(m_extraToolBar, {extraEntry});
    m_editorToolBar->setVisible(!m_editorToolBar->actions().isEmpty());

    if (QWidget *page = m_editorPages.value(id))
        m_leftStack->setCurrentWidget(page);
    showPanels();
    updateEditorName();
}

void QInterface::showPanels()
{
    QInterfaceEditor *e = editor(m_currentEditor);
    const int flags = e ? e->layoutFlags() : 0;
    m_leftPanel->setVisible(e && m_showLeftPanel && (flags & QInterfaceEditor::LeftPanel));
    m_rightPanel->setVisible(e && m_showRightPanel && (flags & QInterfaceEditor::RightPanel)
                             && m_currentExtra < NoExtraEditor);
}

void QInterface::fillToolBar(QToolBar *bar, const QList<const QToolBarEntry *> &entries)
{
    bar->clear();
    bool first = true;
    for (const QToolBarEntry *entry : entries) {
        if (!entry || entry->actions.isEmpty())
            continue;
        if (!first)
            bar->addSeparator();
        first = false;
        bar->setIconSize(QSize(entry->iconSize, entry->iconSize));
        for (const QPointer<QAction> &a : entry->actions) {
            if (a)
                bar->addAction(a);
            else
                bar->addSeparator();
        }
    }
}

void QInterface::setExtraEditor(int id)
{
    QInterfaceExtraEditor *target = extraEditor(id);
    if (id == m_currentExtra && target)
        return;
    if (QInterfaceExtraEditor *old = extraEditor(m_currentExtra))
        old->deactivate();
    m_currentExtra = target ? id : NoExtraEditor;
    if (target) {
        if (QWidget *page = m_extraPages.value(id))
            m_rightStack->setCurrentWidget(page);
        target->activate(true);
    }
    showPanels();
    updateExtraEditorName();
}

void QInterface::setCurrentProject(QProject *project)
{
    m_currentProject = project;
    for (auto &[id, x] : m_extraEditors) {
        const bool current = id == m_currentExtra;
        if (current)
            x->deactivate();
        x->setProject(project);
        if (current)
            x->activate(true);
    }
    if (QInterfaceEditor *current = editor(m_currentEditor)) {
        disconnectEditor(current);
        current->deactivate();
    }
    for (auto &[id, e] : m_editors) {
        e->deactivate();
        e->setProject(project);
        e->activate(false);
    }
    for (auto &[id, w] : m_workspaces) {
        const bool current = id == m_currentWorkspace;
        if (current)
            w->deactivate();
        w->setProject(project);
        if (current)
            w->activate();
    }
    if (QInterfaceEditor *current = editor(m_currentEditor)) {
        connectEditor(current);
        current->activate(true);
    }
}

void QInterface::applyProjectType(int projectType)
{
    for (auto &[id, e] : m_editors) {
        const bool visible = (projectType & e->projectTypes()) != 0;
        if (QAction *a = m_editorActions.value(id))
            a->setVisible(visible);
        if (QMenu *m = e->menu())
            m->menuAction()->setVisible(visible);
    }
    QAction *current = m_editorActions.value(m_currentEditor);
    if (current && current->isVisible())
        return;
    for (auto it = m_editorActions.constBegin(); it != m_editorActions.constEnd(); ++it) {
        if (it.value()->isVisible()) {
            editorSwitch(it.key());
            return;
        }
    }
}

void QInterface::updateEditorName()
{
    QInterfaceEditor *e = editor(m_currentEditor);
    if (!e) {
        m_leftPanel->setTitle(QString());
        return;
    }
    QString title = m_actions.translation().text(e->captionId());
    if (e->isModified())
        title += QLatin1Char('*');
    m_leftPanel->setTitle(title);
}

void QInterface::updateExtraEditorName()
{
    QInterfaceExtraEditor *x = extraEditor(m_currentExtra);
    m_rightPanel->setTitle(x ? m_actions.translation().text(x->captionId()) : QString());
}
