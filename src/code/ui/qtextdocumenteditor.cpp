#include "qtextdocumenteditor.h"

#include "base/qmugenmodel.h"
#include "code/qsyntaxhierarchy.h"
#include "code/qsyntaxtexteditor.h"
#include "code/qtexteditorblockdata.h"
#include "project/qproject.h"
#include "qtexteditor.h"
#include "qtextfind.h"
#include "qtextworkspace.h"
#include "shell/qappobjects.h"
#include "shell/qaskuser.h"
#include "shell/qeditorregistry.h"
#include "shell/qwindowlayout.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QTextDocument>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

QTextDocumentEditor::QTextDocumentEditor(const QAppObjects &objects, QEditorRegistry &registry,
                                         QTextWorkspace *workspace, QObject *parent)
    : QInterfaceEditor(parent)
    , m_config(objects.config)
    , m_registry(registry)
    , m_workspace(workspace)
{
}

void QTextDocumentEditor::activate(bool reload)
{
    QInterfaceEditor::activate(reload);
    if (reload)
        showCurrent();
}

void QTextDocumentEditor::deactivate()
{
    if (m_active) {
        detachDocument();
        for (int field : {CursorField, EncodingField, ErrorsField})
            m_registry.layout().setStatusText(field, QString());
    }
    QInterfaceEditor::deactivate();
}

void QTextDocumentEditor::setProject(QProject *project)
{
    if (project != m_project)
        detachDocument();
    QInterfaceEditor::setProject(project);
}

bool QTextDocumentEditor::canClose(QProject *project)
{
    if (!project)
        return true;
    const QList<QSyntaxTextEditor *> docs = documentsOf(project);
    const bool modified = std::any_of(docs.begin(), docs.end(), [](const QSyntaxTextEditor *d) { return d->isModified(); });
    return !modified || QAskUser::question(window(), tr("Close project"), discardQuestion());
}

void QTextDocumentEditor::detachDocument()
{
    for (const QMetaObject::Connection &c : std::as_const(m_connections))
        disconnect(c);
    m_connections.clear();
    m_shown = nullptr;
    if (m_outline)
        m_outline->setModel(nullptr);
    m_expanded.clear();
}

void QTextDocumentEditor::showCurrent()
{
    detachDocument();
    if (!m_active || !m_workspace)
        return;
    QSyntaxTextEditor *doc = document();
    m_shown = doc;
    m_workspace->showDocument(doc);
    QTextEditor *view = m_workspace->editor();
    m_connections << connect(view, &QTextEditor::cursorChanged, this, &QTextDocumentEditor::refreshStatus)
                  << connect(m_workspace, &QTextWorkspace::issuesUpdated, this, &QTextDocumentEditor::refreshStatus)
                  << connect(view, &QTextEditor::currentLineChanged, this, &QTextDocumentEditor::currLineChanged);
    showOutline(doc);
    if (doc) {
        m_connections << connect(doc->document(), &QTextDocument::modificationChanged, this,
                                 &QInterfaceEditor::modifiedChanged)
                      << connect(doc, &QSyntaxTextEditor::encodingChanged, this, &QTextDocumentEditor::refreshStatus)
                      << connect(doc->document(), &QTextDocument::blockCountChanged, this,
                                 &QTextDocumentEditor::refreshStatus);
    }
    refreshStatus();
    emit modifiedChanged();
}

void QTextDocumentEditor::refreshStatus()
{
    if (!m_active)
        return;
    QWindowLayout &layout = m_registry.layout();
    const QSyntaxTextEditor *doc = m_shown;
    if (!doc) {
        for (int field : {CursorField, EncodingField, ErrorsField})
            layout.setStatusText(field, QString());
        return;
    }
    const QTextCursor c = m_workspace->editor()->textCursor();
    layout.setStatusText(CursorField, tr("Line: %1, Column: %2, Line count: %3")
                                          .arg(c.blockNumber() + 1)
                                          .arg(c.positionInBlock() + 1)
                                          .arg(doc->document()->lineCount()));
    layout.setStatusText(EncodingField, tr("Encoding: %1").arg(QString::fromLatin1(doc->encoding())));
    layout.setStatusText(ErrorsField, errorStatusText());
}

QString QTextDocumentEditor::errorStatusText() const
{
    const int errors = m_shown ? QTextWorkspace::issueCount(m_shown->document(), BlockIssue::Error) : 0;
    return tr("Syntax error count: %1").arg(errors);
}

void QTextDocumentEditor::undo()
{
    if (m_shown)
        m_workspace->editor()->undo();
}

void QTextDocumentEditor::redo()
{
    if (m_shown)
        m_workspace->editor()->redo();
}

void QTextDocumentEditor::cut()
{
    if (m_shown)
        m_workspace->editor()->cut();
}

void QTextDocumentEditor::copy()
{
    m_workspace->editor()->copy();
}

