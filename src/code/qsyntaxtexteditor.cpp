#include "qsyntaxtexteditor.h"

#include "code/qmugensyntaxhierarchy.h"
#include "code/qmugensyntaxprocessor.h"
#include "code/qtextencoding.h"
#include "base/qfilewatchermanager.h"

#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTextCodec>
#include <QTextDocument>

QSyntaxTextEditor::QSyntaxTextEditor(bool hierarchyEnabled, QObject *parent)
    : QFileWatchObject(parent)
    , m_document(new QTextDocument(this))
    , m_hierarchyEnabled(hierarchyEnabled)
{
    m_updateTimer.setSingleShot(true);
    m_updateTimer.setInterval(1000);
    connect(&m_updateTimer, &QTimer::timeout, this, &QSyntaxTextEditor::updateHierarchy);
    connect(m_document, &QTextDocument::contentsChanged, this, &QSyntaxTextEditor::docChanged);
    setSyntax(PlainText);
}

QSyntaxTextEditor::~QSyntaxTextEditor()
{
    m_updateTimer.stop();
    if (m_watcher)
        m_watcher->unwatch(this);
}

void QSyntaxTextEditor::setFileWatcher(QFileWatcherManager *watcher)
{
    if (m_watcher == watcher)
        return;
    if (m_watcher)
        m_watcher->unwatch(this);
    m_watcher = watcher;
}

bool QSyntaxTextEditor::reload(const QString &fileName)
{
    return !fileName.isEmpty() && fileName == m_fileName && loadFile(fileName, m_codepage, true);
}

bool QSyntaxTextEditor::differsFromFile() const
{
    QFile file(m_fileName);
    if (m_fileName.isEmpty() || !file.open(QIODevice::ReadOnly))
        return false;
    return file.size() != m_fileBytes.size() || file.readAll() != m_fileBytes;
}

void QSyntaxTextEditor::setEncoding(const QByteArray &encoding)
{
    if (encoding == m_encoding)
        return;
    m_encoding = encoding;
    emit encodingChanged(m_encoding);
}

bool QSyntaxTextEditor::isModified() const
{
    return m_document->isModified();
}

void QSyntaxTextEditor::setModified(bool modified)
{
    m_document->setModified(modified);
}

bool QSyntaxTextEditor::isEmpty() const
{
    return m_document->isEmpty();
}

QString QSyntaxTextEditor::text() const
{
    // Unlike toPlainText() this keeps non-breaking spaces as they are.
    QString text = m_document->toRawText();
    for (QChar &c : text)
        if (c == QChar::ParagraphSeparator || c == QChar::LineSeparator)
            c = QLatin1Char('\n');
    return text;
}

void QSyntaxTextEditor::setText(const QString &text)
{
    m_document->setPlainText(text);
}

void QSyntaxTextEditor::setSyntax(int language)
{
    if (language == m_language)
        return;
    m_language = language;
    delete m_hierarchy;
    m_hierarchy = nullptr;
    if (language == Mugen) {
        m_hierarchy = new QMugenSyntaxHierarchy(this);
        connect(m_hierarchy, &QSyntaxHierarchy::updated, this, &QSyntaxTextEditor::hierarchyUpdated);
    }
    updateProcessor();
}

void QSyntaxTextEditor::setEngineVersion(quint32 version)
{
    if (version == m_engineVersion)
        return;
    m_engineVersion = version;
    if (m_processor)
        m_processor->setEngineVersion(version);
}

void QSyntaxTextEditor::setMugenSyntax(QMugenSyntaxProperties *syntax, const SyntaxFormats *formats)
{
    m_mugenSyntax = syntax;
    m_formats = formats;
    updateProcessor();
}

void QSyntaxTextEditor::updateProcessor()
{
    delete m_processor;
    m_processor = nullptr;
    if (m_language == Mugen && m_mugenSyntax) {
        auto *processor = new QMugenSyntaxProcessor(m_mugenSyntax, m_formats, m_document);
        processor->setEngineVersion(m_engineVersion);
        m_processor = processor;
    }
}

