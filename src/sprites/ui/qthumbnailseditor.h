#pragma once

#include "shell/qinterfaceextraeditor.h"

// The right-panel page of the thumbnails of the sprites; its controls come from the preset.
class QThumbnailsEditor : public QInterfaceExtraEditor
{
    Q_OBJECT

public:
    using QInterfaceExtraEditor::QInterfaceExtraEditor;

    int id() const override { return 2; }
    QString name() const override { return QStringLiteral("thumbnails"); }
    int captionId() const override { return 243; }
};
