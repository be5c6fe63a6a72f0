#include "errordlg.h"

#include "ui_errordlg.h"

#include <QRegularExpression>

ErrorDlg::ErrorDlg(QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::ErrorDlg>())
{
    ui->setupUi(this);
    connect(ui->listView, &QAbstractItemView::doubleClicked, this, &ErrorDlg::doubleClicked);
}

ErrorDlg::~ErrorDlg() = default;

void ErrorDlg::setModel(QAbstractItemModel *model)
{
    ui->listView->setModel(model);
}

QAbstractItemModel *ErrorDlg::model() const
{
    return ui->listView->model();
}

bool ErrorDlg::jumpTarget(const QString &text, QString *file, uint *line)
{
    // Anchored at the start; greedy, since a file name may hold brackets itself.
    static const QRegularExpression place(QStringLiteral("\\A(.*\\..*)\\((\\d+)\\)"));
    const QRegularExpressionMatch m = place.match(text);
    if (!m.hasMatch())
        return false;
    bool ok = false;
    const uint number = m.captured(2).toUInt(&ok);
    // Lines count from 1; 0 or a number past 32 bits names no line.
    if (!ok || number == 0)
        return false;
    if (file)
        *file = m.captured(1);
    if (line)
        *line = number - 1;
    return true;
}

void ErrorDlg::doubleClicked(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    QString file;
    uint line = 0;
    if (jumpTarget(index.data(Qt::DisplayRole).toString(), &file, &line))
        emit itemClicked(file, line);
}
