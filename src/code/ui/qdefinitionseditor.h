#pragma once

#include "shell/qinterfaceeditor.h"

// The editor of the DEF text of the project. Its panel controls and commands are laid out by the
// preset; the editing itself builds on this registration.
class QDefinitionsEditor : public QInterfaceEditor
{
    Q_OBJECT

public:
    using QInterfaceEditor::QInterfaceEditor;

    int id() const override { return 0; }
    QString name() const override { return QStringLiteral("editor_def"); }
    QString tag() const override { return QStringLiteral("definitions"); }
    int layoutFlags() const override { return 3; }
    int workspaceId() const override { return 0; }
    int projectTypes() const override { return 15; }
    int captionId() const override { return 64; }

public slots:
    void clear() override;
    void open() override;
    void save() override;
    void saveAs() override;
    void undo() override;
    void redo() override;
    void cut() override;
    void copy() override;
    void paste() override;
    void find(const QString &text, const QQuickFindOptions &options) override;
    void replace(const QString &text, const QString &with, const QQuickFindOptions &options,
                 bool all) override;
};
