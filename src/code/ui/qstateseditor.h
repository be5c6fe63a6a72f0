#pragma once

#include "shell/qinterfaceeditor.h"

// The editor of the state files (CNS and ST). Its panel controls and commands are laid out by the
// preset; the editing itself builds on this registration.
class QStatesEditor : public QInterfaceEditor
{
    Q_OBJECT

public:
    using QInterfaceEditor::QInterfaceEditor;

    int id() const override { return 4; }
    QString name() const override { return QStringLiteral("editor_st"); }
    QString tag() const override { return QStringLiteral("states"); }
    int layoutFlags() const override { return 11; }
    int workspaceId() const override { return 0; }
    int projectTypes() const override { return 1; }
    int captionId() const override { return 200; }

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
