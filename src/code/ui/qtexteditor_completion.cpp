// The completion popup: word lists by the text typed before the word, read
// from the completion file, offered as the author types.

#include "qtexteditor.h"

#include "base/qxmlhelper.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QDomDocument>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStringListModel>

namespace {

bool isWordChar(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('.');
}

QString withoutBlanks(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        if (!c.isSpace())
            out.append(c);
    }
    return out;
}

} // namespace

void QTextEditor::loadCompletion(const QString &path)
{
    m_completer->popup()->hide();
    m_completer->setModel(nullptr);
    qDeleteAll(m_completionModels);
    m_completionModels.clear();
    m_popupWidths.clear();

    QDomDocument doc;
    if (!QXmlHelper::parseFile(doc, path) || doc.documentElement().tagName() != QLatin1String("completion"))
        return;
    for (QDomElement m = doc.documentElement().firstChildElement(QStringLiteral("model")); !m.isNull();
         m = m.nextSiblingElement(QStringLiteral("model"))) {
        const QString prefix = withoutBlanks(m.attribute(QStringLiteral("prefix")));
        QStringList words;
        if (auto *existing = qobject_cast<QStringListModel *>(m_completionModels.value(prefix)))
            words = existing->stringList();
        for (QDomElement w = m.firstChildElement(QStringLiteral("word")); !w.isNull();
             w = w.nextSiblingElement(QStringLiteral("word"))) {
            const QString word = w.attribute(QStringLiteral("value"));
            if (!word.isEmpty() && !words.contains(word, Qt::CaseInsensitive))
                words.append(word);
        }
        // The completer looks words up by binary search in this order.
        words.sort(Qt::CaseInsensitive);
        delete m_completionModels.take(prefix);
        m_completionModels.insert(prefix, new QStringListModel(words, this));
    }
}

QAbstractItemModel *QTextEditor::completionModelFor(const QString &textBeforeWord) const
{
    // The longest prefix that the text ends with wins, so that "movetype="
    // is preferred to "type="; the empty prefix is the default list.
    const QString text = withoutBlanks(textBeforeWord);
    QAbstractItemModel *best = nullptr;
    qsizetype bestLength = -1;
    for (auto it = m_completionModels.constBegin(); it != m_completionModels.constEnd(); ++it) {
        if (it.key().size() > bestLength && text.endsWith(it.key(), Qt::CaseInsensitive)) {
            best = it.value();
            bestLength = it.key().size();
        }
    }
    return best;
}

QString QTextEditor::wordBeforeCursor() const
{
    const QTextCursor cursor = textCursor();
    const QString line = cursor.block().text();
    const int end = cursor.positionInBlock();
    int start = end;
    while (start > 0 && isWordChar(line.at(start - 1)))
        --start;
    return line.mid(start, end - start);
}

void QTextEditor::handleCompletion(QKeyEvent *event)
{
    QAbstractItemView *popup = m_completer->popup();
    if (popup->isVisible()) {
        switch (event->key()) {
        case Qt::Key_Escape:
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            event->ignore();
            return;
        default:
            break;
        }
    }
    QPlainTextEdit::keyPressEvent(event);

    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool ctrlOrShift = modifiers & (Qt::ControlModifier | Qt::ShiftModifier);
    if (ctrlOrShift && event->text().isEmpty())
        return;

    const QString prefix = wordBeforeCursor();
    const QTextCursor cursor = textCursor();
    const QString before = cursor.block().text().left(cursor.positionInBlock() - int(prefix.size()));
    QAbstractItemModel *model = completionModelFor(before);

    static const QString endOfWord = QStringLiteral("~!@#$%^&*)_+{}|:\"<>?,./;'[]\\-=");
    const bool hasModifier = modifiers != Qt::NoModifier && !ctrlOrShift;
    const QString typed = event->text();
    if ((!model && !popup->isVisible()) || hasModifier || typed.isEmpty() || endOfWord.contains(typed.right(1))) {
        popup->hide();
        return;
    }
    if (model && m_completer->model() != model)
        m_completer->setModel(model);
    // In this mode the completer puts the current row on the first word
    // that starts with the prefix as it shows the list.
    if (prefix != m_completer->completionPrefix())
        m_completer->setCompletionPrefix(prefix);
    QRect rect = cursorRect();
    rect.setWidth(popupWidth() + popup->verticalScrollBar()->sizeHint().width());
    m_completer->complete(rect);
}

int QTextEditor::popupWidth()
{
    // As wide as the longest word of the list, not only of the rows in view;
    // measured once per list, off the later keystrokes.
    QAbstractItemModel *model = m_completer->model();
    auto it = m_popupWidths.constFind(model);
    if (it != m_popupWidths.constEnd())
        return *it;
    const QAbstractItemView *popup = m_completer->popup();
    const QFontMetrics fm(popup->font());
    int widest = 0;
    for (int row = 0; model && row < model->rowCount(); ++row)
        widest = qMax(widest, fm.horizontalAdvance(model->index(row, 0).data().toString()));
    widest += 2 * fm.averageCharWidth() + 2 * popup->frameWidth();
    m_popupWidths.insert(model, widest);
    return widest;
}

void QTextEditor::insertCompletion(const QString &word)
{
    if (m_completer->widget() != this)
        return;
    // The typed part is replaced as a whole, so the word keeps its own case.
    QTextCursor cursor = textCursor();
    const int typed = int(wordBeforeCursor().size());
    cursor.movePosition(QTextCursor::Left, QTextCursor::KeepAnchor, typed);
    cursor.insertText(word);
    setTextCursor(cursor);
}
