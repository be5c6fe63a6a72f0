#include "qsyntaxprocessor.h"

#include "code/qtexteditorblockdata.h"

QSyntaxProcessor::QSyntaxProcessor(int language, QSyntaxProperties *properties, QTextDocument *document)
    : QSyntaxHighlighter(document)
    , m_language(language)
    , m_properties(properties)
{
}

void QSyntaxProcessor::refresh()
{
    rehighlight();
}

void QSyntaxProcessor::setEngineVersion(quint32 version)
{
    m_engineVersion = version;
    refresh();
}

void QSyntaxProcessor::highlightBlock(const QString &text)
{
    Q_UNUSED(text);
    if (!currentBlockUserData())
        setCurrentBlockUserData(new QTextEditorBlockData);
}

QTextEditorBlockData *QSyntaxProcessor::blockData() const
{
    return static_cast<QTextEditorBlockData *>(currentBlockUserData());
}

QNullSyntaxProcessor::QNullSyntaxProcessor(QTextDocument *document)
    : QSyntaxProcessor(NoLanguage, nullptr, document)
{
}
