#pragma once

#include "code/qsyntaxhierarchy.h"

#include <QSyntaxHighlighter>

class QSyntaxProperties;
class QTextEditorBlockData;

// Base of the language processors of a document: a highlighter that, line by
// line, colours the text, records the line's issues, brackets and fold level
// in its QTextEditorBlockData, and keeps an outline of the document. The code
// editor reads only what the processor leaves in the block data.
class QSyntaxProcessor : public QSyntaxHighlighter
{
    Q_OBJECT

public:
    enum Language { NoLanguage = 0, Mugen = 1, Lua = 2 };

    QSyntaxProcessor(int language, QSyntaxProperties *properties, QTextDocument *document);

    virtual QSyntaxHierarchy *hierarchy() = 0;
    // Re-processes the whole document.
    virtual void refresh();

    int language() const { return m_language; }
    QSyntaxProperties *properties() const { return m_properties; }
    quint32 engineVersion() const { return m_engineVersion; }
    // Checks are version dependent: a new version re-processes everything.
    void setEngineVersion(quint32 version);

protected:
    // Makes sure the line has its record; subclasses call this first.
    void highlightBlock(const QString &text) override;
    // The record of the line being processed (created by highlightBlock).
    QTextEditorBlockData *blockData() const;

private:
    int m_language;
    QSyntaxProperties *m_properties;
    quint32 m_engineVersion = 0x01010000;
};

// An outline with nothing in it, for documents without a language.
class QNullSyntaxHierarchy : public QSyntaxHierarchy
{
    Q_OBJECT

public:
    using QSyntaxHierarchy::QSyntaxHierarchy;

    QModelIndex index(int, int, const QModelIndex & = QModelIndex()) const override { return QModelIndex(); }
    QModelIndex parent(const QModelIndex &) const override { return QModelIndex(); }
    int rowCount(const QModelIndex & = QModelIndex()) const override { return 0; }
    int columnCount(const QModelIndex & = QModelIndex()) const override { return 1; }
    QVariant data(const QModelIndex &, int = Qt::DisplayRole) const override { return QVariant(); }
    void update(const QString &) override {}
    QModelIndex nodeAtLine(uint) const override { return QModelIndex(); }
    bool sectionExists(const QString &) const override { return false; }
    QString findValue(const QString &, const QString &) const override { return QString(); }
};

// The processor of plain text: it checks nothing and folds nothing.
class QNullSyntaxProcessor : public QSyntaxProcessor
{
    Q_OBJECT

public:
    explicit QNullSyntaxProcessor(QTextDocument *document);
    QSyntaxHierarchy *hierarchy() override { return &m_hierarchy; }

private:
    QNullSyntaxHierarchy m_hierarchy;
};
