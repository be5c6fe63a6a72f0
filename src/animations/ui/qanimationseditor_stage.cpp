// The animations editor: collision boxes drawn and edited on the stage.
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

// ------------------------------------------------------------------ the stage

void QAnimationsEditor::stageAxisChanged(QRenderMode mode, const QPoint &value)
{
    QAnimations *s = store();
    if (mode != AnimationMode || !s || m_frame < 0 || m_playing)
        return;
    AnimFrameData data = s->frame(m_anim, m_frame);
    if (data.x == value.x() && data.y == value.y())
        return;
    data.x = value.x();
    data.y = value.y();
    beginEdit();
    s->setFrame(m_anim, m_frame, data);
    commit(tr("Move frame"), MergeOffset);
    m_settingWidgets = true;
    emit setFrameX(data.x);
    emit setFrameY(data.y);
    m_settingWidgets = false;
}

void QAnimationsEditor::stageBoxesChanged()
{
    QAnimations *s = store();
    QSprRender *r = renderer();
    if (!s || !r || m_frame < 0)
        return;
    beginEdit();
    QAnimationFrame::storeBoxes(*s, m_anim, m_frame, r->frame());
    commit(tr("Edit CLSN boxes"));
}

void QAnimationsEditor::clsnAdd1Changed(bool on)
{
    QAction *other = m_actions.value(QStringLiteral("air_clsn_add2"));
    if (on && other && other->isChecked()) {
        const QSignalBlocker block(other);
        other->setChecked(false);
    }
    if (QSprRender *r = renderer())
        r->setAdding(on, Clsn1);
}

void QAnimationsEditor::clsnAdd2Changed(bool on)
{
    QAction *other = m_actions.value(QStringLiteral("air_clsn_add1"));
    if (on && other && other->isChecked()) {
        const QSignalBlocker block(other);
        other->setChecked(false);
    }
    if (QSprRender *r = renderer())
        r->setAdding(on, Clsn2);
}

void QAnimationsEditor::clsnModeExit()
{
    for (const char *key : {"air_clsn_add1", "air_clsn_add2"}) {
        if (QAction *a = m_actions.value(QString::fromLatin1(key))) {
            const QSignalBlocker block(a);
            a->setChecked(false);
        }
    }
    refreshText();
}

void QAnimationsEditor::clsnDel()
{
    if (QSprRender *r = renderer())
        r->deleteSelected();
}

void QAnimationsEditor::clsnSwType()
{
    if (QSprRender *r = renderer())
        r->swapSelected(false);
}

void QAnimationsEditor::clsnSwDef()
{
    if (QSprRender *r = renderer())
        r->swapSelected(true);
}

void QAnimationsEditor::clsnDelAll()
{
    QAnimations *s = store();
    if (!s || m_frame < 0)
        return;
    beginEdit();
    for (int t = 0; t < 4; ++t)
        s->clsnList(m_anim, m_frame, t)->clear();
    s->clsnChanged();
    commit(tr("Delete all CLSN boxes"));
    showFrame(m_frame);
}

void QAnimationsEditor::clsnDelAllAnim()
{
    QAnimations *s = store();
    if (!s || m_anim < 0)
        return;
    beginEdit();
    for (int i = 0; i < s->frameCount(m_anim); ++i)
        for (int t = 0; t < 4; ++t)
            s->clsnList(m_anim, i, t)->clear();
    s->clsnChanged();
    commit(tr("Delete all CLSN boxes of the animation"));
    showFrame(m_frame);
}

void QAnimationsEditor::clsnPrev()
{
    QAnimations *s = store();
    if (!s || m_frame <= 0)
        return;
    beginEdit();
    for (int t = 0; t < 4; ++t)
        *s->clsnList(m_anim, m_frame, t) = *s->clsnList(m_anim, m_frame - 1, t);
    s->clsnChanged();
    commit(tr("Copy the CLSN boxes of the previous frame"));
    showFrame(m_frame);
}

void QAnimationsEditor::clsnAllInst()
{
    QAnimations *s = store();
    if (!s || m_frame < 0)
        return;
    if (QAskUser::message(dialogParent(), QMessageBox::Question, tr("Confirmation"),
                          tr("Do you really want to replicate the CLSNs of the current frame in all instances of "
                             "it? All existing CLSNs in these frames will be replaced."),
                          QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        != QMessageBox::Yes)
        return;
    const AnimFrameData current = s->frame(m_anim, m_frame);
    QList<QRect> lists[4];
    for (int t = 0; t < 4; ++t)
        lists[t] = *s->clsnList(m_anim, m_frame, t);
    beginEdit();
    for (int a = 0; a < s->count(); ++a) {
        for (int i = 0; i < s->frameCount(a); ++i) {
            if (a == m_anim && i == m_frame)
                continue;
            const AnimFrameData f = s->frame(a, i);
            if (f.group != current.group || f.number != current.number)
                continue;
            for (int t = 0; t < 4; ++t)
                *s->clsnList(a, i, t) = lists[t];
        }
    }
    s->clsnChanged();
    commit(tr("Replicate CLSN boxes"));
}
