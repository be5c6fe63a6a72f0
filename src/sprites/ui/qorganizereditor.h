#pragma once

#include "shell/qinterfaceextraeditor.h"

// The right-panel page of the order of the items of the current editor's store; its controls come from the preset.
class QOrganizerEditor : public QInterfaceExtraEditor
{
    Q_OBJECT

public:
    using QInterfaceExtraEditor::QInterfaceExtraEditor;

    int id() const override { return 0; }
    QString name() const override { return QStringLiteral("organizer"); }
    int captionId() const override { return 235; }
};
