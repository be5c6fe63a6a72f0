#include "arguments.h"

bool Arguments::parse(const QStringList &words, const QList<Option> &allowed, QString *error)
{
    m_options.clear();
    m_positional.clear();

    QList<Option> known = allowed;
    known.append({QStringLiteral("help"), false});
    known.append({QStringLiteral("version"), false});

    bool optionsEnded = false;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString &word = words.at(i);
        if (optionsEnded || word == QLatin1String("-") || !word.startsWith(QLatin1Char('-'))) {
            m_positional.append(word);
            continue;
        }
        if (word == QLatin1String("--")) {
            optionsEnded = true;
            continue;
        }
        if (word == QLatin1String("-h")) {
            m_options.insert(QStringLiteral("help"), QString());
            continue;
        }

        QString name = word.startsWith(QLatin1String("--")) ? word.mid(2) : QString();
        QString inlineValue;
        bool hasInlineValue = false;
        const qsizetype eq = name.indexOf(QLatin1Char('='));
        if (eq >= 0) {
            inlineValue = name.mid(eq + 1);
            name.truncate(eq);
            hasInlineValue = true;
        }

        const Option *spec = nullptr;
        for (const Option &o : known) {
            if (!name.isEmpty() && o.name == name)
                spec = &o;
        }
        if (!spec) {
            *error = QStringLiteral("unknown option '%1'").arg(word);
            return false;
        }
        if (!spec->takesValue) {
            if (hasInlineValue) {
                *error = QStringLiteral("option '--%1' takes no value").arg(name);
                return false;
            }
            m_options.insert(name, QString());
            continue;
        }
        if (!hasInlineValue) {
            if (i + 1 >= words.size()) {
                *error = QStringLiteral("option '--%1' needs a value").arg(name);
                return false;
            }
            inlineValue = words.at(++i);
        }
        m_options.insert(name, inlineValue);
    }
    return true;
}
