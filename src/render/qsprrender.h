#pragma once

#include "render/qrenderer.h"
#include "render/qrenderframe.h"
#include "render/qzoom.h"

#include <QBrush>
#include <QColor>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>

class QSprites;

// One collision box as the stage shows it.
struct RenderClsnBox
{
    QRect rect;   // sprite units, as stored in the frame
    QRect screen; // host pixels
    QRect start;  // `screen` when a resize began
    int type = Clsn1;
    bool selected = false;
    int index = 0; // position in its list
};

// The stage of the sprites, animations and sounds editors: one sprite of the
// store (sprite mode) or one animation frame (animation mode) on a zoomable
// gradient background, with reference image, onion skin, axis crosses,
// guides, rulers and collision boxes, and the mouse work on all of these.
class QSprRender : public QRenderer
{
    Q_OBJECT

public:
    // What the mouse is over, and so what a drag moves.
    enum Zone {
        ZoneNone = 0, ZoneSprite, ZoneAnimCross, ZoneExtraCross, ZoneGuideY, ZoneGuideX, ZoneBox,
        ZoneHandle = 7 // 7 to 14: the eight handles, top-left to bottom-right
    };
    enum OnionMode { OnionNormal = 0, OnionGrey, OnionLighter, OnionDarker };
    enum ReferenceType { RefNone = 0, Ref240p, Ref480p, Ref720p, Ref1080p, RefFile };

    explicit QSprRender(QObject *parent = nullptr);

    // --- setup ---------------------------------------------------------------
    void setOrigin(int x, int y);
    QPoint origin() const { return m_origin; }
    void setSprites(QSprites *sprites);
    void setMode(QRenderMode mode);
    QRenderMode mode() const { return m_mode; }
    void setLocked(bool locked) { m_locked = locked; }
    void setBlank(bool blank);
    // Off for a bare picture on a transparent target (the command-line tool).
    void setBackgroundVisible(bool visible);

    // --- view flags ----------------------------------------------------------
    void setPickColor(bool pick) { m_pickColor = pick; }
    void setClsnVisible(bool t0, bool t1, bool t2, bool t3, bool rulers);
    void setExtraCross(bool on);
    void setOnion(bool on, int mode, int opacityPercent);
    void setCrosses(bool sprite, bool animation);
    void setGuides(bool on);
    void setOrder(bool clsnOverAxis, bool spriteOverGuides);
    void setShowColour0(bool show);
    bool rulers() const { return m_rulers; }
    bool guides() const { return m_guides; }
    bool spriteCross() const { return m_spriteCross; }
    bool animationCross() const { return m_animCross; }
    bool clsnVisible(int type) const { return m_clsnVisible[type & 3]; }

    // --- zoom ----------------------------------------------------------------
    void setZoomIndex(int index);
    int zoomIndex() const { return m_zoom.index(); }
    qreal zoom() const { return m_zoom.factor(); }
    void zoomOut();
    void zoomIn();
    void fitZoom();

    // --- appearance ----------------------------------------------------------
    // In the order Clsn1, Clsn1Default, Clsn2, Clsn2Default.
    void setClsnColours(const QColor &c0, const QColor &c2, const QColor &c1, const QColor &c3);
    // Type 0 and 1 are the built-in sets, 2 the three files (each falling back
    // to the first set); other values keep the images.
    void setCrossImages(int type, const QString &spriteFile, const QString &animFile,
                        const QString &extraFile);
    void setBackground(const QColor &start, const QColor &end, int type, int x, int y,
                       const QString &file);

    // --- content -------------------------------------------------------------
    // Sprite mode: sprite `index` of the store, in palette `palette` (its own
    // when negative). An index out of range shows nothing.
    void setSpriteIndex(int index, int palette = -1);
    int spriteIndex() const { return m_spriteIndex; }
    // Animation mode: the frame to show; `frameIndex` is where its own boxes live.
    void setFrame(const QRenderFrame &frame, int frameIndex = 0);
    const QRenderFrame &frame() const { return m_frame; }
    int frameIndex() const { return m_frameIndex; }
    // The onion skin: another sprite of the store drawn under the current one.
    void setOnionSprite(int index);
    void clear();
    void relayout();

    QPoint extraAxis() const { return m_extraAxis; }
    void setExtraAxis(const QPoint &axis);
    QPoint guide() const { return m_guide; }
    void setGuide(const QPoint &guide) { m_guide = guide; }

