#pragma once

#include "sprites/qrgbpal.h"

#include <QDialog>
#include <QHash>
#include <QImage>
#include <QList>

class QAction;
class QCheckBox;
class QComboBox;
class QImageWidget;
class QLabel;
class QPaletteWidget;
class QProject;
class QPushButton;
class QRGBPalette;
class QRadioButton;
class QSlider;
class QSprites;
class QTranslationUnit;

// The advanced palette editor: the character's palette on the left, the
// palette of an image on the right, the image beside them drawn in whichever
// palette is active. Work happens on copies; nothing reaches the sprite store
// until "Commit changes" (the palette) or "Commit sprite changes" (the
// picture), each of which is one undo step of the store.
class PalEditor : public QDialog
{
    Q_OBJECT

public:
    // `palette`: the store's palette the left side starts from and is committed
    // to; `sprite`: the sprite whose picture and colours the right side starts
    // from. Either may be -1.
    PalEditor(QProject *project, int palette, int sprite, QWidget *parent = nullptr);
    ~PalEditor() override;

    // The commands by key ("advpal_undo"); null for an unknown key.
    QAction *action(const QString &key) const { return m_actions.value(key); }
    QPaletteWidget *charView() const { return m_views[0]; }
    QPaletteWidget *imageView() const { return m_views[1]; }
    const QRGBPal &charColors() const { return m_colors[0]; }
    const QRGBPal &imageColors() const { return m_colors[1]; }
    const QImage &image() const { return m_image; }
    bool charActive() const { return m_active == 0; }
    void setEffect(int kind);
    void setHsl(int hue, int saturation, int lightness);
    void setRgb(int red, int green, int blue);

public slots:
    void open();
    void save();
    void zoomOut();
    void zoomIn();
    void openImg();
    void saveImg();
    void swPos();
    void grad();
    void setCor();
    void delDupl();
    void addDiff();
    void optPal();
    void autoOrg();
    void grayScale();
    void genPal();
    void insPal();
    void undo();
    void redo();
    void adaptImg();
    void invertAll();
    void saveGrpIdx();
    void commChanges();
    void commSprChanges();
    void effectApply();
    void hueSatNo();
    void hueSatYes();
    void rgbNo();
    void rgbYes();
    void selToLeft();
    void selToRight();
    void corToLeft();
    void corToRight();
    void activeChar(bool on);
    void activeImgPal(bool on);
    void maskToggled(bool on);
    void maskCl();
    void colorClicked(uchar index, bool add);
    void hueSatChanged(int value);
    void rgbChanged(int value);
    // Drops what the sliders show and puts them back to zero.
    void resetEffect();

signals:
    // After a commit: the palette given to the store, the picture given to the sprite.
    void setPalette(QRGBPal *palette);
    void setSprite(QImage &image);

private:
    struct Snapshot
    {
        QRGBPal colors[2];
        QImage image;
    };

    // --- construction (paleditor.cpp) ---
    void buildActions();
    void buildLayout();
    QAction *addCommand(const char *key, int captionId, void (PalEditor::*slot)(), bool checkable = false);

    // --- state ---
    QRGBPalette *worker() const { return m_workers[m_active]; }
    QPaletteWidget *view() const { return m_views[m_active]; }
    QRGBPalette *otherWorker() const { return m_workers[1 - m_active]; }
    QPaletteWidget *otherView() const { return m_views[1 - m_active]; }
    // The active selection, or null (every entry) when nothing is selected.
    const quint8 *selectionOrAll() const;
    // Takes an undo snapshot of both palettes and the image.
    void remember();
    Snapshot current() const;
    void restore(const Snapshot &snapshot);
    // Keeps what the sliders show before another change builds on it.
    void settleSliders();
    void recomputeLive();
    void zeroSliders();
    bool slidersMoved() const;
    void refreshImage();
    void updateActions();
    void setImage(const QImage &image);
    void sendSelection(int to);
    void sendColors(int to);
    void status(const QString &text);
    QSprites *sprites() const;

    QProject *m_project;
    int m_palette;
    int m_sprite;
    QRGBPal m_colors[2];
    QRGBPalette *m_workers[2];
    QPaletteWidget *m_views[2] = {};
    int m_active = 0;
    QImage m_image;
    QList<Snapshot> m_undo;
    QList<Snapshot> m_redo;
    // Above zero while a change must not take a snapshot of its own.
    int m_quiet = 0;

    // The sliders work on a copy of the active palette taken when the first
    // one moves; Reset goes back to it, Apply keeps the result.
    bool m_live = false;
    bool m_zeroing = false;
    QRGBPal m_liveBase;
    QSlider *m_hsl[3] = {};
    QSlider *m_rgb[3] = {};

    QColor m_maskColor;
    QTranslationUnit *m_texts = nullptr;
    QHash<QString, QAction *> m_actions;
    QImageWidget *m_imageView = nullptr;
    QComboBox *m_effects = nullptr;
    QRadioButton *m_charRadio = nullptr;
    QRadioButton *m_imageRadio = nullptr;
    QCheckBox *m_mask = nullptr;
    QPushButton *m_maskColorButton = nullptr;
    QLabel *m_status = nullptr;
};
