#include "bakdlg.h"

#include "project/qbakmanager.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QSpinBox>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QVBoxLayout>

BakDlg::BakDlg(QWidget *parent, const QString &defFile)
    : QDialog(parent)
{
    setWindowTitle(tr("Load backup"));
    setObjectName(QStringLiteral("BakDlg"));
    m_backups = new QBakManager(defFile, this);
    m_list = new QListView(this);
    m_list->setObjectName(QStringLiteral("listView"));
    m_list->setModel(m_backups);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Choose a backup to be loaded:"), this));
    layout->addWidget(m_list);
    auto *note = new QLabel(tr("The backup replaces what the project holds now; the files of the project stay as "
                               "they are until you save."),
                            this);
    note->setWordWrap(true);
    layout->addWidget(note);
    m_keep = new QSpinBox(this);
    m_keep->setObjectName(QStringLiteral("keepBox"));
    m_keep->setRange(0, 999);
    m_keep->setSpecialValueText(tr("all"));
    m_keep->setToolTip(tr("Older backups are removed when a new one is made"));
    auto *keepRow = new QHBoxLayout;
    keepRow->addWidget(new QLabel(tr("Backups to keep, the newest:"), this));
    keepRow->addWidget(m_keep);
    keepRow->addStretch();
    layout->addLayout(keepRow);
    layout->addWidget(buttons);
    resize(420, 320);

    QPushButton *ok = buttons->button(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QListView::doubleClicked, this, &QDialog::accept);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this, ok] { ok->setEnabled(m_list->currentIndex().isValid()); });
    setCurrentRow(0);
    ok->setEnabled(m_list->currentIndex().isValid());
}

BakDlg::~BakDlg() = default;

int BakDlg::backupCount() const
{
    return m_backups->rowCount();
}

void BakDlg::setCurrentRow(int row)
{
    m_list->setCurrentIndex(m_backups->index(row));
}

QString BakDlg::chosenFile() const
{
    const QModelIndex current = m_list->currentIndex();
    return current.isValid() ? m_backups->chosenFile(current.row()) : QString();
}

int BakDlg::keep() const
{
    return m_keep->value();
}

void BakDlg::setKeep(int keep)
{
    m_keep->setValue(keep);
}
