#pragma once

#include <QStringList>

class QInterface;

// Lists the layout presets beside the program (one XML file each) and applies
// one: the toolbars, the controls of every editor's panel, and the style
// sheet, icon set and colour set that go with it.
class QPresetManager
{
public:
    explicit QPresetManager(const QString &folder);
    ~QPresetManager();

    int count() const { return int(m_names.size()); }
    QString name(int i) const { return m_names.value(i); }
    // The factor pixel values of the last applied preset were scaled by.
    int scale() const { return m_scale; }

    // Given non-empty names of icon set, style sheet and colour set win over
    // the preset's own. Returns false when the preset is missing or isn't one;
    // the interface then has empty toolbars and no placed controls.
    bool apply(QInterface *target, const QString &name, const QString &iconset,
               const QString &stylesheet, const QString &colorset);
    bool apply(const QString &name, const QString &iconset, const QString &stylesheet,
               const QString &colorset);

    // Fixes the dots per inch used for scaling (0: ask the screen).
    void setDpiOverride(int dpi) { m_dpiOverride = dpi; }

    void refresh();

private:
    int screenDpi() const;

    QString m_folder;
    QStringList m_names;
    int m_scale = 1;
    int m_dpiOverride = 0;
};
