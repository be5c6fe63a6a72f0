#pragma once

#include <QDialog>
#include <memory>

class QAbstractItemModel;
namespace Ui {
class ErrorDlg;
}

// The issue list of the current project. A double click on an issue that names
// a place ("file.ext(line)...") asks, through itemClicked(), to jump there.
class ErrorDlg : public QDialog
{
    Q_OBJECT

public:
    explicit ErrorDlg(QWidget *parent = nullptr);
    ~ErrorDlg() override;

    // The interface hands over the model of each new current project.
    void setModel(QAbstractItemModel *model);
    QAbstractItemModel *model() const;

    // Reads the place an issue text names: a file name holding a dot, then the
    // line in brackets, counted from 1, at the very start. `line` is 0-based.
    static bool jumpTarget(const QString &text, QString *file, uint *line);

signals:
    void itemClicked(const QString &file, uint line);

public slots:
    void doubleClicked(const QModelIndex &index);

private:
    std::unique_ptr<Ui::ErrorDlg> ui;
};
