#include "qeditorregistry.h"

#include "qaction2.h"
#include "qactionmanager.h"
#include "base/qlifecyclelog.h"
#include "qinterfacecontrol.h"
#include "qinterfaceeditor.h"
#include "qinterfaceextraeditor.h"
#include "qinterfaceworkspace.h"
#include "qpanelwidget.h"
#include "qwindowlayout.h"

#include <QActionGroup>
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

QEditorRegistry::QEditorRegistry(QWindowLayout &layout, QActionManager &actions, QObject *parent)
    : QObject(parent)
    , m_layout(layout)
    , m_actions(actions)
{
    m_editorGroup = new QActionGroup(this);
    m_editorGroup->setExclusive(true);
    connect(m_editorGroup, &QActionGroup::triggered, this, qOverload<QAction *>(&QEditorRegistry::editorSwitch));
    m_toolbarEntries.insert(QStringLiteral("main"), QToolBarEntry());
    m_toolbarEntries.insert(QStringLiteral("extra"), QToolBarEntry());
}

QEditorRegistry::~QEditorRegistry()
{
    clear();
}

void QEditorRegistry::clear()
{
    setCurrentProject(nullptr);
    if (QInterfaceEditor *e = editor(m_currentEditor)) {
        disconnectEditor(e);
        e->deactivate();
    }
    m_controls.clear();
    m_workspaces.clear();
    m_editors.clear();
    m_extraEditors.clear();
}

void QEditorRegistry::addWorkspace(std::unique_ptr<QInterfaceWorkspace> workspace)
{
    if (!workspace)
        return;
    const int id = workspace->id();
    if (QWidget *w = workspace->widget()) {
        m_layout.centralStack()->insertWidget(placeOf(m_workspacePages, id), w);
        m_workspacePages.insert(id, w);
    }
    m_toolbarEntries[workspace->name()];
    m_workspaces[id] = std::move(workspace);
}

void QEditorRegistry::addEditor(std::unique_ptr<QInterfaceEditor> editor)
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
    m_layout.leftStack()->insertWidget(placeOf(m_editorPages, id), page);
    m_editorPanels.insert(e->tag(), page);
    m_editorPages.insert(id, page);

    connect(e, &QInterfaceEditor::modifiedChanged, this, &QEditorRegistry::updateEditorName);
    e->setupPanel();
}

void QEditorRegistry::addExtraEditor(std::unique_ptr<QInterfaceExtraEditor> editor)
{
    if (!editor)
        return;
    QInterfaceExtraEditor *x = editor.get();
    const int id = x->id();
    m_extraEditors[id] = std::move(editor);
    auto *page = new QWidget;
    page->setObjectName(x->name());
    m_layout.rightStack()->insertWidget(placeOf(m_extraPages, id), page);
    m_extraPanels.insert(x->name(), page);
    m_extraPages.insert(id, page);
    m_toolbarEntries[x->name()];
    connect(x, &QInterfaceExtraEditor::modifiedChanged, this, &QEditorRegistry::updateExtraEditorName);
}

void QEditorRegistry::addControl(const QString &name, std::unique_ptr<QInterfaceControl> control)
{
    if (control)
        m_controls[name] = std::move(control);
}

void QEditorRegistry::setControlEnabled(const QString &name, bool enabled)
{
    if (QInterfaceControl *c = control(name))
        c->setEnabled(enabled);
}

QInterfaceControl *QEditorRegistry::control(const QString &name) const
{
    const auto it = m_controls.find(name);
    return it == m_controls.end() ? nullptr : it->second.get();
}

QList<QInterfaceControl *> QEditorRegistry::controls() const
{
    QList<QInterfaceControl *> list;
    for (const auto &[name, c] : m_controls)
        list.append(c.get());
    return list;
}

QInterfaceEditor *QEditorRegistry::editor(int id) const
{
    const auto it = m_editors.find(id);
    return it == m_editors.end() ? nullptr : it->second.get();
}

QInterfaceWorkspace *QEditorRegistry::workspace(int id) const
{
    const auto it = m_workspaces.find(id);
    return it == m_workspaces.end() ? nullptr : it->second.get();
}

QInterfaceExtraEditor *QEditorRegistry::extraEditor(int id) const
{
    const auto it = m_extraEditors.find(id);
    return it == m_extraEditors.end() ? nullptr : it->second.get();
}

void QEditorRegistry::connectEditor(QInterfaceEditor *e)
{
    // Unique connections: a refresh of the current editor must never double
    // its edit commands.
    const auto unique = Qt::UniqueConnection;
    connect(this, &QEditorRegistry::editUndo, e, &QInterfaceEditor::undo, unique);
    connect(this, &QEditorRegistry::editRedo, e, &QInterfaceEditor::redo, unique);
    connect(this, &QEditorRegistry::editCut, e, &QInterfaceEditor::cut, unique);
    connect(this, &QEditorRegistry::editCopy, e, &QInterfaceEditor::copy, unique);
    connect(this, &QEditorRegistry::editPaste, e, &QInterfaceEditor::paste, unique);
    connect(this, &QEditorRegistry::editFind, e, &QInterfaceEditor::find, unique);
    connect(this, &QEditorRegistry::editReplace, e, &QInterfaceEditor::replace, unique);
}

