#pragma once

#include "shell/qinterfaceextraeditor.h"

// The right-panel page of the palettes of the sprite store; its controls come from the preset.
class QPalettesEditor : public QInterfaceExtraEditor
{
    Q_OBJECT

public:
    using QInterfaceExtraEditor::QInterfaceExtraEditor;

    int id() const override { return 1; }
    QString name() const override { return QStringLiteral("palettes"); }
    int captionId() const override { return 114; }
};
