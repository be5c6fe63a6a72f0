#pragma once

#include "qpalettewidget.h"
#include "shell/qinterfaceextraeditor.h"
#include "sprites/qrgbpal.h"

#include <QHash>
#include <QList>
#include <QModelIndex>
#include <QPointer>

class QEditorRegistry;
class QMugenModel;
class QRGBPalette;
class QSprites;
struct QAppObjects;

// The right-panel page of the palettes of the sprite store: one palette at a
// time, its group and number, its 256 colours in a QPaletteWidget, and the
// commands that add, delete, load and save palettes. Every change is stored in
// the store at once, through its operations, so it can be undone there too;
// the sprite on the stage is drawn in the palette shown here.
class QPalettesEditor : public QInterfaceExtraEditor
{
    Q_OBJECT

public:
    QPalettesEditor(QEditorRegistry &registry, const QAppObjects &objects, QObject *parent = nullptr);
    ~QPalettesEditor() override;

    int id() const override { return 1; }
    QString name() const override { return QStringLiteral("palettes"); }
    int captionId() const override { return 114; }
    void activate(bool reload) override;
    void deactivate() override;
    void setProject(QProject *project) override;

    // Declares the actions and controls the preset places; once, after registration.
    void setupControls();

    // The palette shown, from 0; -1 while the store has none.
    int position() const;
    QPaletteWidget *view() const { return m_view; }
    QSprites *sprites() const;
    // The sprites editor shows a sprite: with "switch to the palette of the
    // sprite" on, the panel goes to that sprite's palette.
    void followSprite(int sprite);
    // While the picker is on, a click on the stage selects the colour under it.
    bool isPicking() const { return m_picking && m_active; }

public slots:
    void clearUnused();
    void add();
    void del();
    void delDupl();
    void open();
    void save();
    void switchCount();
    void undo();
    void redo();
    void switchColor();
    void setColor();
    void pickColor(bool on);
    void colorCaptured(uchar index);
    void setSprPal();
    void setGrpPal();
    // The remap table, edited in RemapDlg while the stage follows; applied to
    // the sprites' palettes as one undo step.
    void remap();
    void remapChanged(const QModelIndex &from, const QModelIndex &to);

    void selPosChanged(int position);
    void grpChanged(int group);
    void numChanged(int number);
    void prevGrp();
    void nextGrp();
    void changed();

signals:
    void enabled(bool on);
    void setSelPos(int position);
    void setPosText(const QString &text);
    void setGroup(int group);
    void setNumber(int number);
    void setColorCount(ushort count);
    void canUndo(bool on);
    void canRedo(bool on);
    void canSwitchColor(bool on);
    void canSetColor(bool on);
    // The palette the stage should draw in has changed.
    void shownPaletteChanged();

private:
    QWidget *window() const;
    bool flag(const char *key, bool fallback) const;
    void definePos(int position);
    void updateSel();
    void attachStore();
    void detachStore();
    void updateHistoryActions();
    // Stores the colours of the view in the current palette.
    void storeColors();
    // Every sprite of `sprites` takes the shown palette, as one undo step.
    void applyToSprites(const QList<int> &sprites);

    QEditorRegistry &m_registry;
    QMugenModel *m_config = nullptr;
    QPointer<QPaletteWidget> m_view; // owned by its control
    QRGBPalette *m_worker = nullptr;
    QRGBPal m_colors;
    QHash<QProject *, int> m_positions;
    QList<QMetaObject::Connection> m_connections;
    int m_pos = 0;
    int m_followed = -1;      // the sprite whose palette the panel went to last
    int m_viewPalette = -1;   // the palette whose colours the view holds
    bool m_updating = false;  // the panel is being filled: its echoes change nothing
    bool m_storing = false;   // our own change is reaching the store
    bool m_refreshPending = false;
    bool m_picking = false;
};
