// The animations editor: play, the text view, files, GIF and the clipboard.
#include "qanimationseditor.h"
#include "qanimationseditor_p.h"

#include "animations/qanimations.h"
#include "animations/ui/qanimspriteworkspace.h"
#include "base/qmugenmodel.h"
#include "project/qanimationsfile.h"
#include "project/qproject.h"
#include "render/qanimationframe.h"
#include "render/qgifwriter.h"
#include "render/qsprrender.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qappobjects.h"
#include "shell/qaskuser.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterfacecontrolaction.h"
#include "shell/qinterfacecontrolwidget.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSpinBox>
#include <QTextBlock>
#include <QTextCursor>
#include <QTimer>
#include <QToolButton>
#include <QUndoStack>
#include <QVBoxLayout>
using namespace AnimEditor;

// ------------------------------------------------------------------ play

void QAnimationsEditor::setPlayActions(bool playing)
{
    for (const auto &[key, on] : {std::pair{"air_play", playing}, std::pair{"air_stop", !playing}}) {
        if (QAction *a = m_actions.value(QString::fromLatin1(key))) {
            const QSignalBlocker block(a);
            a->setChecked(on);
        }
    }
}

void QAnimationsEditor::playChanged(bool on)
{
    QAnimations *s = store();
    if (!on) {
        stopChanged(true);
        return;
    }
    if (!s || m_anim < 0 || s->frameCount(m_anim) == 0 || m_playing) {
        setPlayActions(m_playing);
        return;
    }
    if (m_textApply->isActive()) {
        m_textApply->stop();
        updateFromText(m_text->toPlainText());
    }
    m_playing = true;
    setPlayActions(true);
    emit frameEnabled(false);
    emit transEnabled(false);
    m_playback.setAction(s->action(m_anim));
    // Play starts from the frame shown.
    m_playStart = m_clock() - m_playback.startOf(qMax(0, m_frame));
    playTimeOut();
}

void QAnimationsEditor::playTimeOut()
{
    if (!m_playing)
        return;
    const qint64 elapsed = m_clock() - m_playStart;
    const QAnimPlayback::Position p = m_playback.at(elapsed);
    if (p.frame != m_frame)
        showFrame(p.frame);
    if (p.stopped) {
        stopChanged(true);
        return;
    }
    m_timer->start(int(qBound(qint64(0), p.nextMs - elapsed, qint64(1) << 30)));
}

void QAnimationsEditor::stopChanged(bool on)
{
    if (!on) {
        setPlayActions(m_playing);
        return;
    }
    m_timer->stop();
    const bool was = m_playing;
    m_playing = false;
    setPlayActions(false);
    if (was && m_frame >= 0) {
        emit frameEnabled(true);
        if (QAnimations *s = store())
            emit transEnabled(s->frame(m_anim, m_frame).trans == AnimFrame::TransAdd);
    }
}

void QAnimationsEditor::forceStop()
{
    if (m_playing)
        stopChanged(true);
}

// ------------------------------------------------------------------ text

void QAnimationsEditor::updateFromText(const QString &text)
{
    QAnimations *s = store();
    if (!s)
        return;
    m_textApply->stop();
    if (m_fullText) {
        // The whole file: read into a store of its own, then taken over as one step.
        QAnimations parsed;
        parsed.setMessages(s->messages());
        parsed.loadText(text, s->fileName(), false);
        beginEdit();
        s->readStream(imageOf(parsed));
        commit(tr("Edit as text"), MergeText, false);
        showAction(qMin(qMax(0, m_anim), s->count() - 1), qMax(0, m_frame));
        return;
    }
    if (m_anim < 0)
        return;
    beginEdit();
    s->updateFromText(m_anim, text);
    commit(tr("Edit as text"), MergeText, false);
    // The text stays as typed; the list and the stage show what it says now.
    const bool was = m_textUpdating;
    m_textUpdating = true;
    showAction(m_anim, m_frame);
    m_textUpdating = was;
}

