#include "finddlgmlt.h"

#include <QAction>
#include <QBoxLayout>
#include <QCheckBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

FindDlgMlt::FindDlgMlt(QWidget *parent)
    : QDialog(parent)
    , m_findLabel(new QLabel(this))
    , m_withLabel(new QLabel(this))
    , m_text(new QPlainTextEdit(this))
    , m_with(new QPlainTextEdit(this))
    , m_find(new QPushButton(this))
    , m_replace(new QPushButton(this))
    , m_replaceAll(new QPushButton(this))
    , m_close(new QPushButton(this))
{
    m_text->setObjectName(QStringLiteral("findText"));
    m_with->setObjectName(QStringLiteral("replaceText"));
    m_find->setObjectName(QStringLiteral("findButton"));
    m_replace->setObjectName(QStringLiteral("replaceButton"));
    m_replaceAll->setObjectName(QStringLiteral("replaceAllButton"));
    const QFont code = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    for (QPlainTextEdit *e : {m_text, m_with}) {
        e->setFont(code);
        e->setTabChangesFocus(true);
        e->setLineWrapMode(QPlainTextEdit::NoWrap);
    }
    m_findLabel->setBuddy(m_text);
    m_withLabel->setBuddy(m_with);

    auto *fields = new QVBoxLayout;
    fields->addWidget(m_findLabel);
    fields->addWidget(m_text, 1);
    fields->addWidget(m_withLabel);
    fields->addWidget(m_with, 1);
    auto *switches = new QGridLayout;
    for (int i = 0; i < 4; ++i) {
        auto *box = new QCheckBox(this);
        switches->addWidget(box, i / 2, i % 2);
        m_switches << box;
    }
    fields->addLayout(switches);

    auto *buttons = new QVBoxLayout;
    for (QPushButton *b : {m_find, m_replace, m_replaceAll})
        buttons->addWidget(b);
    buttons->addStretch(1);
    buttons->addWidget(m_close);
    m_find->setDefault(true);

    auto *main = new QHBoxLayout(this);
    main->addLayout(fields, 1);
    main->addLayout(buttons);
    resize(520, 340);

    connect(m_find, &QPushButton::clicked, this, [this] {
        if (!m_text->toPlainText().isEmpty())
            emit find(m_text->toPlainText(), options());
    });
    auto replacing = [this](bool all) {
        if (!m_text->toPlainText().isEmpty())
            emit replace(m_text->toPlainText(), m_with->toPlainText(), options(), all);
    };
    connect(m_replace, &QPushButton::clicked, this, [replacing] { replacing(false); });
    connect(m_replaceAll, &QPushButton::clicked, this, [replacing] { replacing(true); });
    connect(m_close, &QPushButton::clicked, this, &QDialog::close);
    retranslate();
}

void FindDlgMlt::setOptionActions(const QList<QAction *> &actions)
{
    for (int i = 0; i < m_switches.size(); ++i) {
        QCheckBox *box = m_switches.at(i);
        QAction *a = actions.value(i);
        box->setVisible(a != nullptr);
        if (!a)
            continue;
        box->setChecked(a->isChecked());
        connect(box, &QCheckBox::toggled, a, &QAction::setChecked);
        connect(a, &QAction::toggled, box, &QCheckBox::setChecked);
    }
}

QQuickFindOptions FindDlgMlt::options() const
{
    QQuickFindOptions out;
    for (int i = 0; i < m_switches.size(); ++i)
        out.insert(QQuickFindOption(i), m_switches.at(i)->isChecked());
    return out;
}

void FindDlgMlt::retranslate()
{
    setWindowTitle(tr("Find and replace"));
    m_findLabel->setText(tr("Find:"));
    m_withLabel->setText(tr("Replace with:"));
    const char *const captions[] = {QT_TR_NOOP("Regular expression"), QT_TR_NOOP("Case sensitive"),
                                    QT_TR_NOOP("Backward"), QT_TR_NOOP("Circular")};
    for (int i = 0; i < m_switches.size(); ++i)
        m_switches.at(i)->setText(tr(captions[i]));
    m_find->setText(tr("Find"));
    m_replace->setText(tr("Replace"));
    m_replaceAll->setText(tr("Replace All"));
    m_close->setText(tr("Close"));
}
