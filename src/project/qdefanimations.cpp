#include "qdefanimations.h"

#include "animations/airformat.h"
#include "animations/qanimationparser.h"
#include "animations/qanimations.h"
#include "code/qsyntaxtexteditor.h"

#include <QFileInfo>
#include <QHash>
#include <QTextCursor>
#include <QTextDocument>

QDefAnimations::QDefAnimations(QAnimations *store, QSyntaxTextEditor *definitions, std::function<bool()> active,
                               QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_definitions(definitions)
    , m_active(std::move(active))
{
    connect(m_store, &QAnimations::changed, this, &QDefAnimations::storeChanged);
    connect(m_definitions, &QSyntaxTextEditor::hierarchyUpdated, this, &QDefAnimations::definitionsChanged);
}

void QDefAnimations::read()
{
    m_syncing = true;
    const QString name = m_definitions->fileName().isEmpty() ? QStringLiteral("definitions.def")
                                                             : QFileInfo(m_definitions->fileName()).fileName();
    m_store->loadText(m_definitions->text(), name, true);
    m_revision = m_definitions->document()->revision();
    m_syncing = false;
}

void QDefAnimations::definitionsChanged()
{
    if (m_syncing || !m_active() || m_definitions->document()->revision() == m_revision)
        return;
    m_syncing = true;
    m_store->reloadText(m_definitions->text(), true);
    m_revision = m_definitions->document()->revision();
    m_syncing = false;
}

void QDefAnimations::storeChanged()
{
    // Loads and reloads leave the store unmodified: only edits go to the text.
    if (m_syncing || !m_store->isModified() || !m_active())
        return;
    const QString old = m_definitions->text();
    const QString text = merge(old, m_store->actions(), false);
    if (text == old)
        return;
    // One text edit over the span that differs, so that the DEF keeps its
    // undo history and its cursor elsewhere.
    qsizetype prefix = 0;
    const qsizetype shorter = qMin(old.size(), text.size());
    while (prefix < shorter && old.at(prefix) == text.at(prefix))
        ++prefix;
    qsizetype suffix = 0;
    while (suffix < shorter - prefix && old.at(old.size() - 1 - suffix) == text.at(text.size() - 1 - suffix))
        ++suffix;
    m_syncing = true;
    QTextCursor cursor(m_definitions->document());
    cursor.beginEditBlock();
    cursor.setPosition(int(prefix));
    cursor.setPosition(int(old.size() - suffix), QTextCursor::KeepAnchor);
    cursor.insertText(text.mid(prefix, text.size() - suffix - prefix));
    cursor.endEditBlock();
    m_revision = m_definitions->document()->revision();
    m_syncing = false;
}

QString QDefAnimations::merge(const QString &defText, const QList<AnimAction *> &actions, bool rewriteAll)
{
    QAnimationParser parser(nullptr, QString());
    parser.setSource(QAnimationParser::DefinitionsText);
    parser.setText(defText);
    QList<QAnimationParser::Extent> extents;
    const QList<AnimAction *> parsed = parser.parseAll(&extents);

    QList<qsizetype> starts{0};
    for (qsizetype i = defText.indexOf(QLatin1Char('\n')); i >= 0; i = defText.indexOf(QLatin1Char('\n'), i + 1))
        starts.append(i + 1);
    auto offset = [&](int line) { return line < starts.size() ? starts.at(line) : defText.size(); };
    const bool crlf = defText.contains(QLatin1String("\r\n"));
    auto written = [crlf](const AnimAction &a) {
        QString t = AirFormat::actionText(a);
        if (!crlf)
            t.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        return t;
    };

    // The n-th action of a number goes where the n-th block of that number was.
    QHash<qint32, QList<const AnimAction *>> byNumber;
    for (const AnimAction *a : actions)
        byNumber[a->number].append(a);
    QHash<const AnimAction *, bool> placed;

    QString out;
    out.reserve(defText.size());
    qsizetype done = 0;
    for (const QAnimationParser::Extent &e : std::as_const(extents)) {
        const qsizetype from = offset(e.firstLine);
        const qsizetype to = offset(e.lastLine + 1);
        out += QStringView(defText).mid(done, from - done);
        done = to;
        QList<const AnimAction *> &same = byNumber[e.action->number];
        if (same.isEmpty())
            continue; // the action is gone
        const AnimAction *a = same.takeFirst();
        placed.insert(a, true);
        if (!rewriteAll && a->sameContent(*e.action))
            out += QStringView(defText).mid(from, to - from);
        else
            out += written(*a);
    }
    const qsizetype tail = extents.isEmpty() ? defText.size() : done;
    out += QStringView(defText).mid(done, tail - done);
    QString added;
    for (const AnimAction *a : actions) {
        if (!placed.contains(a))
            added += (crlf ? QLatin1String("\r\n") : QLatin1String("\n")) + written(*a);
    }
    if (!added.isEmpty()) {
        if (!out.isEmpty() && !out.endsWith(QLatin1Char('\n')))
            out += crlf ? QLatin1String("\r\n") : QLatin1String("\n");
        out += added;
    }
    out += QStringView(defText).mid(tail);
    AnimPool::giveActions(parsed);
    return out;
}
