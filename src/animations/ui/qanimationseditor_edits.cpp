// The animations editor: actions and frames added, removed, aligned and imported.
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

// ------------------------------------------------------------------ actions

void QAnimationsEditor::add()
{
    QAnimations *s = store();
    if (!s)
        return;
    forceStop();
    beginEdit();
    s->insert(s->count());
    commit(tr("Add animation"), NoMerge, false);
    showAction(s->count() - 1);
}

void QAnimationsEditor::del()
{
    QAnimations *s = store();
    if (!s || m_anim < 0)
        return;
    forceStop();
    if (m_config && m_config->flag(QStringLiteral("confirm_delete"), true)
        && !QAskUser::question(dialogParent(), tr("Confirmation"), tr("Do you really want to delete the animation?")))
        return;
    const int row = m_anim;
    beginEdit();
    s->remove(row);
    commit(tr("Delete animation"), NoMerge, false);
    showAction(qMin(row, s->count() - 1));
}

void QAnimationsEditor::duplicate()
{
    QAnimations *s = store();
    if (!s || m_anim < 0)
        return;
    forceStop();
    int number = -1;
    if (QAskUser::question(dialogParent(), tr("Duplicate"), tr("Do you want to define a new number?"))) {
        QInputDialog dialog(dialogParent());
        dialog.setWindowTitle(tr("Duplicate"));
        dialog.setLabelText(tr("Number:"));
        dialog.setInputMode(QInputDialog::IntInput);
        dialog.setIntRange(0, 2147483647);
        dialog.setIntValue(s->action(m_anim)->number);
        if (QAskUser::exec(&dialog) != QDialog::Accepted)
            return;
        number = dialog.intValue();
    }
    beginEdit();
    s->duplicate(m_anim, number);
    commit(tr("Duplicate animation"), NoMerge, false);
    showAction(m_anim + 1);
}

void QAnimationsEditor::numChanged(int value)
{
    QAnimations *s = store();
    if (m_settingWidgets || !s || m_anim < 0 || s->action(m_anim)->number == value)
        return;
    beginEdit();
    s->setAction(m_anim, s->action(m_anim)->name, value);
    commit(tr("Number of the animation"), MergeNumber);
    m_posText = QStringLiteral("%1 / %2").arg(m_anim + 1).arg(s->count());
}

void QAnimationsEditor::nameChanged(const QString &value)
{
    QAnimations *s = store();
    if (m_settingWidgets || !s || m_anim < 0 || s->action(m_anim)->name == value)
        return;
    beginEdit();
    s->setAction(m_anim, value, s->action(m_anim)->number);
    commit(tr("Name of the animation"), MergeName);
}

// ------------------------------------------------------------------ frames

void QAnimationsEditor::frameAdd()
{
    QAnimations *s = store();
    if (!s || m_anim < 0)
        return;
    forceStop();
    beginEdit();
    const int at = m_frame + 1;
    s->insertFrame(m_anim, at);
    commit(tr("Add frame"));
    showAction(m_anim, at);
}

void QAnimationsEditor::frameDel()
{
    QAnimations *s = store();
    if (!s || m_frame < 0)
        return;
    forceStop();
    if (m_config && m_config->flag(QStringLiteral("confirm_delete"), true)
        && !QAskUser::question(dialogParent(), tr("Confirmation"), tr("Do you really want to delete the frame?")))
        return;
    const int at = m_frame;
    beginEdit();
    s->removeFrame(m_anim, at);
    commit(tr("Delete frame"));
    showAction(m_anim, at);
}

void QAnimationsEditor::applyToFollowingFrames(const std::function<void(AnimFrameData &, const AnimFrameData &)> &copy,
                                               const QString &text)
{
    QAnimations *s = store();
    if (!s || m_frame < 0)
        return;
    const AnimFrameData current = s->frame(m_anim, m_frame);
    beginEdit();
    for (int i = m_frame + 1; i < s->frameCount(m_anim); ++i) {
        AnimFrameData f = s->frame(m_anim, i);
        copy(f, current);
        s->setFrame(m_anim, i, f);
    }
    commit(text);
    showFrame(m_frame);
}

