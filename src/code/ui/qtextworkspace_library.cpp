// The text workspace's snippets and state-controller library, and the
// repainting of every open document when the options change.
#include "qtextworkspace.h"

#include "base/qapppaths.h"
#include "base/qmugenmodel.h"
#include "code/qsctrlmanager.h"
#include "code/qsyntaxprocessor.h"
#include "code/qtextencoding.h"
#include "qtexteditor.h"
#include "scripting/qsnippetmanager.h"
#include "sctrledit.h"
#include "snippetdialog.h"
#include "shell/qappobjects.h"
#include "shell/qaskuser.h"
#include "shell/qprogress.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QListView>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QSplitter>
#include <QTextBlock>

void QTextWorkspace::buildLibrary(const QAppObjects &objects)
{
    m_snippets = objects.snippets;
    m_sctrls = objects.sctrls;
    m_colorsets = objects.colorsets;
    m_formats = objects.syntaxFormats;
    m_mugenSyntax = objects.mugenSyntax;
    if (objects.paths)
        m_userSCtrls = objects.paths->stateDir() + QStringLiteral("/sctrls");
    auto *layout = qobject_cast<QBoxLayout *>(m_widget->layout());
    if (!layout)
        return;

    // The editor shares its row with the library: the controllers above,
    // the text of the one selected below.
    auto *split = new QSplitter(Qt::Horizontal, m_widget);
    split->setObjectName(QStringLiteral("textLibrarySplit"));
    QTextEditor *editor = m_editor;
    const int editorAt = layout->indexOf(editor);
    layout->removeWidget(editor);
    split->addWidget(editor);
    m_libraryPanel = new QSplitter(Qt::Vertical, split);
    m_libraryPanel->setObjectName(QStringLiteral("sctrlPanel"));
    m_sctrlList = new QListView(m_libraryPanel);
    m_sctrlList->setObjectName(QStringLiteral("sctrlList"));
    m_sctrlList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_sctrlList->setToolTip(tr("Double click inserts the state controller at the cursor"));
    if (m_sctrls)
        m_sctrlList->setModel(m_sctrls);
    m_textBar = new QPlainTextEdit(m_libraryPanel);
    m_textBar->setObjectName(QStringLiteral("sctrlTextBar"));
    m_textBar->setReadOnly(true);
    m_textBar->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_textBar->setFont(m_editor->font());
    m_libraryPanel->addWidget(m_sctrlList);
    m_libraryPanel->addWidget(m_textBar);
    m_libraryPanel->setStretchFactor(0, 3);
    m_libraryPanel->setStretchFactor(1, 2);
    split->addWidget(m_libraryPanel);
    split->setStretchFactor(0, 1);
    split->setCollapsible(0, false);
    split->setSizes({800, 180});
    layout->insertWidget(editorAt, split, 1);
    m_libraryPanel->hide();

    // The snippets sit beside the issues.
    const int issuesAt = layout->indexOf(m_issues);
    layout->removeWidget(m_issues);
    auto *row = new QHBoxLayout;
    row->setSpacing(4);
    row->addWidget(m_issues, 3);
    m_snippetBox = new QComboBox(m_widget);
    m_snippetBox->setObjectName(QStringLiteral("textSnippets"));
    m_snippetBox->setPlaceholderText(tr("Insert snippet..."));
    m_snippetBox->setToolTip(tr("Code snippets: the one chosen is inserted at the cursor"));
    m_snippetBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_snippetBox->setMinimumContentsLength(16);
    if (m_snippets)
        m_snippetBox->setModel(m_snippets);
    m_snippetBox->setCurrentIndex(-1);
    row->addWidget(m_snippetBox, 1);
    layout->insertLayout(issuesAt, row);

    connect(m_snippetBox, qOverload<int>(&QComboBox::activated), this, &QTextWorkspace::snipActivated);
    connect(m_sctrlList, &QAbstractItemView::doubleClicked, this, &QTextWorkspace::insertSCtrl);
    if (m_sctrls) {
        connect(m_sctrlList->selectionModel(), &QItemSelectionModel::currentChanged, this,
                [this](const QModelIndex &current) { selectSCtrl(current); });
        connect(m_sctrls, &QAbstractItemModel::modelReset, this, [this] { selectSCtrl(m_sctrlList->currentIndex()); });
    }
}

void QTextWorkspace::insertCode(const QString &code)
{
    if (!m_document || m_editor->isReadOnly() || code.isEmpty())
        return;
    QString text = code;
    static const QRegularExpression mark(QStringLiteral("CURSOR"));
    const QRegularExpressionMatch m = mark.match(text);
    int after = 0;
    if (m.hasMatch()) {
        text.remove(m.capturedStart(), m.capturedLength());
        after = int(text.size()) - int(m.capturedStart());
    }
    // One edit, so one undo step, whatever the size of the code.
    m_editor->insertPlainText(text);
    QTextCursor c = m_editor->textCursor();
    c.movePosition(QTextCursor::PreviousCharacter, QTextCursor::MoveAnchor, after);
    m_editor->setTextCursor(c);
    m_editor->setFocus();
}

void QTextWorkspace::snipInsert()
{
    // The list opens on the keyboard; choosing inserts.
    if (!m_snippetBox || !m_document || m_editor->isReadOnly())
        return;
    m_snippetBox->setFocus();
    m_snippetBox->showPopup();
}

