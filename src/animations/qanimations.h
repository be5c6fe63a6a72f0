#pragma once

#include "base/qorganizableobject.h"

#include <QByteArray>
#include <QString>

class QMessages;

// The actions of one AIR file, one row an action. The store is the project's
// animation slot; reading and writing the AIR text come with the animation
// parser.
class QAnimations : public QOrganizableObject
{
    Q_OBJECT

public:
    explicit QAnimations(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    void move(int from, int to) override;
    void autoOrganize() override;

    int count() const { return 0; }
    bool isEmpty() const { return count() == 0; }
    bool isModified() const { return m_modified; }

    QString fileName() const { return m_fileName; }
    QString path() const { return m_path; }
    QByteArray codecName() const { return m_codecName; }
    QMessages *messages() const { return m_messages; }
    void setMessages(QMessages *messages) { m_messages = messages; }

    void clear();

signals:
    void changed();
    void updateStarted();
    void updateFinished();

private:
    QString m_fileName;
    QMessages *m_messages = nullptr;
    bool m_modified = false;
    QByteArray m_codecName = "UTF-8";
    QString m_path;
};
