#pragma once

#include "base/qfilewatchobject.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

class QFileWatcherManager;
class QTextDocument;
class QSyntaxHierarchy;
class QSyntaxProcessor;
class QMugenSyntaxProperties;
class SyntaxFormats;

// A text document of a project (DEF, CMD, CNS, ST): the text with its file
// name, the encoding found when it was read (kept for the save), its language
// and the outline that is rebuilt one second after the last edit.
class QSyntaxTextEditor : public QFileWatchObject
{
    Q_OBJECT

public:
    enum Language { PlainText = 0, Mugen = 1, Lua = 2 };

    explicit QSyntaxTextEditor(bool hierarchyEnabled = true, QObject *parent = nullptr);
    ~QSyntaxTextEditor() override;

    QTextDocument *document() const { return m_document; }

    QString fileName() const override { return m_fileName; }
    void setFileName(const QString &fileName) { m_fileName = fileName; }
    QByteArray encoding() const { return m_encoding; }
    void setEncoding(const QByteArray &encoding);

    bool isModified() const;
    void setModified(bool modified);
    bool isEmpty() const;
    // The plain text, lines separated by "\n".
    QString text() const;
    void setText(const QString &text);

    int language() const { return m_language; }
    void setSyntax(int language);
    // With auto syntax off, a load keeps the language that was set.
    void setAutoSyntax(bool on) { m_autoSyntax = on; }
    static int detectLanguage(const QString &text);

    quint32 engineVersion() const { return m_engineVersion; }
    // A new version checks a M.U.G.E.N. text again.
    void setEngineVersion(quint32 version);

    // The language tables a M.U.G.E.N. text is checked with and the colours
    // it is painted with; until they are given, no text is checked. The
    // processor follows the language: M.U.G.E.N. texts get one, others none.
    void setMugenSyntax(QMugenSyntaxProperties *syntax, const SyntaxFormats *formats);
    QSyntaxProcessor *processor() const { return m_processor; }

    QSyntaxHierarchy *hierarchy() const { return m_hierarchy; }
    bool hierarchyEnabled() const { return m_hierarchyEnabled; }
    bool sectionExists(const QString &section) const;
    QString findValue(const QString &section, const QString &key) const;

    // Reads the file through the encoding detection, defaultIndex being the
    // fallback code page. With keepName the text is taken over but the
    // document stays bound to its own file (reading a backup back), and a
    // save of the unchanged text writes the bytes that were read. Fails,
    // leaving the document as it was, when the file can't be read.
    bool loadFile(const QString &path, int defaultIndex, bool keepWatch = false, bool keepName = false);
    // Writes the text with CR LF line ends and a byte-order mark where the
    // encoding has one, through a temporary file renamed into place, so a
    // failed save leaves the previous file whole. asCopy keeps name and
    // modified flag. A text that is still the one read, in the encoding it
    // was read with, is written back as the very bytes that were read: line
    // ends, marks and bytes the encoding could not map stay as they were.
    bool saveFile(const QString &path, bool asUtf8, bool asCopy);
    // Reason of the last failed load or save.
    QString errorString() const { return m_errorString; }
    // Line (0-based) of the first byte that the encoding of the last load
    // could not map, -1 when every byte was read.
    int firstBadLine() const { return m_firstBadLine; }
    // Line (0-based) of the first character that the encoding of the last
    // save could not represent (written as a substitute), -1 when none.
    int firstLossyLine() const { return m_firstLossyLine; }

    void clear();

    // The watcher told of outside changes to the file the document is bound
    // to: from the next load or save on, and until clear().
    void setFileWatcher(QFileWatcherManager *watcher);
    // Reads the file again with the code page of the last load.
    bool reload(const QString &fileName) override;
    bool differsFromFile() const override;

signals:
    void hierarchyUpdated();
    void encodingChanged(const QByteArray &encoding);

public slots:
    void updateHierarchy();
    void docChanged();

private:
    QTextDocument *m_document;
    QString m_fileName;
    QByteArray m_encoding = "UTF-8";
    QTimer m_updateTimer;
    QSyntaxHierarchy *m_hierarchy = nullptr;
    void updateProcessor();
    QSyntaxProcessor *m_processor = nullptr;
    QMugenSyntaxProperties *m_mugenSyntax = nullptr;
    const SyntaxFormats *m_formats = nullptr;
    bool m_hierarchyEnabled;
    bool m_autoSyntax = true;
    int m_language = -1;
    quint32 m_engineVersion = 0x01010000;
    QString m_errorString;
    QPointer<QFileWatcherManager> m_watcher;
    int m_codepage = 0;
    int m_firstBadLine = -1;
    int m_firstLossyLine = -1;
    // What the file held when it was read or last saved, to write an
    // untouched text back byte for byte.
    QByteArray m_fileBytes;
    QString m_fileText;
    QByteArray m_fileEncoding;
};
