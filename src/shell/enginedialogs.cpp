#include "enginedialogs.h"

#include "shell/qaskuser.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

// ---------------------------------------------------------------- MugenDlg

MugenDlg::MugenDlg(QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("M.U.G.E.N."));
    setObjectName(QStringLiteral("MugenDlg"));
    m_name = new QLineEdit(this);
    m_name->setObjectName(QStringLiteral("mugenName"));
    m_exe = new QLineEdit(this);
    m_exe->setObjectName(QStringLiteral("mugenExe"));
    auto *browse = new QToolButton(this);
    browse->setObjectName(QStringLiteral("browseButton"));
    browse->setText(QStringLiteral("..."));
    m_launcher = new QLineEdit(this);
    m_launcher->setObjectName(QStringLiteral("mugenLauncher"));
    m_launcher->setPlaceholderText(tr("none: the executable runs itself"));
    m_launcher->setToolTip(tr("A program that runs the executable, such as wine for an engine made for Windows"));
    m_params = new QLineEdit(QStringLiteral("%0 %0"), this);
    m_params->setObjectName(QStringLiteral("mugenParams"));
    m_params->setToolTip(tr("%0 is the current project, %1 the project of the first tab, %2 of the second "
                            "and so on. Put a value with blanks in double quotes."));

    auto *exeRow = new QHBoxLayout;
    exeRow->addWidget(m_exe);
    exeRow->addWidget(browse);
    auto *form = new QFormLayout;
    form->addRow(tr("Name:"), m_name);
    form->addRow(tr("Executable:"), exeRow);
    form->addRow(tr("Launcher:"), m_launcher);
    form->addRow(tr("Parameters:"), m_params);
    auto *note = new QLabel(tr("Example: -p1 %0 -p2 %1 tests the current project against the first tab."), this);
    note->setWordWrap(true);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(note);
    layout->addWidget(m_buttons);
    setMinimumWidth(460);

    connect(browse, &QToolButton::clicked, this, &MugenDlg::browse);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_name, &QLineEdit::textChanged, this, &MugenDlg::updateOk);
    connect(m_exe, &QLineEdit::textChanged, this, &MugenDlg::updateOk);
    updateOk();
}

MugenDlg::MugenDlg(const QMugenModel::Engine &engine, QWidget *parent)
    : MugenDlg(parent)
{
    setEngine(engine);
}

QMugenModel::Engine MugenDlg::engine() const
{
    QMugenModel::Engine e;
    e.name = m_name->text().trimmed();
    e.exe = m_exe->text().trimmed();
    e.params = m_params->text().trimmed();
    e.launcher = m_launcher->text().trimmed();
    return e;
}

void MugenDlg::setEngine(const QMugenModel::Engine &engine)
{
    m_name->setText(engine.name);
    m_exe->setText(engine.exe);
    m_params->setText(engine.params);
    m_launcher->setText(engine.launcher);
}

void MugenDlg::browse()
{
    // Engines for Linux have no suffix; wine runs the .exe of Windows ones.
    const QString file = QAskUser::openFileName(
        this, tr("M.U.G.E.N. executable"), QFileInfo(m_exe->text()).absolutePath(),
        tr("All files (*);;M.U.G.E.N. executable (*.exe)"));
    if (file.isEmpty())
        return;
    m_exe->setText(file);
    if (m_name->text().trimmed().isEmpty())
        m_name->setText(QFileInfo(file).dir().dirName());
    // A Windows program wants a launcher on this system.
    if (m_launcher->text().trimmed().isEmpty() && file.endsWith(QLatin1String(".exe"), Qt::CaseInsensitive)
        && !QFileInfo(file).isExecutable())
        m_launcher->setText(QStringLiteral("wine"));
}

void MugenDlg::updateOk()
{
    m_buttons->button(QDialogButtonBox::Ok)
        ->setEnabled(!m_name->text().trimmed().isEmpty() && !m_exe->text().trimmed().isEmpty());
}

// ---------------------------------------------------------------- MugRunDlg

