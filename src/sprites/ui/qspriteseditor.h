#pragma once

#include "shell/qinterfaceeditor.h"

// The editor of the sprites and their palettes. Its panel controls and commands are laid out by the
// preset; the editing itself builds on this registration.
class QSpritesEditor : public QInterfaceEditor
{
    Q_OBJECT

public:
    using QInterfaceEditor::QInterfaceEditor;

    int id() const override { return 1; }
    QString name() const override { return QStringLiteral("editor_sff"); }
    QString tag() const override { return QStringLiteral("sprites"); }
    int layoutFlags() const override { return 7; }
    int workspaceId() const override { return 1; }
    int projectTypes() const override { return 15; }
    int captionId() const override { return 69; }

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
