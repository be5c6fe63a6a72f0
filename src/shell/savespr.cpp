#include "shell/savespr.h"

#include "ui_savespr.h"

#include "sprites/qsffversion.h"

SaveSpr::SaveSpr(quint32 currentVersion, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::SaveSpr>())
{
    ui->setupUi(this);
    setVersion(currentVersion);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

SaveSpr::~SaveSpr() = default;

quint32 SaveSpr::version() const
{
    if (ui->mugenBT->isChecked())
        return QSffVersion::V101;
    if (ui->mugen10->isChecked())
        return QSffVersion::V200;
    return QSffVersion::V201;
}

void SaveSpr::setVersion(quint32 version)
{
    // Anything that is not one of the two older versions is offered as the
    // newest, which holds every kind of sprite.
    if (version == QSffVersion::V101)
        ui->mugenBT->setChecked(true);
    else if (version == QSffVersion::V200)
        ui->mugen10->setChecked(true);
    else
        ui->mugen11->setChecked(true);
}

quint32 SaveSpr::ask(quint32 currentVersion, QWidget *parent)
{
    SaveSpr dialog(currentVersion, parent);
    return dialog.exec() == QDialog::Accepted ? dialog.version() : 0;
}
