#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

// The words after a command: positional arguments and "--name" / "--name value" /
// "--name=value" options, in any order; "--" ends the options. Every command
// accepts "--help" ("-h") and "--version" besides its own options.
class Arguments
{
public:
    struct Option
    {
        QString name;        // without the dashes
        bool takesValue = false;
    };

    // False, with a one-line reason in `error`, for an unknown option or an option
    // without its value.
    bool parse(const QStringList &words, const QList<Option> &allowed, QString *error);

    bool has(const QString &name) const { return m_options.contains(name); }
    QString value(const QString &name) const { return m_options.value(name); }
    const QStringList &positional() const { return m_positional; }

    bool wantsHelp() const { return has(QStringLiteral("help")); }
    bool wantsVersion() const { return has(QStringLiteral("version")); }

private:
    QMap<QString, QString> m_options;
    QStringList m_positional;
};
