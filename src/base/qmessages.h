#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QMutex>
#include <QString>

// The issue list of one project: errors, warnings and information lines from
// loading, parsing and checking, in order of arrival. Texts that refer to a
// place start with "file(line): ", the line counted from 1.
class QMessages : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Kind : quint8 { Error = 0, Warning = 1, Information = 2 };

    struct Message
    {
        quint8 kind = Error;
        QString text;
    };

    explicit QMessages(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    // Removes every row; the issue count is left as it is, on purpose: the
    // interface decides from it whether to open the issues dialog after a load.
    void clear();
    void addError(const QString &text);
    void addWarning(const QString &text);
    void addInfo(const QString &text);

    // Errors and warnings added since construction (information is not counted).
    int issueCount() const;
    QList<Message> messages() const;

private:
    void add(Kind kind, const QString &text);

    int m_issueCount = 0;
    QList<Message> m_messages;
    mutable QMutex m_lock;
    // Serialises whole additions: the model's row bookkeeping inside
    // begin/endInsertRows is not safe against two threads at once.
    QMutex m_addLock;
};
