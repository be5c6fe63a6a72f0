#pragma once

#include <QDialog>

class QBakManager;
class QListView;
class QSpinBox;

// Chooses one of the dated backups of a project, newest first.
class BakDlg : public QDialog
{
    Q_OBJECT

public:
    BakDlg(QWidget *parent, const QString &defFile);
    ~BakDlg() override;

    int backupCount() const;
    void setCurrentRow(int row);
    // The DEF inside the chosen backup, or an empty string if none is chosen.
    QString chosenFile() const;
    // How many backups a project keeps, the newest; 0 keeps them all.
    int keep() const;
    void setKeep(int keep);

private:
    QBakManager *m_backups = nullptr;
    QListView *m_list = nullptr;
    QSpinBox *m_keep = nullptr;
};
