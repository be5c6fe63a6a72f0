#include "qquickfind.h"

#include <QAction>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStyle>
#include <QToolButton>

QQuickFind::QQuickFind(QWidget *parent)
    : QWidget(parent)
    , m_findLabel(new QLabel(this))
    , m_withLabel(new QLabel(this))
    , m_text(new QLineEdit(this))
    , m_with(new QLineEdit(this))
    , m_find(new QPushButton(this))
    , m_replace(new QPushButton(this))
    , m_replaceAll(new QPushButton(this))
    , m_close(new QToolButton(this))
{
    setObjectName(QStringLiteral("quickFind"));
    m_text->setObjectName(QStringLiteral("findText"));
    m_with->setObjectName(QStringLiteral("replaceText"));
    m_find->setObjectName(QStringLiteral("findButton"));
    m_replace->setObjectName(QStringLiteral("replaceButton"));
    m_replaceAll->setObjectName(QStringLiteral("replaceAllButton"));
    m_text->setClearButtonEnabled(true);
    m_text->setMinimumWidth(120);
    m_with->setMinimumWidth(120);
    m_with->setClearButtonEnabled(true);
    m_findLabel->setBuddy(m_text);
    m_withLabel->setBuddy(m_with);
    m_close->setAutoRaise(true);
    m_close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));

    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(6, 4, 6, 4);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(3);
    grid->addWidget(m_findLabel, 0, 0);
    grid->addWidget(m_text, 0, 1);
    grid->addWidget(m_find, 0, 2, 1, 2);
    grid->addWidget(m_withLabel, 1, 0);
    grid->addWidget(m_with, 1, 1);
    grid->addWidget(m_replace, 1, 2);
    grid->addWidget(m_replaceAll, 1, 3);
    grid->addWidget(m_close, 0, 6, Qt::AlignRight | Qt::AlignTop);
    grid->setColumnStretch(1, 1);
    for (int i = 0; i < 4; ++i) {
        auto *b = new QToolButton(this);
        b->setToolButtonStyle(Qt::ToolButtonTextOnly);
        b->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        grid->addWidget(b, i / 2, 4 + i % 2);
        m_switches << b;
    }

    connect(m_text, &QLineEdit::returnPressed, this, &QQuickFind::find);
    connect(m_with, &QLineEdit::returnPressed, this, &QQuickFind::replace);
    connect(m_find, &QPushButton::clicked, this, &QQuickFind::find);
    connect(m_replace, &QPushButton::clicked, this, &QQuickFind::replace);
    connect(m_replaceAll, &QPushButton::clicked, this, &QQuickFind::replaceAll);
    connect(m_close, &QToolButton::clicked, this, &QQuickFind::closeRequested);
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    escape->setContext(Qt::WidgetWithChildrenShortcut);
    connect(escape, &QShortcut::activated, this, &QQuickFind::closeRequested);
    retranslate();
}

void QQuickFind::setOptionActions(const QList<QAction *> &actions)
{
    m_options = actions;
    for (int i = 0; i < m_switches.size(); ++i) {
        m_switches.at(i)->setDefaultAction(actions.value(i));
        m_switches.at(i)->setVisible(actions.value(i) != nullptr);
    }
}

QQuickFindOptions QQuickFind::options() const
{
    QQuickFindOptions out;
    for (int i = 0; i < m_options.size(); ++i)
        out.insert(QQuickFindOption(i), m_options.at(i) && m_options.at(i)->isChecked());
    return out;
}

void QQuickFind::focusFind()
{
    m_text->setFocus(Qt::ShortcutFocusReason);
    m_text->selectAll();
}

void QQuickFind::retranslate()
{
    m_findLabel->setText(tr("Find:"));
    m_withLabel->setText(tr("Replace with:"));
    m_find->setText(tr("Find"));
    m_replace->setText(tr("Replace"));
    m_replaceAll->setText(tr("Replace All"));
    m_close->setToolTip(tr("Close the search bar"));
    m_with->setToolTip(tr("In a regular expression, \\1 or %1 stands for the first captured group, and so on"));
}

void QQuickFind::find()
{
    if (!m_text->text().isEmpty())
        emit doFind(m_text->text(), options());
}

void QQuickFind::replace()
{
    if (!m_text->text().isEmpty())
        emit doReplace(m_text->text(), m_with->text(), options(), false);
}

void QQuickFind::replaceAll()
{
    if (!m_text->text().isEmpty())
        emit doReplace(m_text->text(), m_with->text(), options(), true);
}

void QQuickFind::findNext(bool backward)
{
    if (m_text->text().isEmpty()) {
        focusFind();
        return;
    }
    QQuickFindOptions o = options();
    o.insert(QQuickFindOption::Backward, backward);
    emit doFind(m_text->text(), o);
}