MugRunDlg::MugRunDlg(QMugenModel *engines, QWidget *parent)
    : QDialog(parent)
    , m_engines(engines)
{
    setWindowTitle(tr("Run in M.U.G.E.N."));
    setObjectName(QStringLiteral("MugRunDlg"));
    m_combo = new QComboBox(this);
    m_combo->setObjectName(QStringLiteral("mugenExe"));
    m_combo->setModel(engines);
    auto *note = new QLabel(tr("M.U.G.E.N. will fail if you try to test a char created with a new format in an "
                               "older version (default format is 1.1)."),
                            this);
    note->setWordWrap(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Choose the target:"), this));
    layout->addWidget(m_combo);
    layout->addWidget(note);
    layout->addWidget(buttons);
    setMinimumWidth(380);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

int MugRunDlg::engineRow() const
{
    return m_combo->currentIndex();
}

void MugRunDlg::setEngineRow(int row)
{
    m_combo->setCurrentIndex(row);
}

QMugenModel::Engine MugRunDlg::engine() const
{
    return m_engines->engines.value(engineRow());
}

// ---------------------------------------------------------------- engines page

QEnginesPage::QEnginesPage(QMugenModel *engines, QWidget *parent)
    : QWidget(parent)
    , m_engines(engines)
{
    m_list = new QListView(this);
    m_list->setObjectName(QStringLiteral("mugenList"));
    m_list->setModel(engines);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    auto button = [this](const QString &text, const char *name) {
        auto *b = new QPushButton(text, this);
        b->setObjectName(QString::fromLatin1(name));
        return b;
    };
    QPushButton *add = button(tr("Add"), "mugenAdd");
    m_edit = button(tr("Edit"), "mugenEdit");
    m_remove = button(tr("Remove"), "mugenRemove");
    m_clear = button(tr("Clear"), "mugenClear");
    m_up = button(tr("Up"), "mugenUp");
    m_down = button(tr("Down"), "mugenDown");

    auto *side = new QVBoxLayout;
    for (QPushButton *b : {add, m_edit, m_remove, m_clear})
        side->addWidget(b);
    side->addSpacing(12);
    side->addWidget(m_up);
    side->addWidget(m_down);
    side->addStretch();
    auto *row = new QHBoxLayout;
    row->addWidget(m_list, 1);
    row->addLayout(side);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(tr("M.U.G.E.N."), this));
    layout->addLayout(row);

    connect(add, &QPushButton::clicked, this, &QEnginesPage::addEngine);
    connect(m_edit, &QPushButton::clicked, this, &QEnginesPage::editEngine);
    connect(m_remove, &QPushButton::clicked, this, &QEnginesPage::removeEngine);
    connect(m_clear, &QPushButton::clicked, this, &QEnginesPage::clearEngines);
    connect(m_up, &QPushButton::clicked, this, &QEnginesPage::moveUp);
    connect(m_down, &QPushButton::clicked, this, &QEnginesPage::moveDown);
    connect(m_list, &QListView::doubleClicked, this, &QEnginesPage::editEngine);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this, &QEnginesPage::updateButtons);
    connect(engines, &QAbstractItemModel::rowsInserted, this, &QEnginesPage::updateButtons);
    connect(engines, &QAbstractItemModel::rowsRemoved, this, &QEnginesPage::updateButtons);
    connect(engines, &QAbstractItemModel::rowsMoved, this, &QEnginesPage::updateButtons);
    connect(engines, &QAbstractItemModel::modelReset, this, &QEnginesPage::updateButtons);
    setCurrentRow(0);
    updateButtons();
}

int QEnginesPage::currentRow() const
{
    const QModelIndex current = m_list->currentIndex();
    return current.isValid() ? current.row() : -1;
}

void QEnginesPage::setCurrentRow(int row)
{
    m_list->setCurrentIndex(m_engines->index(row));
}

void QEnginesPage::updateButtons()
{
    const int row = currentRow();
    const int count = m_engines->rowCount();
    m_edit->setEnabled(row >= 0);
    m_remove->setEnabled(row >= 0);
    m_clear->setEnabled(count > 0);
    m_up->setEnabled(row > 0);
    m_down->setEnabled(row >= 0 && row < count - 1);
}

void QEnginesPage::addEngine()
{
    MugenDlg dlg(this);
    if (QAskUser::exec(&dlg) != QDialog::Accepted)
        return;
    m_engines->addEngine(dlg.engine());
    setCurrentRow(m_engines->rowCount() - 1);
}

void QEnginesPage::editEngine()
{
    const int row = currentRow();
    if (row < 0)
        return;
    MugenDlg dlg(m_engines->engines.at(row), this);
    if (QAskUser::exec(&dlg) == QDialog::Accepted)
        m_engines->setEngine(row, dlg.engine());
}

void QEnginesPage::removeEngine()
{
    const int row = currentRow();
    if (row < 0)
        return;
    m_engines->removeEngine(row);
    setCurrentRow(qMin(row, m_engines->rowCount() - 1));
}

void QEnginesPage::clearEngines()
{
    if (m_engines->rowCount() == 0
        || !QAskUser::question(this, tr("M.U.G.E.N."), tr("Remove every engine from the list?")))
        return;
    m_engines->clearEngines();
}

void QEnginesPage::moveUp()
{
    const int row = currentRow();
    if (m_engines->moveEngine(row, true))
        setCurrentRow(row - 1);
}

void QEnginesPage::moveDown()
{
    const int row = currentRow();
    if (m_engines->moveEngine(row, false))
        setCurrentRow(row + 1);
}

// ---------------------------------------------------------------- EnginesDlg

EnginesDlg::EnginesDlg(QMugenModel *engines, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("M.U.G.E.N. engines"));
    setObjectName(QStringLiteral("EnginesDlg"));
    m_page = new QEnginesPage(engines, this);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_page);
    layout->addWidget(buttons);
    resize(460, 300);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}
