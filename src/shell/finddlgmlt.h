#pragma once

#include "code/qquickfindoption.h"

#include <QDialog>
#include <QList>

class QAction;
class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

// Find and replace with patterns of several lines. It stays open beside the
// editors and sends its requests to the current one, with the same switches
// as the search bar.
class FindDlgMlt : public QDialog
{
    Q_OBJECT

public:
    explicit FindDlgMlt(QWidget *parent = nullptr);

    // The shared switches, in the order of QQuickFindOption: the check boxes follow them.
    void setOptionActions(const QList<QAction *> &actions);
    QQuickFindOptions options() const;
    QPlainTextEdit *findField() const { return m_text; }
    QPlainTextEdit *replaceField() const { return m_with; }
    void retranslate();

signals:
    void find(const QString &text, const QQuickFindOptions &options);
    void replace(const QString &text, const QString &with, const QQuickFindOptions &options, bool all);

private:
    QLabel *m_findLabel;
    QLabel *m_withLabel;
    QPlainTextEdit *m_text;
    QPlainTextEdit *m_with;
    QList<QCheckBox *> m_switches;
    QPushButton *m_find;
    QPushButton *m_replace;
    QPushButton *m_replaceAll;
    QPushButton *m_close;
};
