#pragma once

#include "base/qbugreport.h"

#include <QDialog>
#include <memory>

namespace Ui {
class BugDlg;
}

// Asks which editors a bug concerns and for a short description. The boxes sit
// in reading order on screen; flags() gives them in the package's order.
class BugDlg : public QDialog
{
    Q_OBJECT

public:
    explicit BugDlg(QWidget *parent = nullptr);
    ~BugDlg() override;

    QBugReport::Flags flags() const;
    void setFlags(const QBugReport::Flags &flags);
    QString description() const;
    void setDescription(const QString &text);

private:
    std::unique_ptr<Ui::BugDlg> ui;
};
