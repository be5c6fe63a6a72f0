#pragma once

#include "qtranslationunit.h"

#include <QAbstractTableModel>
#include <QList>

class QAction2;

// Makes, owns and finds every command of the program by its key. It is also
// the table of commands and their keys shown by the options.
class QActionManager : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit QActionManager(QObject *parent = nullptr);
    ~QActionManager() override;

    // scopes: editor ids the action works in, optionally ended by -1
    // ({7, -1} for a global command). A checkable action's toggled(bool), any
    // other's triggered(), goes to receiver's slot when both are given; the
    // receiver's enableSignal(bool), when given, drives setEnabled(bool).
    QAction2 *addAction(const QList<int> &scopes, const QString &key, int captionId,
                        bool checkable = false, QObject *receiver = nullptr,
                        const char *slot = nullptr, const char *enableSignal = nullptr);

    // First action with exactly this key, or null.
    QAction2 *action(const QString &key) const;
    QList<QAction2 *> actions() const { return m_actions; }

    // The current editor's id; 8 and above means none.
    void setScope(int id) { m_scope = id; }
    int scope() const { return m_scope; }

    const QTranslationUnit &translation() const { return m_translation; }

    // Rewrites every action's texts in the current language.
    void retranslate();
    void retranslate(QAction2 *action);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    QTranslationUnit m_translation;
    QList<QAction2 *> m_actions;
    int m_scope = 8;
};