void QTextDocumentEditor::paste()
{
    if (m_shown)
        m_workspace->editor()->paste();
}

void QTextDocumentEditor::find(const QString &text, const QQuickFindOptions &options)
{
    if (m_shown && !text.isEmpty() && !QTextFind::find(m_workspace->editor(), text, options))
        QAskUser::message(window(), QMessageBox::Information, tr("Find"), tr("No text found!"));
}

void QTextDocumentEditor::replace(const QString &text, const QString &with, const QQuickFindOptions &options,
                                  bool all)
{
    if (!m_shown || text.isEmpty())
        return;
    QTextEditor *view = m_workspace->editor();
    const bool found = all ? QTextFind::replaceAll(view, text, with, options) > 0
                           : QTextFind::replace(view, text, with, options);
    if (!found)
        QAskUser::message(window(), QMessageBox::Information, tr("Replace"), tr("No text found!"));
}

QWidget *QTextDocumentEditor::window() const
{
    return m_workspace && m_workspace->editor() ? m_workspace->editor()->window() : nullptr;
}

bool QTextDocumentEditor::confirmDiscard(const QString &question) const
{
    const QSyntaxTextEditor *doc = document();
    return !doc || !doc->isModified() || QAskUser::question(window(), tr("Discard changes"), question);
}

bool QTextDocumentEditor::loadInto(QSyntaxTextEditor *doc, const QString &file) const
{
    const int codepage = m_config ? m_config->number(QStringLiteral("default_codepage")) : 0;
    if (doc->loadFile(file, codepage))
        return true;
    QAskUser::critical(window(), tr("Open"),
                       tr("%1 can't be read: %2").arg(QDir::toNativeSeparators(file), doc->errorString()));
    return false;
}

bool QTextDocumentEditor::saveTo(QSyntaxTextEditor *doc, const QString &file) const
{
    if (doc->saveFile(file, false, false))
        return true;
    QAskUser::critical(window(), tr("Save"),
                       tr("%1 can't be saved: %2").arg(QDir::toNativeSeparators(file), doc->errorString()));
    return false;
}

QString QTextDocumentEditor::askOpen(const QString &caption, const QString &filter) const
{
    const QString folder = m_project ? m_project->path(QStringLiteral("proj_path")) : QString();
    const QString file = QAskUser::openFileName(window(), caption, folder, filter);
    if (!file.isEmpty() && m_project)
        m_project->setPath(QStringLiteral("proj_path"), QFileInfo(file).absolutePath());
    return file;
}

QString QTextDocumentEditor::askSave(const QString &caption, const QString &filter, const QString &current) const
{
    QString folder = m_project ? m_project->path(QStringLiteral("proj_path")) : QString();
    if (!current.isEmpty())
        folder = current;
    const QString file = QAskUser::saveFileName(window(), caption, folder, filter);
    if (!file.isEmpty() && m_project)
        m_project->setPath(QStringLiteral("proj_path"), QFileInfo(file).absolutePath());
    return file;
}

bool QTextDocumentEditor::isModified() const
{
    if (!m_project)
        return false;
    const QList<QSyntaxTextEditor *> docs = documentsOf(m_project);
    return std::any_of(docs.begin(), docs.end(), [](const QSyntaxTextEditor *d) { return d && d->isModified(); });
}

void QTextDocumentEditor::clear()
{
    QSyntaxTextEditor *doc = document();
    if (doc && confirmDiscard(discardQuestion()))
        doc->clear();
}

void QTextDocumentEditor::open()
{
    QSyntaxTextEditor *doc = document();
    if (!doc || !confirmDiscard(discardQuestion()))
        return;
    const QString file = askOpen(openCaption(), QProject::fileFilter(fileKind()));
    if (!file.isEmpty())
        loadInto(doc, file);
}

void QTextDocumentEditor::save()
{
    QSyntaxTextEditor *doc = document();
    if (!doc)
        return;
    if (doc->fileName().isEmpty())
        saveAs();
    else
        saveTo(doc, doc->fileName());
}

void QTextDocumentEditor::saveAs()
{
    QSyntaxTextEditor *doc = document();
    if (!doc)
        return;
    const QString file = askSave(saveAsCaption(), QProject::fileFilter(fileKind()), doc->fileName());
    if (!file.isEmpty())
        saveTo(doc, file);
}

// ---------------------------------------------------------------- outline

void QTextDocumentEditor::setupPanel()
{
    QWidget *page = m_registry.editorPanel(tag());
    if (!page || m_outline)
        return;
    // The preset places its buttons on the page by position; the outline
    // takes the room below them (see fitOutline()).
    auto *pageLayout = new QVBoxLayout(page);
    pageLayout->setContentsMargins(2, 2, 2, 2);
    m_outlinePane = new QWidget(page);
    m_outlinePane->setObjectName(QStringLiteral("outlinePane"));
    pageLayout->addWidget(m_outlinePane);
    auto *layout = new QVBoxLayout(m_outlinePane);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    addOutlineControls(layout);
    m_outline = new QTreeView(m_outlinePane);
    m_outline->setObjectName(QStringLiteral("outline"));
    m_outline->setHeaderHidden(true);
    m_outline->setUniformRowHeights(true);
    m_outline->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_outline->setExpandsOnDoubleClick(false);
    layout->addWidget(m_outline, 1);
    connect(m_outline, &QTreeView::clicked, this, &QTextDocumentEditor::viewSelItem);
    connect(m_outline, &QTreeView::activated, this, &QTextDocumentEditor::viewSelItem);
}