void QAnimationsEditor::frameAllTime()
{
    applyToFollowingFrames([](AnimFrameData &f, const AnimFrameData &c) { f.time = c.time; },
                           tr("Apply time to the next frames"));
}

void QAnimationsEditor::frameAllFlip()
{
    applyToFollowingFrames([](AnimFrameData &f, const AnimFrameData &c) { f.flip = c.flip; },
                           tr("Apply flip to the next frames"));
}

void QAnimationsEditor::frameAllTrans()
{
    applyToFollowingFrames(
        [](AnimFrameData &f, const AnimFrameData &c) {
            f.trans = c.trans;
            f.src = c.src;
            f.dst = c.dst;
        },
        tr("Apply transparency to the next frames"));
}

void QAnimationsEditor::align(const QList<int> &actions, int mode, int x, int y)
{
    QAnimations *s = store();
    if (!s || actions.isEmpty())
        return;
    beginEdit();
    for (int a : actions) {
        for (int i = 0; i < s->frameCount(a); ++i) {
            if (mode == AlignOffset) {
                AnimFrameData f = s->frame(a, i);
                f.x += x;
                f.y += y;
                s->setFrame(a, i, f);
                continue;
            }
            for (int t = 0; t < 4; ++t) {
                for (QRect &r : *s->clsnList(a, i, t)) {
                    // Corners as written: x1, y1 top-left, x2, y2 bottom-right.
                    int x1 = r.left(), y1 = r.top(), x2 = r.right(), y2 = r.bottom();
                    switch (mode) {
                    case AlignClsnOffset: x1 += x; x2 += x; y1 += y; y2 += y; break;
                    case AlignClsnTopLeft: x1 += x; y1 += y; break;
                    case AlignClsnBottomRight: x2 += x; y2 += y; break;
                    case AlignClsnScale:
                        x1 = x1 * x / 100; x2 = x2 * x / 100; y1 = y1 * y / 100; y2 = y2 * y / 100;
                        break;
                    default: break;
                    }
                    r.setCoords(x1, y1, x2, y2);
                }
            }
        }
    }
    s->clsnChanged();
    commit(tr("Alignment tool"));
    showFrame(m_frame);
}

void QAnimationsEditor::frameAlign()
{
    QAnimations *s = store();
    if (!s || s->isEmpty())
        return;
    forceStop();
    QDialog dialog(dialogParent());
    dialog.setObjectName(QStringLiteral("AnimAlign"));
    dialog.setWindowTitle(tr("Alignment tool"));
    auto *layout = new QVBoxLayout(&dialog);
    auto *list = new QListWidget(&dialog);
    list->setObjectName(QStringLiteral("actions"));
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    for (int i = 0; i < s->count(); ++i)
        list->addItem(s->data(s->index(i)).toString());
    if (m_anim >= 0)
        list->item(m_anim)->setSelected(true);
    layout->addWidget(list);
    auto *form = new QFormLayout;
    auto *mode = new QComboBox(&dialog);
    mode->setObjectName(QStringLiteral("mode"));
    for (const char *text : kAlignModes)
        mode->addItem(tr(text));
    auto *xVal = new QSpinBox(&dialog);
    xVal->setObjectName(QStringLiteral("xVal"));
    auto *yVal = new QSpinBox(&dialog);
    yVal->setObjectName(QStringLiteral("yVal"));
    for (QSpinBox *spin : {xVal, yVal})
        spin->setRange(-99999, 99999);
    form->addRow(tr("Mode:"), mode);
    form->addRow(tr("X:"), xVal);
    form->addRow(tr("Y:"), yVal);
    layout->addLayout(form);
    auto *selection = new QHBoxLayout;
    auto *clearSel = new QPushButton(tr("Clear selection"), &dialog);
    auto *inverse = new QPushButton(tr("Inverse"), &dialog);
    auto *all = new QPushButton(tr("Select all"), &dialog);
    selection->addWidget(clearSel);
    selection->addWidget(inverse);
    selection->addWidget(all);
    layout->addLayout(selection);
    auto *buttons = new QDialogButtonBox(&dialog);
    QPushButton *apply = buttons->addButton(tr("Apply"), QDialogButtonBox::ApplyRole);
    apply->setObjectName(QStringLiteral("apply"));
    buttons->addButton(tr("Close"), QDialogButtonBox::RejectRole);
    layout->addWidget(buttons);
    connect(clearSel, &QPushButton::clicked, list, &QListWidget::clearSelection);
    connect(all, &QPushButton::clicked, list, &QListWidget::selectAll);
    connect(inverse, &QPushButton::clicked, list, [list] {
        for (int i = 0; i < list->count(); ++i)
            list->item(i)->setSelected(!list->item(i)->isSelected());
    });
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    connect(apply, &QPushButton::clicked, this, [this, list, mode, xVal, yVal] {
        QList<int> rows;
        for (int i = 0; i < list->count(); ++i)
            if (list->item(i)->isSelected())
                rows << i;
        align(rows, mode->currentIndex(), xVal->value(), yVal->value());
    });
    QAskUser::exec(&dialog);
}

