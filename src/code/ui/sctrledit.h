#pragma once

#include <QDialog>

class QMugenSyntaxProperties;
class QSyntaxTextEditor;
class QTextEditor;
class SyntaxFormats;

// The editor of one state controller of the library: the code, checked as
// it is typed, and a save that asks where the .sctrl file goes.
class SCtrlEdit : public QDialog
{
    Q_OBJECT

public:
    SCtrlEdit(QMugenSyntaxProperties *syntax, const SyntaxFormats *formats, QWidget *parent = nullptr);
    ~SCtrlEdit() override;

    void setText(const QString &text);
    QString text() const;
    void setCodeFont(const QFont &font);
    QTextEditor *editor() const { return m_editor; }
    // Where the save dialog starts, and the name it offers.
    void setSaveFolder(const QString &folder, const QString &name);
    // The file written by the last save; empty until one succeeded.
    QString savedFile() const { return m_saved; }

private slots:
    // Cancel, and save.
    void on_pushButton_2_clicked();
    void on_pushButton_clicked();

private:
    QSyntaxTextEditor *m_document;
    QTextEditor *m_editor;
    QString m_folder;
    QString m_name;
    QString m_saved;
};
