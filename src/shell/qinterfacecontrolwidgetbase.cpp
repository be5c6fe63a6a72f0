#include "qinterfacecontrolwidgetbase.h"

#include "shell/qtranslationunit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QSpinBox>
#include <QToolButton>
#include <QTreeView>

QInterfaceControlWidgetBase::QInterfaceControlWidgetBase(int type, int captionId,
                                                         const QInterfaceControlOptions *options)
    : m_type(type)
    , m_captionId(captionId)
{
    if (options)
        m_options = *options;
}

QWidget *QInterfaceControlWidgetBase::build(QWidget *custom, QObject *owner, const char *slot,
                                            const char *signal, const QTranslationUnit &tu)
{
    QWidget *w = nullptr;
    const char *changed = nullptr; // the widget's signal towards the owner
    const char *setter = nullptr;  // the widget's slot driven by the owner
    switch (m_type) {
    case ToolButton:
        w = new QToolButton;
        changed = SIGNAL(clicked());
        setter = SLOT(click());
        break;
    case Label:
        w = new QLabel;
        setter = SLOT(setText(QString));
        break;
    case ScrollBar: {
        auto *bar = new QScrollBar(Qt::Horizontal);
        bar->setFocusPolicy(Qt::WheelFocus);
        w = bar;
        changed = SIGNAL(valueChanged(int));
        setter = SLOT(setValue(int));
        break;
    }
    case LineEdit:
        w = new QLineEdit;
        changed = SIGNAL(textChanged(QString));
        setter = SLOT(setText(QString));
        break;
    case SpinBox: {
        auto *spin = new QSpinBox;
        spin->setRange(int(m_options.minimum), int(m_options.maximum));
        w = spin;
        changed = SIGNAL(valueChanged(int));
        setter = SLOT(setValue(int));
        break;
    }
    case DoubleSpinBox: {
        auto *spin = new QDoubleSpinBox;
        spin->setDecimals(4);
        spin->setRange(m_options.minimum, m_options.maximum);
        spin->setSingleStep(m_options.step);
        w = spin;
        changed = SIGNAL(valueChanged(double));
        setter = SLOT(setValue(double));
        break;
    }
    case CheckBox:
        w = new QCheckBox;
        changed = SIGNAL(toggled(bool));
        setter = SLOT(setChecked(bool));
        break;
    case ComboBox:
    case ComboBox2:
        w = new QComboBox;
        changed = SIGNAL(currentIndexChanged(int));
        setter = SLOT(setCurrentIndex(int));
        break;
    case ListView: {
        auto *view = new QListView;
        if (m_options.model)
            view->setModel(m_options.model);
        view->setSelectionBehavior(m_options.selectionBehavior);
        view->setSelectionMode(m_options.selectionMode);
        w = view;
        break;
    }
    case TreeView:
        w = new QTreeView;
        break;
    case Palette:
        w = custom;
        if (w)
            changed = SIGNAL(changed());
        break;
    case Line: {
        auto *line = new QFrame;
        line->setFrameShape(QFrame::HLine);
        line->setFrameShadow(QFrame::Sunken);
        w = line;
        break;
    }
    default:
        break;
    }
    if (!w)
        return nullptr;
    if (custom && w != custom)
        delete custom;
    if (owner && slot && changed)
        QObject::connect(w, changed, owner, slot);
    if (owner && signal && setter)
        QObject::connect(owner, signal, w, setter);
    retranslateWidget(w, tu);
    w->hide();
    return w;
}

void QInterfaceControlWidgetBase::retranslateWidget(QWidget *w, const QTranslationUnit &tu) const
{
    if (!w)
        return;
    const QString caption = tu.text(m_captionId);
    if (auto *b = qobject_cast<QToolButton *>(w)) {
        b->setText(caption);
        b->setToolTip(tu.toolTip(m_captionId));
    } else if (auto *l = qobject_cast<QLabel *>(w)) {
        if (m_captionId >= 0)
            l->setText(caption);
    } else if (auto *c = qobject_cast<QCheckBox *>(w)) {
        c->setText(caption);
    } else if (auto *combo = qobject_cast<QComboBox *>(w)) {
        const int current = combo->currentIndex();
        const QSignalBlocker block(combo);
        combo->clear();
        for (int id : m_options.captions) {
            if (id < 0)
                break;
            combo->addItem(tu.text(id));
        }
        combo->setCurrentIndex(qMin(current, combo->count() - 1));
    }
}

void QInterfaceControlWidgetBase::place(QWidget *w, QWidget *parent, const QString &name, int x,
                                        int y, int width, int height)
{
    w->setParent(parent);
    w->setObjectName(name);
    const QSize natural = w->sizeHint();
    const QSize size(width < 0 ? natural.width() : width, height < 0 ? natural.height() : height);
    w->setGeometry(x, y, size.width(), size.height());
    w->setMinimumSize(size);
    w->setMaximumSize(size);
    w->setEnabled(m_enabled);
}