int QAnimationsEditor::importFrom(const QAnimations &source, const QList<int> &rows)
{
    QAnimations *s = store();
    if (!s || s == &source)
        return 0;
    forceStop();
    int imported = 0;
    beginEdit();
    for (int row : rows) {
        const AnimAction *a = source.action(row);
        if (!a)
            continue;
        // Through the store's own edits, so that the copy is built like any new action.
        const int at = s->count();
        s->insert(at);
        s->setAction(at, a->name, a->number);
        s->clearFrames(at);
        for (int i = 0; i < a->frames.size(); ++i) {
            s->addFrame(at);
            s->setFrame(at, i, source.frame(row, i));
            for (int t = 0; t < 4; ++t)
                *s->clsnList(at, i, t) = *source.clsnList(row, i, t);
        }
        ++imported;
    }
    if (imported)
        s->clsnChanged();
    commit(tr("Import animations"), NoMerge, false);
    if (imported)
        showAction(s->count() - imported);
    return imported;
}

void QAnimationsEditor::projImport()
{
    QAnimations *s = store();
    if (!s || !m_openProjects)
        return;
    forceStop();
    const QList<QProject *> projects = m_openProjects();
    QDialog dialog(dialogParent());
    dialog.setObjectName(QStringLiteral("TabImport"));
    dialog.setWindowTitle(tr("Animation"));
    auto *layout = new QVBoxLayout(&dialog);
    auto *from = new QComboBox(&dialog);
    from->setObjectName(QStringLiteral("project"));
    for (QProject *p : projects)
        from->addItem(p->name());
    auto *list = new QListWidget(&dialog);
    list->setObjectName(QStringLiteral("actions"));
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    const auto fill = [list, projects](int index) {
        list->clear();
        QAnimations *source = index >= 0 && index < projects.size() ? projects.at(index)->animations() : nullptr;
        for (int i = 0; source && i < source->count(); ++i)
            list->addItem(source->data(source->index(i)).toString());
    };
    connect(from, &QComboBox::currentIndexChanged, list, fill);
    // Start on another project than this one when there is one.
    from->setCurrentIndex(projects.size() > 1 && projects.first() == m_project ? 1 : 0);
    fill(from->currentIndex());
    layout->addWidget(from);
    layout->addWidget(list);
    layout->addWidget(QAskUser::okCancelButtons(&dialog));
    if (QAskUser::exec(&dialog) != QDialog::Accepted || from->currentIndex() < 0)
        return;
    QProject *source = projects.value(from->currentIndex());
    if (!source)
        return;
    if (source == m_project) {
        QAskUser::warning(dialogParent(), tr("Warning"), tr("You can't import from the destination project!"));
        return;
    }
    QList<int> rows;
    for (int i = 0; i < list->count(); ++i)
        if (list->item(i)->isSelected())
            rows << i;
    const int n = importFrom(*source->animations(), rows);
    QAskUser::message(dialogParent(), QMessageBox::Information, tr("Import"),
                      n ? tr("%n animation(s) were imported!", nullptr, n) : tr("No animation imported!"));
}
