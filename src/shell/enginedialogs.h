#pragma once

#include "base/qmugenmodel.h"

#include <QDialog>
#include <QWidget>

class QComboBox;
class QDialogButtonBox;
class QLineEdit;
class QListView;
class QPushButton;

// One engine record: a name, the executable, the parameter line with its
// "%N" placeholders and an optional launcher (wine for a Windows engine on
// Linux). Built empty to add one, or with a record to edit it.
class MugenDlg : public QDialog
{
    Q_OBJECT

public:
    explicit MugenDlg(QWidget *parent = nullptr);
    MugenDlg(const QMugenModel::Engine &engine, QWidget *parent = nullptr);

    QMugenModel::Engine engine() const;
    void setEngine(const QMugenModel::Engine &engine);

private slots:
    void browse();
    void updateOk();

private:
    QLineEdit *m_name = nullptr;
    QLineEdit *m_exe = nullptr;
    QLineEdit *m_launcher = nullptr;
    QLineEdit *m_params = nullptr;
    QDialogButtonBox *m_buttons = nullptr;
};

// Chooses the engine of a run among the configured ones.
class MugRunDlg : public QDialog
{
    Q_OBJECT

public:
    MugRunDlg(QMugenModel *engines, QWidget *parent = nullptr);

    int engineRow() const;
    void setEngineRow(int row);
    QMugenModel::Engine engine() const;

private:
    QMugenModel *m_engines;
    QComboBox *m_combo = nullptr;
};

// The list of engines with Add, Edit, Remove, Clear and the moves up and
// down. It works on the configuration's list itself: every change counts at
// once, as the lists bound to it show.
class QEnginesPage : public QWidget
{
    Q_OBJECT

public:
    QEnginesPage(QMugenModel *engines, QWidget *parent = nullptr);

    int currentRow() const;
    void setCurrentRow(int row);

public slots:
    void addEngine();
    void editEngine();
    void removeEngine();
    void clearEngines();
    void moveUp();
    void moveDown();

private:
    void updateButtons();

    QMugenModel *m_engines;
    QListView *m_list = nullptr;
    QPushButton *m_edit = nullptr;
    QPushButton *m_remove = nullptr;
    QPushButton *m_clear = nullptr;
    QPushButton *m_up = nullptr;
    QPushButton *m_down = nullptr;
};

// The engines page in a window of its own.
class EnginesDlg : public QDialog
{
    Q_OBJECT

public:
    EnginesDlg(QMugenModel *engines, QWidget *parent = nullptr);
    QEnginesPage *page() const { return m_page; }

private:
    QEnginesPage *m_page = nullptr;
};
