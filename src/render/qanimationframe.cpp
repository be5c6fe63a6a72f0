#include "qanimationframe.h"

#include "animations/qanimations.h"
#include "render/qsprrender.h"
#include "sprites/qsprites.h"

namespace QAnimationFrame {

QRenderFrame make(const QAnimations &store, const QSprites *sprites, int anim, int frame)
{
    QRenderFrame r;
    const AnimAction *action = store.action(anim);
    if (!action || frame < 0 || frame >= action->frames.size())
        return r;
    const AnimFrame &f = *action->frames.at(frame);
    r.group = f.group;
    r.number = f.number;
    r.offset = QPoint(f.x, f.y);
    r.flip = f.flip;
    r.trans = f.trans;
    r.src = f.src;
    r.dst = f.dst;
    r.scaleX = f.scaleX;
    r.scaleY = f.scaleY;
    r.angle = f.angle;
    if (f.group >= 0) {
        const int index = sprites ? sprites->findSprite(0, f.group, f.number) : -1;
        if (index >= 0) {
            r.image = sprites->image(index);
            const QSpriteInfo &info = sprites->item(index)->info;
            r.axis = QPoint(info.x, info.y);
        }
        r.missing = r.image.isNull();
    }
    for (int t = 0; t < 2; ++t)
        r.clsn[t] = f.clsn[t];
    // A default block holds from its frame on, until the next one.
    for (int t = 2; t < 4; ++t) {
        for (int i = frame; i >= 0; --i) {
            const AnimFrame *g = action->frames.at(i);
            if (g->hasClsn(t)) {
                r.clsn[t] = g->clsn[t];
                r.clsnFrame[t] = i == frame ? -1 : i;
                break;
            }
        }
    }
    return r;
}

bool storeBoxes(QAnimations &store, int anim, int frame, const QRenderFrame &shown)
{
    bool changed = false;
    for (int t = 0; t < 4; ++t) {
        const int owner = shown.clsnFrame[t] < 0 ? frame : shown.clsnFrame[t];
        QList<QRect> *list = store.clsnList(anim, owner, t);
        if (list && *list != shown.clsn[t]) {
            *list = shown.clsn[t];
            changed = true;
        }
    }
    if (changed)
        store.clsnChanged();
    return changed;
}

QImage picture(const QAnimations &store, QSprites *sprites, int anim, int frame, bool boxes)
{
    QSprRender render;
    render.setSprites(sprites);
    render.setMode(AnimationMode);
    render.setClsnVisible(boxes, boxes, boxes, boxes, true);
    render.setCrosses(false, true);
    const QRenderFrame shown = make(store, sprites, anim, frame);
    render.setFrame(shown, frame);
    render.setZoomIndex(2);
    // Room on every side of the axis for the sprite and the boxes, and the rulers.
    QRect extent = render.spriteRect().translated(-render.origin());
    if (boxes) {
        for (const QList<QRect> &list : shown.clsn)
            for (const QRect &b : list)
                extent |= b.normalized();
    }
    const int margin = 40;
    const int halfW = qMax(qAbs(extent.left()), qAbs(extent.right())) + margin;
    const int halfH = qMax(qAbs(extent.top()), qAbs(extent.bottom())) + margin;
    const QSize size(qMax(320, 30 + 2 * halfW), qMax(240, 30 + 2 * halfH));
    render.setOrigin(30 + (size.width() - 30) / 2, 30 + (size.height() - 30) / 2);
    return render.render(size);
}

} // namespace QAnimationFrame
