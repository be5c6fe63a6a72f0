#pragma once

#include <QAbstractItemModel>
#include <QString>

// Outline of a text document, rebuilt from its whole text after each pause in
// typing. Besides the side tree of the text editors it answers value look-ups:
// the project reads its DEF through sectionExists() and findValue().
class QSyntaxHierarchy : public QAbstractItemModel
{
    Q_OBJECT

public:
    // The 0-based line a node stands for, -1 for rows that name no place.
    static constexpr int LineRole = Qt::UserRole + 1;

    using QAbstractItemModel::QAbstractItemModel;

    virtual void update(const QString &text) = 0;
    // Deepest node that holds the line (0-based), or the root.
    virtual QModelIndex nodeAtLine(uint line) const = 0;
    virtual bool sectionExists(const QString &section) const = 0;
    virtual QString findValue(const QString &section, const QString &key) const = 0;
    virtual void setView(uint view) { Q_UNUSED(view); }

    int view() const { return m_view; }
    // Display name of the document, as its text declares it (empty when none).
    QString name() const { return m_name; }
    int lineCount() const { return m_lineCount; }

signals:
    void updated();

protected:
    int m_view = 0;
    QString m_name;
    int m_lineCount = 0;
};
