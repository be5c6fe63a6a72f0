#include "sctrledit.h"

#include "code/qsyntaxtexteditor.h"
#include "qtexteditor.h"
#include "shell/qaskuser.h"

#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

SCtrlEdit::SCtrlEdit(QMugenSyntaxProperties *syntax, const SyntaxFormats *formats, QWidget *parent)
    : QDialog(parent)
    , m_document(new QSyntaxTextEditor(false, this))
    , m_editor(new QTextEditor(this))
{
    setObjectName(QStringLiteral("SCtrlEdit"));
    setWindowTitle(tr("State controller"));
    resize(560, 420);
    m_document->setAutoSyntax(false);
    m_document->setSyntax(QSyntaxTextEditor::Mugen);
    m_document->setMugenSyntax(syntax, formats);
    m_editor->setObjectName(QStringLiteral("sctrlEditor"));
    m_editor->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_editor->setDocument(m_document->document());
    auto *save = new QPushButton(tr("Save..."), this);
    save->setObjectName(QStringLiteral("pushButton"));
    save->setDefault(false);
    save->setAutoDefault(false);
    auto *cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName(QStringLiteral("pushButton_2"));
    cancel->setAutoDefault(false);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(save);
    buttons->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_editor, 1);
    layout->addLayout(buttons);
    QMetaObject::connectSlotsByName(this);
}

SCtrlEdit::~SCtrlEdit()
{
    // The view lets go of the document before the document goes.
    m_editor->setDocument(nullptr);
}

void SCtrlEdit::setText(const QString &text)
{
    m_document->setText(text);
    m_document->setModified(false);
    QTextCursor c(m_document->document());
    c.movePosition(QTextCursor::End);
    m_editor->setTextCursor(c);
}

QString SCtrlEdit::text() const
{
    return m_document->text();
}

void SCtrlEdit::setCodeFont(const QFont &font)
{
    m_editor->setFont(font);
}

void SCtrlEdit::setSaveFolder(const QString &folder, const QString &name)
{
    m_folder = folder;
    m_name = name;
}

void SCtrlEdit::on_pushButton_2_clicked()
{
    reject();
}

void SCtrlEdit::on_pushButton_clicked()
{
    const QString start = m_folder + QLatin1Char('/') + (m_name.isEmpty() ? QStringLiteral("untitled") : m_name)
                          + QStringLiteral(".sctrl");
    QDir().mkpath(m_folder);
    QString file = QAskUser::saveFileName(this, tr("Save state controller"), start,
                                          tr("State controller (*.sctrl)"));
    if (file.isEmpty())
        return;
    if (QFileInfo(file).suffix().compare(QLatin1String("sctrl"), Qt::CaseInsensitive) != 0)
        file += QStringLiteral(".sctrl");
    if (!m_document->saveFile(file, true, true)) {
        QAskUser::critical(this, tr("Save state controller"),
                           tr("Cannot save %1:\n%2").arg(QDir::toNativeSeparators(file), m_document->errorString()));
        return;
    }
    m_saved = file;
    accept();
}
