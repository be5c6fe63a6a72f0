#include "qspritepicture.h"

#include "render/qsprrender.h"
#include "sprites/qsprites.h"

namespace QSpritePicture {

namespace {

// One sprite in sprite mode at a zoom step; the background is set apart, since
// only the stage picture shows it.
void showSprite(QSprRender &render, QSprites *sprites, int index, int palette, int zoomIndex)
{
    render.setSprites(sprites);
    render.setMode(SpriteMode);
    render.setZoomIndex(zoomIndex);
    render.setSpriteIndex(index, palette);
}

} // namespace

QImage alone(QSprites *sprites, int index, int palette, int zoomIndex)
{
    if (!sprites || index < 0 || index >= sprites->count())
        return QImage();
    QSprRender render;
    showSprite(render, sprites, index, palette, zoomIndex);
    render.setBackgroundVisible(false);
    render.setClsnVisible(false, false, false, false, false);
    render.setCrosses(false, false);
    const QRect sprite = render.spriteRect();
    if (sprite.isEmpty())
        return QImage();
    // The axis goes where the stage would put the origin, so that the
    // sprite's top-left corner lands on the canvas's.
    render.setOrigin(render.origin().x() - sprite.left(), render.origin().y() - sprite.top());
    return render.render(sprite.size());
}

QImage onStage(QSprites *sprites, int index, int palette, int zoomIndex)
{
    if (!sprites || index < 0 || index >= sprites->count())
        return QImage();
    QSprRender render;
    showSprite(render, sprites, index, palette, zoomIndex);
    const QRect sprite = render.spriteRect().translated(-render.origin());
    if (sprite.isEmpty())
        return QImage();
    // Room on every side of the axis for the furthest edge, and the rulers.
    const int margin = 40;
    const int halfW = qMax(qAbs(sprite.left()), qAbs(sprite.right())) + margin;
    const int halfH = qMax(qAbs(sprite.top()), qAbs(sprite.bottom())) + margin;
    const QSize size(qMax(320, 30 + 2 * halfW), qMax(240, 30 + 2 * halfH));
    render.setOrigin(30 + (size.width() - 30) / 2, 30 + (size.height() - 30) / 2);
    return render.render(size);
}

} // namespace QSpritePicture
