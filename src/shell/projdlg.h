#pragma once

#include <QDialog>
#include <QStringList>

class QTabWidget;

// "Project template": the project scripts, one tab per group, one icon per
// script. The result names the chosen script as "<group>/<name>", or is empty
// when nothing is selected (a plain empty project).
class ProjDlg : public QDialog
{
    Q_OBJECT

public:
    // templates: "<group>/<name>" names; icons are looked up as
    // <iconFolder>/<group>/<name>.png.
    ProjDlg(const QStringList &templates, const QString &iconFolder, QWidget *parent = nullptr);

    QString chosenTemplate() const;
    // Selects a template by name; false if it is not listed.
    bool selectTemplate(const QString &name);

    // The "<group>/<name>" of every .lua file one folder deep under folder,
    // sorted; other files and deeper levels are ignored.
    static QStringList findTemplates(const QString &folder);

private:
    QTabWidget *m_tabs;
};
