#pragma once

#include "shell/qappobjects.h"
#include "shell/qinterfaceworkspace.h"

class QTextBrowser;

// Shows the reference documentation beside the program, in the chosen
// language when it has one, in English otherwise.
class QWebBrowserWorkspace : public QInterfaceWorkspace
{
    Q_OBJECT

public:
    explicit QWebBrowserWorkspace(const QAppObjects &objects, QObject *parent = nullptr);

    int id() const override { return 2; }
    QString name() const override { return QStringLiteral("browser"); }
    void activate() override;
    void applyConfig() override;

    // The index page for a language folder, or the English one.
    static QString indexPage(const QString &docsFolder, const QString &language);

private:
    QTextBrowser *browser() const;
    QAppObjects m_objects;
    bool m_loaded = false;
};
