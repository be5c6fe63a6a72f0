#pragma once

#include "code/qquickfindoption.h"

#include <QList>
#include <QWidget>

class QAction;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;

// The search bar below the editors: a text to find, a replacement and the
// four search switches. It sends its requests to whichever editor is current.
// The switches are shared actions, so that the multi-line dialog, the
// shortcuts and the settings all see the same state.
class QQuickFind : public QWidget
{
    Q_OBJECT

public:
    explicit QQuickFind(QWidget *parent = nullptr);

    // The switches, in the order of QQuickFindOption.
    void setOptionActions(const QList<QAction *> &actions);
    QQuickFindOptions options() const;
    QLineEdit *findField() const { return m_text; }
    QLineEdit *replaceField() const { return m_with; }
    // Gives the find field the focus with its text selected.
    void focusFind();
    void retranslate();

signals:
    void doFind(const QString &text, const QQuickFindOptions &options);
    void doReplace(const QString &text, const QString &with, const QQuickFindOptions &options, bool all);
    // Escape or the close button.
    void closeRequested();

public slots:
    void find();
    void replace();
    void replaceAll();
    // Find again toward the end (or the start), whatever the backward switch says.
    void findNext(bool backward);

private:
    QLabel *m_findLabel;
    QLabel *m_withLabel;
    QLineEdit *m_text;
    QLineEdit *m_with;
    QPushButton *m_find;
    QPushButton *m_replace;
    QPushButton *m_replaceAll;
    QToolButton *m_close;
    QList<QAction *> m_options;
    QList<QToolButton *> m_switches;
};