void QAnimationsEditor::editText()
{
    QAnimations *s = store();
    if (!s || m_anim < 0)
        return;
    forceStop();
    QDialog dialog(dialogParent());
    dialog.setObjectName(QStringLiteral("AnimEditTxt"));
    dialog.setWindowTitle(tr("Edit animation as text"));
    dialog.resize(640, 480);
    auto *layout = new QVBoxLayout(&dialog);
    QPlainTextEdit *edit = m_textViews ? m_textViews(&dialog) : new QPlainTextEdit(&dialog);
    edit->setParent(&dialog);
    edit->setObjectName(QStringLiteral("text"));
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    edit->setPlainText(s->actionText(m_anim));
    layout->addWidget(edit);
    auto *buttons = new QDialogButtonBox(&dialog);
    QPushButton *apply = buttons->addButton(tr("Apply"), QDialogButtonBox::ApplyRole);
    apply->setObjectName(QStringLiteral("apply"));
    buttons->addButton(tr("Close"), QDialogButtonBox::RejectRole);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    connect(apply, &QPushButton::clicked, this, [this, edit] {
        const bool full = m_fullText;
        m_fullText = false;
        updateFromText(edit->toPlainText());
        m_fullText = full;
        refreshText();
    });
    QAskUser::exec(&dialog);
}

void QAnimationsEditor::txtModeChanged(bool full)
{
    if (m_textApply->isActive())
        updateFromText(m_text->toPlainText());
    forceStop();
    m_fullText = full;
    refreshText();
    // The stage is shared: only the editor in front may place its view there.
    if (isActive())
        attachViews();
}

// ------------------------------------------------------------------ files and clipboard

bool QAnimationsEditor::stopAndConfirmDiscard()
{
    forceStop();
    const QAnimations *s = store();
    return !s || !s->isModified()
           || QAskUser::question(dialogParent(), tr("Confirmation"),
                                 tr("Do you really want to discard the changes made in the animations?"));
}

void QAnimationsEditor::clear()
{
    QAnimations *s = store();
    if (!s)
        return;
    if (!stopAndConfirmDiscard())
        return;
    s->clear();
    if (QUndoStack *stack = undoStack())
        stack->clear();
    m_stale.insert(m_project);
    showAction(-1);
}

void QAnimationsEditor::open()
{
    QAnimations *s = store();
    if (!s)
        return;
    if (!stopAndConfirmDiscard())
        return;
    const QString folder = m_config ? m_config->map.value(QStringLiteral("proj_path")).toString() : QString();
    const QString path = QAskUser::openFileName(dialogParent(), tr("Open animations"), folder,
                                                tr("Animations (*.air);;All files (*)"));
    if (path.isEmpty())
        return;
    QString error;
    const int codepage = m_config ? m_config->map.value(QStringLiteral("default_codepage")).toInt() : 0;
    if (!QAnimationsFile::load(*s, path, codepage, false, &error)) {
        QAskUser::critical(dialogParent(), tr("Open animations"), tr("Cannot open '%1': %2").arg(path, error));
        return;
    }
    if (QUndoStack *stack = undoStack())
        stack->clear();
    m_stale.insert(m_project);
    showAction(s->count() ? 0 : -1);
}

void QAnimationsEditor::save()
{
    QAnimations *s = store();
    if (!s)
        return;
    if (s->path().isEmpty() || !QFileInfo(s->path()).exists()) {
        saveAs();
        return;
    }
    QString error;
    if (!QAnimationsFile::save(*s, s->path(), false, false, &error))
        QAskUser::critical(dialogParent(), tr("Save animations"), tr("Cannot save '%1': %2").arg(s->path(), error));
    emit modifiedChanged();
}

void QAnimationsEditor::saveAs()
{
    QAnimations *s = store();
    if (!s)
        return;
    const QString folder = m_config ? m_config->map.value(QStringLiteral("proj_path")).toString() : QString();
    const QString path = QAskUser::saveFileName(dialogParent(), tr("Save animations as"), folder,
                                                tr("Animations (*.air)"));
    if (path.isEmpty())
        return;
    QString error;
    if (!QAnimationsFile::save(*s, path, false, false, &error)) {
        QAskUser::critical(dialogParent(), tr("Save animations"), tr("Cannot save '%1': %2").arg(path, error));
        return;
    }
    if (m_config)
        m_config->map.insert(QStringLiteral("proj_path"), QFileInfo(path).absolutePath());
    emit modifiedChanged();
}