void QTextDocumentEditor::fitOutline()
{
    QWidget *page = m_outlinePane ? m_outlinePane->parentWidget() : nullptr;
    if (!page || !page->layout())
        return;
    int top = 2;
    for (QObject *child : page->children()) {
        auto *w = qobject_cast<QWidget *>(child);
        if (w && w != m_outlinePane && !w->isHidden() && !w->isWindow())
            top = qMax(top, w->geometry().bottom() + 6);
    }
    page->layout()->setContentsMargins(2, top, 2, 2);
}

void QTextDocumentEditor::showOutline(QSyntaxTextEditor *doc)
{
    if (!m_outline)
        return;
    fitOutline();
    QSyntaxHierarchy *model = doc ? doc->hierarchy() : nullptr;
    if (model)
        model->setView(uint(m_outlineView));
    // Each model gets a selection model of its own; the old one would linger.
    QItemSelectionModel *oldSelection = m_outline->selectionModel();
    m_outline->setModel(model);
    if (oldSelection && oldSelection != m_outline->selectionModel())
        oldSelection->deleteLater();
    m_expanded.clear();
    if (!doc || !model)
        return;
    m_connections << connect(doc, &QSyntaxTextEditor::hierarchyUpdated, this, &QTextDocumentEditor::updated)
                  << connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
                             [this](const QModelIndex &parent) {
                                 if (!parent.isValid())
                                     rememberExpanded();
                             });
    currLineChanged(m_workspace->editor()->textCursor().blockNumber());
}

void QTextDocumentEditor::setOutlineView(int view)
{
    if (view == m_outlineView || (view != 1 && view != 2))
        return;
    m_outlineView = view;
    if (m_shown && m_shown->hierarchy()) {
        m_shown->hierarchy()->setView(uint(view));
        currLineChanged(m_workspace->editor()->textCursor().blockNumber());
    }
}

void QTextDocumentEditor::rememberExpanded()
{
    m_expanded.clear();
    const QAbstractItemModel *model = m_outline ? m_outline->model() : nullptr;
    if (!model)
        return;
    // Two levels hold every row that has children.
    for (int r = 0; r < model->rowCount(); ++r) {
        const QModelIndex top = model->index(r, 0);
        if (!m_outline->isExpanded(top))
            continue;
        const QString title = top.data().toString();
        m_expanded << title;
        for (int c = 0; c < model->rowCount(top); ++c) {
            const QModelIndex child = model->index(c, 0, top);
            if (m_outline->isExpanded(child))
                m_expanded << title + QLatin1Char('/') + child.data().toString();
        }
    }
}

void QTextDocumentEditor::updated()
{
    const QAbstractItemModel *model = m_outline ? m_outline->model() : nullptr;
    if (!model)
        return;
    if (!m_expanded.isEmpty()) {
        for (int r = 0; r < model->rowCount(); ++r) {
            const QModelIndex top = model->index(r, 0);
            const QString title = top.data().toString();
            if (!m_expanded.contains(title))
                continue;
            m_outline->expand(top);
            for (int c = 0; c < model->rowCount(top); ++c) {
                const QModelIndex child = model->index(c, 0, top);
                if (m_expanded.contains(title + QLatin1Char('/') + child.data().toString()))
                    m_outline->expand(child);
            }
        }
    }
    currLineChanged(m_workspace->editor()->textCursor().blockNumber());
}

void QTextDocumentEditor::currLineChanged(int line)
{
    auto *model = m_outline ? qobject_cast<QSyntaxHierarchy *>(m_outline->model()) : nullptr;
    if (!model || line < 0)
        return;
    const QModelIndex node = model->nodeAtLine(uint(line));
    if (!node.isValid()) {
        if (model->view() != 1)
            m_outline->clearSelection();
        return;
    }
    if (m_config && m_config->flag(QStringLiteral("auto_expand_tree"), false)) {
        m_outline->collapseAll();
        m_outline->expand(node);
    }
    m_outline->setCurrentIndex(node);
    m_outline->scrollTo(node);
}

void QTextDocumentEditor::viewSelItem(const QModelIndex &index)
{
    const int line = index.isValid() ? index.data(QSyntaxHierarchy::LineRole).toInt() : -1;
    if (!m_shown || line < 0 || !m_workspace)
        return;
    m_workspace->editor()->gotoLine(uint(line), 0);
}
