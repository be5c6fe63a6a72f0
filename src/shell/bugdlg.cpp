#include "bugdlg.h"

#include "ui_bugdlg.h"

BugDlg::BugDlg(QWidget *parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui::BugDlg>())
{
    ui->setupUi(this);
    ui->descriptionEdit->setFocus();
}

BugDlg::~BugDlg() = default;

QBugReport::Flags BugDlg::flags() const
{
    QBugReport::Flags f{};
    f[QBugReport::Definitions] = ui->definitionsBox->isChecked();
    f[QBugReport::Commands] = ui->commandsBox->isChecked();
    f[QBugReport::Animations] = ui->animationsBox->isChecked();
    f[QBugReport::Sprites] = ui->spritesBox->isChecked();
    f[QBugReport::States] = ui->statesBox->isChecked();
    f[QBugReport::Sounds] = ui->soundsBox->isChecked();
    return f;
}

void BugDlg::setFlags(const QBugReport::Flags &f)
{
    ui->definitionsBox->setChecked(f[QBugReport::Definitions]);
    ui->commandsBox->setChecked(f[QBugReport::Commands]);
    ui->animationsBox->setChecked(f[QBugReport::Animations]);
    ui->spritesBox->setChecked(f[QBugReport::Sprites]);
    ui->statesBox->setChecked(f[QBugReport::States]);
    ui->soundsBox->setChecked(f[QBugReport::Sounds]);
}

QString BugDlg::description() const
{
    return ui->descriptionEdit->toPlainText();
}

void BugDlg::setDescription(const QString &text)
{
    ui->descriptionEdit->setPlainText(text);
}