void QEditorRegistry::disconnectEditor(QInterfaceEditor *e)
{
    disconnect(this, &QEditorRegistry::editUndo, e, &QInterfaceEditor::undo);
    disconnect(this, &QEditorRegistry::editRedo, e, &QInterfaceEditor::redo);
    disconnect(this, &QEditorRegistry::editCut, e, &QInterfaceEditor::cut);
    disconnect(this, &QEditorRegistry::editCopy, e, &QInterfaceEditor::copy);
    disconnect(this, &QEditorRegistry::editPaste, e, &QInterfaceEditor::paste);
    disconnect(this, &QEditorRegistry::editFind, e, &QInterfaceEditor::find);
    disconnect(this, &QEditorRegistry::editReplace, e, &QInterfaceEditor::replace);
}

void QEditorRegistry::editorSwitch(QAction *action)
{
    if (!action)
        return;
    bool ok = false;
    const int id = action->objectName().toInt(&ok);
    editorSwitch(ok ? id : NoEditor);
}

void QEditorRegistry::editorSwitch(int id)
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
        m_layout.mainToolBar()->clear();
        m_layout.extraToolBar()->clear();
        m_layout.editorToolBar()->clear();
        m_layout.editorToolBar()->hide();
        m_layout.leftPanel()->hide();
        m_layout.rightPanel()->hide();
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
            m_layout.centralStack()->setCurrentWidget(page);
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
        fillToolBar(m_layout.mainToolBar(), {mainEntry, own});
        fillToolBar(m_layout.editorToolBar(), {});
    } else {
        fillToolBar(m_layout.mainToolBar(), {mainEntry});
        fillToolBar(m_layout.editorToolBar(), {own});
    }
    fillToolBar(m_layout.extraToolBar(), {extraEntry});
    m_layout.editorToolBar()->setVisible(!m_layout.editorToolBar()->actions().isEmpty());

    if (QWidget *page = m_editorPages.value(id))
        m_layout.leftStack()->setCurrentWidget(page);
    showPanels();
    updateEditorName();
}

void QEditorRegistry::showPanels()
{
    QInterfaceEditor *e = editor(m_currentEditor);
    const int flags = e ? e->layoutFlags() : 0;
    m_layout.leftPanel()->setVisible(e && m_layout.leftPanelWanted() && (flags & QInterfaceEditor::LeftPanel));
    m_layout.rightPanel()->setVisible(e && m_layout.rightPanelWanted() && (flags & QInterfaceEditor::RightPanel)
                             && m_currentExtra < NoExtraEditor);
}

void QEditorRegistry::fillToolBar(QToolBar *bar, const QList<const QToolBarEntry *> &entries)
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

void QEditorRegistry::setExtraEditor(int id)
{
    QInterfaceExtraEditor *target = extraEditor(id);
    if (id == m_currentExtra && target)
        return;
    if (QInterfaceExtraEditor *old = extraEditor(m_currentExtra))
        old->deactivate();
    m_currentExtra = target ? id : NoExtraEditor;
    if (target) {
        if (QWidget *page = m_extraPages.value(id))
            m_layout.rightStack()->setCurrentWidget(page);
        target->activate(true);
    }
    showPanels();
    updateExtraEditorName();
}

void QEditorRegistry::setCurrentProject(QProject *project)
{
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

void QEditorRegistry::applyProjectType(int projectType)
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

void QEditorRegistry::updateEditorName()
{
    QInterfaceEditor *e = editor(m_currentEditor);
    if (!e) {
        m_layout.leftPanel()->setTitle(QString());
        return;
    }
    QString title = m_actions.translation().text(e->captionId());
    if (e->isModified())
        title += QLatin1Char('*');
    m_layout.leftPanel()->setTitle(title);
}

void QEditorRegistry::updateExtraEditorName()
{
    QInterfaceExtraEditor *x = extraEditor(m_currentExtra);
    m_layout.rightPanel()->setTitle(x ? m_actions.translation().text(x->captionId()) : QString());
}

bool QEditorRegistry::canCloseProject(QProject *project)
{
    // Every editor is asked, even after a refusal: each may have its own
    // question for the user.
    bool ok = true;
    for (auto &[id, e] : m_editors)
        ok = e->canClose(project) && ok;
    return ok;
}

void QEditorRegistry::applyConfig()
{
    updateEditorName();
    updateExtraEditorName();
    for (auto &[id, x] : m_extraEditors)
        x->applyConfig();
    for (auto &[id, e] : m_editors)
        e->applyConfig();
    for (auto &[id, w] : m_workspaces)
        w->applyConfig();
    editorSwitch(m_currentEditor);
}

void QEditorRegistry::retranslate(const QTranslationUnit &tu)
{
    for (auto &[name, c] : m_controls)
        c->retranslate(tu);
    for (auto &[id, x] : m_extraEditors)
        x->retranslate(tu);
    for (auto &[id, e] : m_editors)
        e->retranslate(tu);
    for (auto &[id, w] : m_workspaces)
        w->retranslate(tu);
    updateEditorName();
    updateExtraEditorName();
}

void QEditorRegistry::editorNew()
{
    if (QInterfaceEditor *e = editor(m_currentEditor))
        e->clear();
}

void QEditorRegistry::editorOpen()
{
    if (QInterfaceEditor *e = editor(m_currentEditor))
        e->open();
}

void QEditorRegistry::editorSave()
{
    if (QInterfaceEditor *e = editor(m_currentEditor))
        e->save();
}

void QEditorRegistry::editorSaveAs()
{
    if (QInterfaceEditor *e = editor(m_currentEditor))
        e->saveAs();
}
