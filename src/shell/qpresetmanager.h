#pragma once

#include "base/qentryfolder.h"

class QColorsetManager;
class QIconsetManager;
class QEditorRegistry;
class QStylesheetManager;

// The layout presets (one XML file each). Applying one lays out the
// toolbars and the controls of every editor's panel, and sets the style
// sheet, icon set and colour set that go with it through their managers.
class QPresetManager
{
public:
    QPresetManager(const QStringList &folders, QIconsetManager *iconsets, QStylesheetManager *stylesheets,
                   QColorsetManager *colorsets);
    ~QPresetManager();

    int count() const { return m_entries.count(); }
    QString name(int i) const { return m_entries.name(i); }
    QEntryFolder &entries() { return m_entries; }
    // The factor pixel values of the last applied preset were scaled by.
    int scale() const { return m_scale; }

    // Given non-empty names of icon set, style sheet and colour set win over
    // the preset's own. Returns false when the preset is missing or isn't one;
    // the interface then has empty toolbars and no placed controls.
    bool apply(QEditorRegistry &target, const QString &name, const QString &iconset,
               const QString &stylesheet, const QString &colorset);

    // Fixes the dots per inch used for scaling (0: ask the screen).
    void setDpiOverride(int dpi) { m_dpiOverride = dpi; }

    void refresh() { m_entries.refresh(); }

private:
    int screenDpi() const;

    QEntryFolder m_entries;
    QIconsetManager *m_iconsets;
    QStylesheetManager *m_stylesheets;
    QColorsetManager *m_colorsets;
    int m_scale = 1;
    int m_dpiOverride = 0;
};