void QTextWorkspace::snipActivated(int row)
{
    if (!m_snippets || row < 0 || row >= m_snippets->count()) {
        m_snippetBox->setCurrentIndex(-1);
        return;
    }
    const QString name = m_snippets->name(row);
    m_snippetBox->setCurrentIndex(-1);
    if (!m_document || m_editor->isReadOnly())
        return;
    insertCode(askSnippetCode(*m_snippets, name, m_editor->window()));
    m_editor->setFocus();
}

void QTextWorkspace::setSCtrlPanelAllowed(bool allowed)
{
    m_sctrlAllowed = allowed;
    updateLibraryVisibility();
}

void QTextWorkspace::showSctrlListTextBar(bool on)
{
    if (m_config)
        m_config->set(QStringLiteral("show_sctrl_list"), on);
    updateLibraryVisibility();
}

void QTextWorkspace::showTextBar(bool on)
{
    if (m_config)
        m_config->set(QStringLiteral("show_text_bar"), on);
    updateLibraryVisibility();
}

void QTextWorkspace::updateLibraryVisibility()
{
    if (!m_libraryPanel)
        return;
    const bool list = m_config ? m_config->flag(QStringLiteral("show_sctrl_list"), true) : true;
    const bool bar = m_config ? m_config->flag(QStringLiteral("show_text_bar"), true) : true;
    m_libraryPanel->setVisible(m_sctrlAllowed && list);
    m_textBar->setVisible(bar);
}

void QTextWorkspace::selectSCtrl(const QModelIndex &index)
{
    const int codepage = m_config ? m_config->number(QStringLiteral("default_codepage"), 0) : 0;
    m_textBar->setPlainText(m_sctrls && index.isValid() ? m_sctrls->text(index.data().toString(), codepage) : QString());
}

void QTextWorkspace::insertSCtrl(const QModelIndex &index)
{
    if (!m_sctrls || !index.isValid() || !m_document || m_editor->isReadOnly())
        return;
    const int codepage = m_config ? m_config->number(QStringLiteral("default_codepage"), 0) : 0;
    QString text = m_sctrls->text(index.data().toString(), codepage);
    if (text.isEmpty())
        return;
    // A controller goes in whole lines: start on a fresh line, end with one.
    const QTextCursor at = m_editor->textCursor();
    if (at.positionInBlock() > 0)
        text.prepend(QLatin1Char('\n'));
    if (!text.endsWith(QLatin1Char('\n')))
        text.append(QLatin1Char('\n'));
    m_editor->insertPlainText(text);
    m_editor->setFocus();
}

bool QTextWorkspace::editSCtrl(const QString &name)
{
    if (!m_sctrls)
        return false;
    const QString file = name.isEmpty() ? QString() : m_sctrls->filePath(name);
    SCtrlEdit dialog(m_mugenSyntax, m_formats, m_editor->window());
    dialog.setCodeFont(m_editor->font());
    dialog.setWindowTitle(name.isEmpty() ? tr("New state controller") : tr("State controller %1").arg(name));
    const int codepage = m_config ? m_config->number(QStringLiteral("default_codepage"), 0) : 0;
    if (file.isEmpty())
        dialog.setText(QStringLiteral("[State ]\ntype ="));
    else
        dialog.setText(m_sctrls->text(name, codepage));
    const QString folder = m_userSCtrls.isEmpty() ? m_sctrls->folder() : m_userSCtrls;
    dialog.setSaveFolder(folder, name);
    if (QAskUser::exec(&dialog) != QDialog::Accepted || dialog.savedFile().isEmpty())
        return false;
    // What the user saves into their own folder joins the library.
    const QString savedIn = QFileInfo(dialog.savedFile()).absolutePath();
    if (!m_sctrls->folders().contains(savedIn) && savedIn == QFileInfo(folder).absoluteFilePath())
        m_sctrls->setFolders(QStringList{savedIn} + m_sctrls->folders());
    m_sctrls->refresh();
    const int row = int(m_sctrls->names().indexOf(QFileInfo(dialog.savedFile()).completeBaseName()));
    if (row >= 0)
        m_sctrlList->setCurrentIndex(m_sctrls->index(row));
    return true;
}

void QTextWorkspace::sCtrlNew()
{
    editSCtrl(QString());
}

void QTextWorkspace::sCtrlEdit()
{
    const QModelIndex index = m_sctrlList->currentIndex();
    if (index.isValid())
        editSCtrl(index.data().toString());
}

void QTextWorkspace::sCtrlDel()
{
    const QModelIndex index = m_sctrlList->currentIndex();
    if (!m_sctrls || !index.isValid())
        return;
    const QString file = m_sctrls->filePath(index.data().toString());
    if (m_config && m_config->flag(QStringLiteral("confirm_delete"), true)
        && !QAskUser::question(m_editor->window(), tr("Delete"),
                               tr("Do you really want to delete the state controller?")))
        return;
    QFile f(file);
    if (!f.remove()) {
        QAskUser::critical(m_editor->window(), tr("Delete"),
                           tr("Cannot delete %1:\n%2").arg(QDir::toNativeSeparators(file), f.errorString()));
        return;
    }
    m_sctrls->refresh();
}

void QTextWorkspace::rehighlightAll(QWidget *parent)
{
    const QList<QSyntaxTextEditor *> docs = m_documentSource ? m_documentSource() : QList<QSyntaxTextEditor *>();
    if (docs.isEmpty())
        return;
    QProgress progress(tr("Applying new options..."), parent);
    bool allow = true;
    for (int i = 0; i < docs.size() && allow; ++i) {
        progress.progress(uint(i), uint(docs.size()), allow);
        if (QSyntaxProcessor *p = docs.at(i)->processor())
            p->rehighlight();
    }
    progress.progress(uint(docs.size()), uint(docs.size()), allow);
}