    // --- boxes ---------------------------------------------------------------
    void setAdding(bool adding, int type);
    bool isAdding() const { return m_adding; }
    void clearSelection();
    void selectAll();
    void deleteSelected();
    void moveSelected(int dx, int dy);
    void swapSelected(bool toggleDefault);
    // The selection as Clsn text; empty when nothing is selected.
    QString selectedClsnText() const;
    const QList<RenderClsnBox> &boxes() const { return m_boxes; }
    bool anySelected() const { return m_anySelected; }

    // --- geometry and hit tests (host pixels) --------------------------------
    int hitTest(const QPoint &point) const;
    QRect spriteRect() const { return m_spriteRect; }
    QPoint handle(int i) const { return m_handles[i]; }

    // --- host ----------------------------------------------------------------
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(const QSize &size) override;
    void paint(QPainter *painter, const QRect &exposed) override;

    // Draws a whole stage of `size` into a new ARGB image.
    QImage render(const QSize &size);

    // The image with the stage's palette effect on its colour table: 0 none,
    // 1 grey, 2 lighter, 3 darker. Colour 0 stays transparent unless `colour0`.
    static QImage withPaletteEffect(const QImage &image, int effect, bool colour0);

signals:
    // The axis (sprite mode) or the frame offset (animation mode) was dragged.
    void axisChanged(QRenderMode mode, const QPoint &value);
    void extraAxisChanged();
    void guideChanged();
    // Boxes were added, moved, resized, deleted or swapped: the frame's lists
    // in frame() are the new ones.
    void clsnChanged();
    // The right button ended adding boxes.
    void clsnModeExit();
    void colorCaptured(uchar index);
    // Mouse position relative to the origin, in host pixels.
    void cursorChanged(const QPoint &position);
    void zoomChanged(int index);

private:
    void paintSprite(QPainter &p);
    void paintFrame(QPainter &p);
    void paintMissing(QPainter &p);
    void paintCrosses(QPainter &p);
    void paintGuides(QPainter &p);
    void paintBoxes(QPainter &p);
    void paintRulers(QPainter &p);
    void prepareImages();
    void loadBoxes();
    void layoutBoxes();
    void computeHandles();
    int boxTest(const QPoint &point) const;
    bool boxTestCycle(const QPoint &point); // moves the current box through overlaps
    int hitTestImpl(const QPoint &point, bool cycle);
    void storeSelectedBoxes();
    void setCursorFor(int zone);
    void resizeSelection(int dx, int dy);
    QPoint pixelAt(const QPoint &mouse) const;

    QSprites *m_sprites = nullptr;
    QRenderMode m_mode = SpriteMode;
    QZoom m_zoom;

    // Sprite mode: the shown sprite, its axis and the palette asked for.
    int m_spriteIndex = -1;
    int m_palette = -1;
    QPoint m_spriteAxis;
    QImage m_sprite;          // as decoded (flipped in animation mode)
    QImage m_draw;            // ready to draw: colour table applied, premultiplied
    QImage m_drawColour0;     // only colour 0, opaque (frames with blending)
    QImage m_drawMultiply;    // the additive destination factor as grey
    QRenderFrame m_frame;
    int m_frameIndex = 0;
    QPoint m_adjusted;        // the frame's axis after flip and offset

    int m_onionIndex = -1;
    QPoint m_onionAxis;
    QImage m_onion;
    int m_onionMode = OnionGrey;
    qreal m_onionOpacity = 0.5;

    QPoint m_extraAxis{100, -100};
    QPoint m_origin{250, 250};
    QPoint m_refOffset;
    QPoint m_guide;
    QColor m_backStart{0x30, 0x40, 0x60};
    QColor m_backEnd{0x10, 0x10, 0x18};
    QBrush m_background;
    QImage m_reference;
    QImage m_crossImages[3];
    QColor m_clsnColours[4] = {Qt::red, Qt::blue, Qt::magenta, Qt::darkBlue};

    bool m_locked = false;
    bool m_blank = false;
    bool m_showBackground = true;
    bool m_spriteCross = true;
    bool m_animCross = false;
    bool m_onionOn = false;
    bool m_colour0 = false;
    bool m_pickColor = false;
    bool m_rulers = true;
    bool m_extraCross = false;
    bool m_guides = false;
    bool m_clsnVisible[4] = {true, true, true, true};
    bool m_clsnOverAxis = true;
    bool m_spriteOverGuides = false;

    bool m_adding = false;
    int m_addType = Clsn1;
    QList<RenderClsnBox> m_boxes;
    int m_current = -1;
    bool m_anySelected = false;
    QPoint m_handles[8];
    QRect m_selectionStart;

    QRect m_spriteRect, m_spriteCrossRect, m_animCrossRect, m_extraCrossRect, m_refRect, m_onionRect;

    bool m_dragging = false;
    QPoint m_last;
    int m_dragZone = ZoneNone;
};