int QSyntaxTextEditor::detectLanguage(const QString &text)
{
    static const QRegularExpression mugen(QStringLiteral("\\A\\s*[;\\[]"));
    static const QRegularExpression lua(QStringLiteral("\\bfunction\\b"));
    if (mugen.match(text).hasMatch())
        return Mugen;
    // A text that begins with the word "function" stays plain text.
    const QRegularExpressionMatch m = lua.match(text);
    if (m.hasMatch() && m.capturedStart() > 0)
        return Lua;
    return PlainText;
}

bool QSyntaxTextEditor::sectionExists(const QString &section) const
{
    return m_hierarchy && m_hierarchy->sectionExists(section);
}

QString QSyntaxTextEditor::findValue(const QString &section, const QString &key) const
{
    return m_hierarchy ? m_hierarchy->findValue(section, key) : QString();
}

bool QSyntaxTextEditor::loadFile(const QString &path, int defaultIndex, bool keepWatch, bool keepName)
{
    QFile file(path);
    if (!file.exists()) {
        m_errorString = tr("File not found");
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        m_errorString = file.errorString();
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        m_errorString = file.errorString();
        return false;
    }
    QTextCodec *codec = QTextEncoding::detectCodec(bytes, defaultIndex);
    QString text = QTextEncoding::decode(bytes, codec, &m_firstBadLine);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));

    if (m_autoSyntax)
        setSyntax(detectLanguage(text));
    m_document->setPlainText(text);
    m_document->setModified(false);
    if (!keepName)
        m_fileName = path;
    // With the name kept too: a backup read back is written over the file as
    // the backup holds it, byte for byte, while its text stays unchanged.
    m_fileBytes = bytes;
    m_fileText = text;
    m_fileEncoding = codec ? codec->name() : QByteArray("UTF-8");
    m_codepage = defaultIndex;
    setEncoding(codec ? codec->name() : QByteArray("UTF-8"));
    m_errorString.clear();
    // A reload, or a backup read in under the document's own name, keeps the watch it has.
    if (m_watcher && !keepWatch)
        m_watcher->watch(this);
    updateHierarchy();
    return true;
}

bool QSyntaxTextEditor::saveFile(const QString &path, bool asUtf8, bool asCopy)
{
    const QByteArray encoding = asUtf8 ? QByteArray("UTF-8") : m_encoding;
    const QString plain = text();
    QByteArray bytes;
    int lossyLine = -1;
    if (!m_fileEncoding.isEmpty() && encoding == m_fileEncoding && plain == m_fileText) {
        bytes = m_fileBytes;
    } else {
        QTextCodec *codec = QTextCodec::codecForName(encoding);
        QString out = plain;
        out.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
        bytes = QTextEncoding::encode(out, codec, &lossyLine);
    }

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        m_errorString = file.errorString();
        return false;
    }
    if (file.write(bytes) != bytes.size() || !file.commit()) {
        m_errorString = file.errorString();
        file.cancelWriting();
        return false;
    }
    m_firstLossyLine = lossyLine;
    if (!asCopy) {
        setEncoding(encoding);
        m_document->setModified(false);
        m_fileName = path;
        m_fileBytes = bytes;
        m_fileText = plain;
        m_fileEncoding = encoding;
        if (m_watcher)
            m_watcher->watch(this);
    }
    m_errorString.clear();
    return true;
}

void QSyntaxTextEditor::clear()
{
    if (m_watcher)
        m_watcher->unwatch(this);
    m_document->clear();
    m_document->setModified(false);
    setEncoding("UTF-8");
    m_fileName.clear();
    m_fileBytes.clear();
    m_fileText.clear();
    m_fileEncoding.clear();
    m_firstBadLine = -1;
    m_firstLossyLine = -1;
    updateHierarchy();
}

void QSyntaxTextEditor::docChanged()
{
    m_updateTimer.start();
}

void QSyntaxTextEditor::updateHierarchy()
{
    m_updateTimer.stop();
    if (m_hierarchyEnabled && m_hierarchy)
        m_hierarchy->update(text());
}