void QAnimationsEditor::saveGIF()
{
    QAnimations *s = store();
    if (!s || m_anim < 0)
        return;
    if (s->frameCount(m_anim) == 0) {
        QAskUser::warning(dialogParent(), tr("Warning"), tr("You can't save an empty animation as GIF."));
        return;
    }
    QString folder = m_config ? m_config->map.value(QStringLiteral("gif_path")).toString() : QString();
    if (folder.isEmpty() && m_config)
        folder = m_config->map.value(QStringLiteral("proj_path")).toString();
    const QString path = QAskUser::saveFileName(dialogParent(), tr("Save as animated GIF"), folder,
                                                tr("Graphics Interchange Format (*.gif)"));
    if (path.isEmpty())
        return;
    if (m_config)
        m_config->map.insert(QStringLiteral("gif_path"), QFileInfo(path).absolutePath());
    GifWriter gif;
    QString why;
    if (!AnimationGif::build(*s, m_project->sprites(), m_anim, &gif, &why)) {
        QAskUser::warning(dialogParent(), tr("Warning"), tr("Cannot save '%1': %2.").arg(path, why));
        return;
    }
    QString error;
    if (!gif.save(path, &error))
        QAskUser::critical(dialogParent(), tr("Save as animated GIF"), tr("Cannot save '%1': %2").arg(path, error));
}

void QAnimationsEditor::copy()
{
    QAnimations *s = store();
    if (!s)
        return;
    QSprRender *r = renderer();
    QAnimSpriteWorkspace *ws = workspace();
    if (r && ws && r->anySelected())
        ws->copyClsn();
    else if (m_anim >= 0)
        s->copyAction(m_anim);
}

void QAnimationsEditor::cut()
{
    QAnimations *s = store();
    if (!s)
        return;
    QSprRender *r = renderer();
    if (r && r->anySelected()) {
        copy();
        r->deleteSelected();
        return;
    }
    if (m_anim < 0)
        return;
    s->copyAction(m_anim);
    const int row = m_anim;
    beginEdit();
    s->remove(row);
    commit(tr("Cut animation"), NoMerge, false);
    showAction(qMin(row, s->count() - 1));
}

void QAnimationsEditor::paste()
{
    QAnimations *s = store();
    if (!s)
        return;
    const QString clsn = QAnimSpriteWorkspace::clipboardClsn();
    if (!clsn.isEmpty() && m_frame >= 0) {
        beginEdit();
        s->addClsnFromText(m_anim, m_frame, clsn);
        commit(tr("Paste CLSN boxes"));
        showFrame(m_frame);
        return;
    }
    const int at = m_anim + 1;
    beginEdit();
    const bool pasted = s->pasteAction(at);
    commit(tr("Paste animation"), NoMerge, false);
    if (pasted)
        showAction(at);
}

void QAnimationsEditor::find(const QString &text, const QQuickFindOptions &)
{
    QAnimations *s = store();
    if (!s || s->isEmpty() || text.isEmpty())
        return;
    static const QRegularExpression plainNumber(QStringLiteral("^(\\d{1,5})$"));
    const bool byNumber = plainNumber.match(text).hasMatch();
    const int count = s->count();
    for (int step = 1; step <= count; ++step) {
        const int row = (qMax(0, m_anim) + step) % count;
        const AnimAction *a = s->action(row);
        const bool hit = byNumber ? a->number == text.toInt() || a->name.contains(text, Qt::CaseInsensitive)
                                  : a->name.contains(text, Qt::CaseInsensitive)
                                        || QString::number(a->number).contains(text);
        if (hit) {
            forceStop();
            showAction(row);
            return;
        }
    }
    QAskUser::message(dialogParent(), QMessageBox::Information, tr("Find"), tr("No animation found!"));
}

void QAnimationsEditor::replace(const QString &, const QString &, const QQuickFindOptions &, bool)
{
    // Animations have nothing to replace in: the text view has its own find.
}
