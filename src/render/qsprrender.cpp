#include "qsprrender.h"

#include "sprites/qsprites.h"

#include <QFile>
#include <QFont>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace {

const char *const kReferenceFiles[] = {nullptr, ":/imgs/Imgs/240p.png", ":/imgs/Imgs/480p.png",
                                       ":/imgs/Imgs/720p.png", ":/imgs/Imgs/1080p.png"};
const char *const kCrossSets[2][3] = {
    {":/imgs/Imgs/sff.png", ":/imgs/Imgs/air.png", ":/imgs/Imgs/extra.png"},
    {":/imgs/Imgs/cruz.png", ":/imgs/Imgs/cruz2.png", ":/imgs/Imgs/cruz3.png"},
};

// Float to screen integer: layout truncates, mouse-derived lengths round.
inline int toInt(qreal v) { return int(v); }

// Ready to draw many times: premultiplied ARGB, colour table applied once.
QImage drawable(const QImage &image)
{
    if (image.isNull())
        return image;
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// `image` with the colour table `table`; a 32-bit image is left as it is.
QImage withTable(const QImage &image, const QList<QRgb> &table)
{
    if (image.format() != QImage::Format_Indexed8)
        return image;
    QImage out = image;
    out.setColorTable(table);
    return out;
}

QRect ordered(const QRect &r)
{
    return QRect(QPoint(qMin(r.left(), r.right()), qMin(r.top(), r.bottom())),
                 QPoint(qMax(r.left(), r.right()), qMax(r.top(), r.bottom())));
}

} // namespace

QSprRender::QSprRender(QObject *parent)
    : QRenderer(parent)
{
    setCrossImages(0, QString(), QString(), QString());
    m_size = QSize(640, 480);
    setBackground(m_backStart, m_backEnd, RefNone, 0, 0, QString());
}

// --- setup --------------------------------------------------------------------

void QSprRender::setOrigin(int x, int y)
{
    m_origin = QPoint(x, y);
    relayout();
}

void QSprRender::setSprites(QSprites *sprites)
{
    m_sprites = sprites;
}

void QSprRender::setMode(QRenderMode mode)
{
    m_mode = mode;
    m_boxes.clear();
    m_current = -1;
    m_anySelected = false;
    m_adding = false;
    relayout();
}

void QSprRender::setBlank(bool blank)
{
    m_blank = blank;
    emit repaintNeeded(false);
}

void QSprRender::setBackgroundVisible(bool visible)
{
    m_showBackground = visible;
    prepareImages();
}

// --- view flags -----------------------------------------------------------------

void QSprRender::setClsnVisible(bool t0, bool t1, bool t2, bool t3, bool rulers)
{
    m_clsnVisible[0] = t0;
    m_clsnVisible[1] = t1;
    m_clsnVisible[2] = t2;
    m_clsnVisible[3] = t3;
    m_rulers = rulers;
    emit repaintNeeded(false);
}

void QSprRender::setExtraCross(bool on)
{
    m_extraCross = on;
    emit repaintNeeded(false);
}

void QSprRender::setOnion(bool on, int mode, int opacityPercent)
{
    const bool reload = mode != m_onionMode;
    m_onionOn = on;
    m_onionMode = mode;
    m_onionOpacity = qBound(0, opacityPercent, 100) / 100.0;
    if (reload)
        setOnionSprite(m_onionIndex);
    emit repaintNeeded(false);
}

void QSprRender::setCrosses(bool sprite, bool animation)
{
    m_spriteCross = sprite;
    m_animCross = animation;
    emit repaintNeeded(false);
}

void QSprRender::setGuides(bool on)
{
    m_guides = on;
    emit repaintNeeded(false);
}

void QSprRender::setOrder(bool clsnOverAxis, bool spriteOverGuides)
{
    m_clsnOverAxis = clsnOverAxis;
    m_spriteOverGuides = spriteOverGuides;
    emit repaintNeeded(false);
}

void QSprRender::setShowColour0(bool show)
{
    m_colour0 = show;
    prepareImages();
    if (m_onionIndex >= 0)
        setOnionSprite(m_onionIndex);
    emit repaintNeeded(false);
}

// --- zoom -----------------------------------------------------------------------

void QSprRender::setZoomIndex(int index)
{
    m_zoom.setIndex(qMin(index, QZoom::Count - 1));
    relayout();
    emit zoomChanged(m_zoom.index());
}

void QSprRender::zoomOut()
{
    if (m_zoom.zoomOut(m_sprite.isNull() ? 1000 : m_sprite.width(), m_sprite.isNull() ? 1000 : m_sprite.height()))
        setZoomIndex(m_zoom.index());
}

void QSprRender::zoomIn()
{
    if (m_zoom.zoomIn())
        setZoomIndex(m_zoom.index());
}

void QSprRender::fitZoom()
{
    if (m_sprite.isNull())
        return;
    m_zoom.fit(m_sprite.width(), m_sprite.height());
}

// --- appearance -----------------------------------------------------------------

void QSprRender::setClsnColours(const QColor &c0, const QColor &c2, const QColor &c1, const QColor &c3)
{
    m_clsnColours[Clsn1] = c0;
    m_clsnColours[Clsn1Default] = c2;
    m_clsnColours[Clsn2] = c1;
    m_clsnColours[Clsn2Default] = c3;
    emit repaintNeeded(false);
}

void QSprRender::setCrossImages(int type, const QString &spriteFile, const QString &animFile,
                                const QString &extraFile)
{
    if (type == 0 || type == 1) {
        for (int i = 0; i < 3; ++i)
            m_crossImages[i] = QImage(QString::fromLatin1(kCrossSets[type][i]));
    } else if (type == 2) {
        const QString files[3] = {spriteFile, animFile, extraFile};
        for (int i = 0; i < 3; ++i)
            m_crossImages[i] = QImage(QFile::exists(files[i]) ? files[i] : QString::fromLatin1(kCrossSets[0][i]));
    } else {
        return;
    }
    for (QImage &img : m_crossImages)
        img = drawable(img);
    relayout();
}

void QSprRender::setBackground(const QColor &start, const QColor &end, int type, int x, int y,
                               const QString &file)
{
    m_backStart = start;
    m_backEnd = end;
    m_refOffset = QPoint(x, y);
    if (type >= Ref240p && type <= Ref1080p)
        m_reference = QImage(QString::fromLatin1(kReferenceFiles[type]));
    else if (type == RefFile && !file.isEmpty())
        m_reference = QImage(file);
    else
        m_reference = QImage();
    m_reference = drawable(m_reference);
    resizeEvent(m_size);
}

// --- content --------------------------------------------------------------------

QImage QSprRender::withPaletteEffect(const QImage &image, int effect, bool colour0)
{
    if (image.format() != QImage::Format_Indexed8)
        return image;
    QList<QRgb> table = image.colorTable();
    table.resize(256, 0);
    for (QRgb &c : table) {
        int r = qRed(c), g = qGreen(c), b = qBlue(c);
        switch (effect) {
        case OnionGrey:
            r = g = b = (r + g + b) / 3;
            break;
        case OnionLighter:
            r = qMin(r + 128, 255), g = qMin(g + 128, 255), b = qMin(b + 128, 255);
            break;
        case OnionDarker:
            r = qMax(r - 128, 0), g = qMax(g - 128, 0), b = qMax(b - 128, 0);
            break;
        default:
            break;
        }
        c = qRgba(r, g, b, qAlpha(c));
    }
    // Colour 0 is the transparent colour of every indexed sprite.
    table[0] = colour0 ? (table[0] | 0xff000000u) : (table[0] & 0x00ffffffu);
    return withTable(image, table);
}

void QSprRender::setSpriteIndex(int index, int palette)
{
    m_spriteIndex = index;
    m_palette = palette;
    m_sprite = QImage();
    m_spriteAxis = QPoint();
    if (m_sprites && index >= 0 && index < m_sprites->count()) {
        m_sprite = m_sprites->image(index, palette);
        const QSpriteInfo &info = m_sprites->item(index)->info;
        m_spriteAxis = QPoint(info.x, info.y);
    } else {
        m_spriteIndex = -1;
    }
    prepareImages();
    relayout();
}

void QSprRender::setFrame(const QRenderFrame &frame, int frameIndex)
{
    m_frame = frame;
    m_frameIndex = frameIndex;
    m_sprite = frame.image;
    if (!m_sprite.isNull() && frame.flip)
        m_sprite = m_sprite.mirrored(frame.flip & 2, frame.flip & 1);
    m_anySelected = false;
    m_current = -1;
    prepareImages();
    loadBoxes();
    fitZoom();
    relayout();
}

void QSprRender::setOnionSprite(int index)
{
    m_onionIndex = index;
    m_onion = QImage();
    m_onionRect = QRect();
    if (!m_sprites || index < 0 || index >= m_sprites->count())
        return;
    const QSpriteInfo &info = m_sprites->item(index)->info;
    m_onionAxis = QPoint(info.x, info.y);
    m_onion = drawable(withPaletteEffect(m_sprites->image(index), m_onionMode, m_colour0));
    relayout();
}

void QSprRender::clear()
{
    m_spriteIndex = -1;
    m_sprite = QImage();
    m_frame = QRenderFrame();
    m_boxes.clear();
    m_current = -1;
    m_anySelected = false;
    prepareImages();
    relayout();
}

void QSprRender::prepareImages()
{
    m_drawColour0 = QImage();
    m_drawMultiply = QImage();
    if (m_sprite.isNull()) {
        m_draw = QImage();
        return;
    }
    m_draw = withPaletteEffect(m_sprite, OnionNormal, m_colour0);
    // A bare picture keeps straight alpha so that it comes out exactly as stored.
    m_draw = m_showBackground ? drawable(m_draw) : m_draw.convertToFormat(QImage::Format_ARGB32);
    if (m_mode != AnimationMode || m_frame.trans == 0 || m_sprite.format() != QImage::Format_Indexed8)
        return;
    QList<QRgb> table = withPaletteEffect(m_sprite, OnionNormal, false).colorTable();
    if (m_colour0) {
        // Only the transparent pixels, opaque: the blended sprite then lies on them.
        QList<QRgb> inverse = table;
        for (QRgb &c : inverse)
            c = (c & 0x00ffffffu) | (quint32(255 - qAlpha(c)) << 24);
        m_drawColour0 = drawable(withTable(m_sprite, inverse));
    }
    if ((m_frame.trans & 1) && m_frame.dst < 255) {
        const int d = qBound(0, int(m_frame.dst), 255);
        QList<QRgb> grey = table;
        for (QRgb &c : grey)
            c = qRgba(d, d, d, qAlpha(c));
        m_drawMultiply = drawable(withTable(m_sprite, grey));
    }
}

void QSprRender::setExtraAxis(const QPoint &axis)
{
    m_extraAxis = axis;
    relayout();
}

// --- layout ---------------------------------------------------------------------

void QSprRender::relayout()
{
    const qreal z = m_zoom.factor();
    const int ox = m_origin.x(), oy = m_origin.y();

    m_refRect = m_reference.isNull() ? QRect()
        : QRect(QPoint(toInt(z * m_refOffset.x() + ox), toInt(z * m_refOffset.y() + oy)),
                QSize(toInt(z * m_reference.width()), toInt(z * m_reference.height())));

    QPoint topLeft;
    if (m_mode == SpriteMode) {
        topLeft = QPoint(toInt(ox - z * m_spriteAxis.x()), toInt(oy - z * m_spriteAxis.y()));
    } else if (!m_sprite.isNull()) {
        int ax = m_frame.axis.x(), ay = m_frame.axis.y();
        if (m_frame.flip & 2)
            ax = m_sprite.width() - 1 - ax;
        if (m_frame.flip & 1)
            ay = m_sprite.height() - 1 - ay;
        m_adjusted = QPoint(ax - m_frame.offset.x(), ay - m_frame.offset.y());
        topLeft = QPoint(toInt(ox - z * m_adjusted.x()), toInt(oy - z * m_adjusted.y()));
    }
    m_spriteRect = m_sprite.isNull() ? QRect()
        : QRect(topLeft, QSize(toInt(z * m_sprite.width()), toInt(z * m_sprite.height())));

    m_onionRect = m_onion.isNull() ? QRect()
        : QRect(QPoint(toInt(ox - z * m_onionAxis.x()), toInt(oy - z * m_onionAxis.y())),
                QSize(toInt(z * m_onion.width()), toInt(z * m_onion.height())));

    const int s = z <= 1 ? 1 : int(z);
    const int half = z <= 1 ? 0 : s / 2;
    auto crossRect = [&](const QImage &img, qreal px, qreal py) {
        const int w = img.width() * s, h = img.height() * s;
        return QRect(toInt(z * px + half - w / 2 + ox), toInt(z * py + half - h / 2 + oy), w, h);
    };
    m_spriteCrossRect = crossRect(m_crossImages[0], 0, 0);
    m_animCrossRect = crossRect(m_crossImages[1], m_frame.offset.x(), m_frame.offset.y());
    m_extraCrossRect = crossRect(m_crossImages[2], m_extraAxis.x(), m_extraAxis.y());

    layoutBoxes();
    emit repaintNeeded(false);
}

void QSprRender::layoutBoxes()
{
    const qreal z = m_zoom.factor();
    for (RenderClsnBox &b : m_boxes) {
        const int left = toInt(z * b.rect.left() + m_origin.x());
        const int top = toInt(z * b.rect.top() + m_origin.y());
        b.screen = QRect(left, top, toInt(z * (b.rect.right() + 1 - b.rect.left())),
                         toInt(z * (b.rect.bottom() + 1 - b.rect.top())));
    }
    if (m_anySelected)
        computeHandles();
}

void QSprRender::loadBoxes()
{
    m_boxes.clear();
    m_current = -1;
    m_anySelected = false;
    if (m_mode != AnimationMode)
        return;
    for (int t = 0; t < 4; ++t) {
        const QList<QRect> &list = m_frame.clsn[t];
        for (int i = 0; i < list.size(); ++i) {
            RenderClsnBox b;
            b.rect = ordered(list.at(i));
            b.type = t;
            b.index = i;
            m_boxes.append(b);
        }
    }
    layoutBoxes();
}

void QSprRender::computeHandles()
{
    int minX = 5000, minY = 5000, maxX = -5000, maxY = -5000;
    for (const RenderClsnBox &b : m_boxes) {
        if (!b.selected)
            continue;
        minX = qMin(minX, b.screen.left());
        minY = qMin(minY, b.screen.top());
        maxX = qMax(maxX, b.screen.right());
        maxY = qMax(maxY, b.screen.bottom());
    }
    const int hw = (maxX - minX) / 2, hh = (maxY - minY) / 2;
    m_handles[0] = {minX, minY};
    m_handles[1] = {minX + hw, minY};
    m_handles[2] = {maxX, minY};
    m_handles[3] = {maxX, minY + hh};
    m_handles[4] = {minX, minY + hh};
    m_handles[5] = {minX, maxY};
    m_handles[6] = {minX + hw, maxY};
    m_handles[7] = {maxX, maxY};
}

// --- painting -------------------------------------------------------------------

void QSprRender::resizeEvent(const QSize &size)
{
    QRenderer::resizeEvent(size);
    QLinearGradient gradient(0, 0, 0, qMax(1, size.height()));
    gradient.setColorAt(0.0, m_backStart);
    gradient.setColorAt(1.0, m_backEnd);
    m_background = QBrush(gradient);
    relayout();
}

QImage QSprRender::render(const QSize &size)
{
    if (size != m_size)
        resizeEvent(size);
    QImage out(size, m_showBackground ? QImage::Format_ARGB32_Premultiplied : QImage::Format_ARGB32);
    out.fill(Qt::transparent);
    QPainter p(&out);
    paint(&p, out.rect());
    p.end();
    return out.convertToFormat(QImage::Format_ARGB32);
}

void QSprRender::paint(QPainter *painter, const QRect &exposed)
{
    QPainter &p = *painter;
    if (m_showBackground)
        p.fillRect(exposed, m_background);
    if (!m_blank) {
        if (!m_reference.isNull())
            p.drawImage(m_refRect, m_reference);
        if (m_onionOn && !m_onion.isNull()) {
            p.setOpacity(m_onionOpacity);
            p.drawImage(m_onionRect, m_onion);
            p.setOpacity(1.0);
        }
        if (m_spriteOverGuides)
            paintGuides(p);
        if (m_mode == SpriteMode)
            paintSprite(p);
        else
            paintFrame(p);
        if (m_clsnOverAxis)
            paintCrosses(p);
        paintBoxes(p);
        if (!m_clsnOverAxis)
            paintCrosses(p);
        if (!m_spriteOverGuides)
            paintGuides(p);
    }
    if (m_rulers)
        paintRulers(p);
}

void QSprRender::paintSprite(QPainter &p)
{
    if (m_draw.isNull())
        return;
    if (!m_showBackground)
        p.setCompositionMode(QPainter::CompositionMode_Source);
    p.drawImage(m_spriteRect, m_draw);
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void QSprRender::paintFrame(QPainter &p)
{
    if (m_frame.missing)
        paintMissing(p);
    if (m_draw.isNull())
        return;
    const qreal z = m_zoom.factor();
    p.save();
    p.translate(m_origin);
    if (m_frame.angle != 0)
        p.rotate(-m_frame.angle);
    p.scale((m_frame.scaleX == 0 ? 1 : m_frame.scaleX) * z, (m_frame.scaleY == 0 ? 1 : m_frame.scaleY) * z);
    p.translate(-m_adjusted);
    const int t = m_frame.trans;
    if (t == 0) {
        p.drawImage(0, 0, m_draw);
    } else {
        if (!m_drawColour0.isNull())
            p.drawImage(0, 0, m_drawColour0);
        if ((t & 1) == 0) {
            // max(dst - src, 0): the lighter of the two, less the source.
            p.setCompositionMode(QPainter::CompositionMode_Lighten);
            p.drawImage(0, 0, m_draw);
            p.setCompositionMode(QPainter::CompositionMode_Difference);
            p.drawImage(0, 0, m_draw);
        } else {
            // dst * dst/255 first, then src * src/256 added.
            if (!m_drawMultiply.isNull()) {
                p.setCompositionMode(QPainter::CompositionMode_Multiply);
                p.drawImage(0, 0, m_drawMultiply);
            }
            p.setCompositionMode(QPainter::CompositionMode_Plus);
            p.setOpacity(qMin(1.0, m_frame.src * 0.00390625));
            p.drawImage(0, 0, m_draw);
        }
    }
    p.restore();
}

void QSprRender::paintMissing(QPainter &p)
{
    // Where the sprite's axis would be: the frame offset from the origin.
    const qreal z = m_zoom.factor();
    const QPoint at(toInt(z * m_frame.offset.x() + m_origin.x()), toInt(z * m_frame.offset.y() + m_origin.y()));
    const QString text = QStringLiteral("missing sprite %1,%2").arg(m_frame.group).arg(m_frame.number);
    QFont font = p.font();
    font.setPixelSize(12);
    p.save();
    p.setFont(font);
    const QRect box(at.x() - 24, at.y() - 48, 48, 48);
    p.setPen(QPen(QColor(255, 64, 64), 2, Qt::DashLine));
    p.setBrush(QColor(255, 64, 64, 40));
    p.drawRect(box);
    p.drawLine(box.topLeft(), box.bottomRight());
    p.drawLine(box.topRight(), box.bottomLeft());
    const QRect label(at.x() - 80, at.y() + 4, 160, 18);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0, 0, 0, 170));
    p.drawRect(label);
    p.setPen(QColor(255, 96, 96));
    p.drawText(label, Qt::AlignCenter, text);
    p.restore();
}

void QSprRender::paintCrosses(QPainter &p)
{
    if (m_spriteCross)
        p.drawImage(m_spriteCrossRect, m_crossImages[0]);
    if (m_animCross && m_mode == AnimationMode)
        p.drawImage(m_animCrossRect, m_crossImages[1]);
    if (m_extraCross)
        p.drawImage(m_extraCrossRect, m_crossImages[2]);
}

void QSprRender::paintGuides(QPainter &p)
{
    if (!m_guides)
        return;
    const qreal z = m_zoom.factor();
    const int ps = m_zoom.pixelSize();
    const int h = ps / 2;
    p.save();
    p.setPen(QPen(QColor(0, 255, 255, 255), qRound(z)));
    const int y = toInt(z * m_guide.y() + m_origin.y() + h);
    p.drawLine(-ps, y, m_size.width() + ps, y);
    const int x = toInt(z * m_guide.x() + m_origin.x() + h);
    p.drawLine(x, -ps, x, m_size.height() + ps);
    p.restore();
}

void QSprRender::paintBoxes(QPainter &p)
{
    if (m_mode != AnimationMode || m_boxes.isEmpty())
        return;
    const int ps = m_zoom.pixelSize();
    p.save();
    p.setPen(Qt::NoPen);
    for (const RenderClsnBox &b : m_boxes) {
        if (!m_clsnVisible[b.type & 3])
            continue;
        const QColor colour = m_clsnColours[b.type & 3];
        const QRect &r = b.screen;
        if (b.selected)
            p.fillRect(r, QBrush(colour, (b.type & 2) ? Qt::FDiagPattern : Qt::BDiagPattern));
        const int tw = qMin(ps, r.width()), th = qMin(ps, r.height());
        p.fillRect(QRect(r.left(), r.top(), r.width(), th), colour);
        p.fillRect(QRect(r.left(), r.bottom() - th + 1, r.width(), th), colour);
        p.fillRect(QRect(r.left(), r.top(), tw, r.height()), colour);
        p.fillRect(QRect(r.right() - tw + 1, r.top(), tw, r.height()), colour);
    }
    if (m_anySelected && !(m_adding && m_dragging)) {
        p.setPen(QPen(Qt::gray, 1));
        p.setBrush(Qt::white);
        for (const QPoint &h : m_handles)
            p.drawRect(QRect(h.x() - 4, h.y() - 4, 7, 7));
    }
    p.restore();
}

void QSprRender::paintRulers(QPainter &p)
{
    const int w = m_size.width(), h = m_size.height();
    const qreal z = m_zoom.factor();
    p.save();
    p.setPen(Qt::NoPen);
    p.setBrush(m_backStart);
    p.drawRect(0, 0, 30, h);
    p.drawRect(30, 0, w - 30, 30);
    p.setBrush(Qt::white);
    p.drawRect(10, 0, 10, h);
    p.drawRect(20, 10, w - 20, 10);

    QFont font = p.font();
    font.setPixelSize(9);
    p.setFont(font);
    p.setPen(Qt::black);
    const int units = int(10 / z);
    const int px = qMax(1, int(z * units));
    // Horizontal, then vertical: the same walk along the other axis.
    for (int axis = 0; axis < 2; ++axis) {
        const int length = axis == 0 ? w : h;
        const int origin = axis == 0 ? m_origin.x() : m_origin.y();
        const int count = (length - 1 - 29) / px;
        const int start = ((origin - 30) % px) + 30;
        const int zero = (origin - start) / px;
        for (int i = 0; i <= count; ++i) {
            const int at = px * i + start;
            const bool major = (zero - i) % 5 == 0;
            const int from = major ? 20 : 24;
            if (axis == 0)
                p.drawLine(at, from, at, 29);
            else
                p.drawLine(from, at, 29, at);
            if (major && i != 0) {
                const QString label = QString::number((i - zero) * units);
                const QRect r = axis == 0 ? QRect(at - 5 * px, 0, 10 * px, 30) : QRect(0, at - 5 * px, 30, 10 * px);
                p.drawText(r, Qt::AlignHCenter | Qt::AlignVCenter, label);
            }
        }
    }
    p.restore();
}

// --- hit tests ------------------------------------------------------------------

int QSprRender::hitTest(const QPoint &point) const
{
    return const_cast<QSprRender *>(this)->hitTestImpl(point, false);
}

int QSprRender::boxTest(const QPoint &point) const
{
    if (m_anySelected) {
        for (int i = 0; i < 8; ++i) {
            const QRect r(m_handles[i] - QPoint(4, 4), m_handles[i] + QPoint(3, 3));
            if (r.contains(point))
                return ZoneHandle + i;
        }
    }
    for (const RenderClsnBox &b : m_boxes)
        if (m_clsnVisible[b.type & 3] && b.screen.contains(point))
            return ZoneBox;
    return -1;
}

bool QSprRender::boxTestCycle(const QPoint &point)
{
    // The next box after the current one that holds the point: repeated
    // clicks walk through boxes that overlap.
    const int n = int(m_boxes.size());
    for (int k = 1; k <= n; ++k) {
        const int i = (m_current + k + n) % n;
        const RenderClsnBox &b = m_boxes.at(i);
        if (m_clsnVisible[b.type & 3] && b.screen.contains(point)) {
            m_current = i;
            return true;
        }
    }
    return false;
}

int QSprRender::hitTestImpl(const QPoint &point, bool cycle)
{
    if (m_locked)
        return ZoneNone;
    const qreal z = m_zoom.factor();
    const int g = m_zoom.pixelSize();
    const int gx = qRound(z * m_guide.x()) + m_origin.x() - 1;
    const int gy = qRound(z * m_guide.y()) + m_origin.y() - 1;
    auto guideTest = [&]() -> int {
        if (point.x() >= gx && point.x() <= gx + g + 1)
            return ZoneGuideX;
        if (point.y() >= gy && point.y() <= gy + g + 1)
            return ZoneGuideY;
        return -1;
    };
    auto boxes = [&]() -> int {
        if (m_mode != AnimationMode || m_boxes.isEmpty())
            return -1;
        const int zone = boxTest(point);
        if (zone == ZoneBox && cycle)
            boxTestCycle(point);
        return zone;
    };
    if (!m_spriteOverGuides && m_guides) {
        if (const int zone = guideTest(); zone >= 0)
            return zone;
    }
    if (m_mode == AnimationMode && m_adding)
        return ZoneNone;
    if (m_clsnOverAxis) {
        if (const int zone = boxes(); zone >= 0)
            return zone;
    }
    if (m_extraCross && m_extraCrossRect.contains(point))
        return ZoneExtraCross;
    if (m_animCross && m_mode == AnimationMode && m_animCrossRect.contains(point))
        return ZoneAnimCross;
    if (m_spriteCross && m_spriteCrossRect.contains(point))
        return ZoneNone;
    if (!m_clsnOverAxis) {
        if (const int zone = boxes(); zone >= 0)
            return zone;
    }
    if (m_spriteRect.contains(point))
        return ZoneSprite;
    if (m_spriteOverGuides && m_guides) {
        if (const int zone = guideTest(); zone >= 0)
            return zone;
    }
    return ZoneNone;
}

QPoint QSprRender::pixelAt(const QPoint &mouse) const
{
    const qreal z = m_zoom.factor();
    return QPoint(int(std::floor((mouse.x() - m_spriteRect.left()) / z)),
                  int(std::floor((mouse.y() - m_spriteRect.top()) / z)));
}

void QSprRender::setCursorFor(int zone)
{
    Qt::CursorShape shape = Qt::OpenHandCursor;
    switch (zone) {
    case ZoneNone:
        shape = m_adding ? Qt::CrossCursor : (m_dragging ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
        break;
    case ZoneSprite:
        shape = m_pickColor ? Qt::CrossCursor : Qt::SizeAllCursor;
        break;
    case ZoneAnimCross: case ZoneExtraCross: case ZoneBox:
        shape = Qt::SizeAllCursor;
        break;
    case ZoneGuideY: case 8: case 13:
        shape = Qt::SizeVerCursor;
        break;
    case ZoneGuideX: case 10: case 11:
        shape = Qt::SizeHorCursor;
        break;
    case 7: case 14:
        shape = Qt::SizeFDiagCursor;
        break;
    case 9: case 12:
        shape = Qt::SizeBDiagCursor;
        break;
    }
    emit cursorShapeNeeded(shape);
}

// --- input ----------------------------------------------------------------------

void QSprRender::mousePressEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    if (event->button() != Qt::LeftButton) {
        if (!m_dragging)
            m_dragZone = hitTest(pos);
        return;
    }
    emit focusNeeded();
    m_dragging = true;
    m_last = pos;
    if (m_adding && m_mode == AnimationMode) {
        m_dragZone = 14;
        for (RenderClsnBox &b : m_boxes)
            b.selected = false;
        RenderClsnBox box;
        box.screen = box.start = QRect(pos, pos);
        box.type = m_addType;
        box.index = int(m_frame.clsn[m_addType].size());
        box.selected = true;
        m_boxes.append(box);
        m_current = int(m_boxes.size()) - 1;
        m_anySelected = true;
        m_selectionStart = QRect(pos, pos + QPoint(1, 1));
        emit repaintNeeded(true);
        return;
    }
    m_dragZone = (event->modifiers() & Qt::ControlModifier) ? int(ZoneNone) : hitTestImpl(pos, true);
    if (m_dragZone == ZoneBox) {
        const bool extend = event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier);
        if (m_anySelected && !extend && m_current >= 0 && !m_boxes.at(m_current).selected)
            for (RenderClsnBox &b : m_boxes)
                b.selected = false;
        if (m_current >= 0)
            m_boxes[m_current].selected = true;
        m_anySelected = true;
        computeHandles();
        emit repaintNeeded(false);
    } else if (m_dragZone >= ZoneHandle) {
        for (RenderClsnBox &b : m_boxes)
            if (b.selected)
                b.start = b.screen;
        m_selectionStart = QRect(m_handles[0], m_handles[7]);
    } else {
        if (m_anySelected) {
            clearSelection();
        }
        if (m_dragZone == ZoneSprite && m_pickColor && m_sprite.format() == QImage::Format_Indexed8) {
            const QPoint px = pixelAt(pos);
            if (m_sprite.rect().contains(px))
                emit colorCaptured(uchar(m_sprite.pixelIndex(px)));
        }
    }
    setCursorFor(m_dragZone);
}

void QSprRender::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    if (!m_dragging)
        m_dragZone = hitTest(pos);
    setCursorFor(m_dragZone);
    emit cursorChanged(pos - m_origin);
    if (!m_dragging)
        return;
    if (m_pickColor && m_dragZone == ZoneSprite) {
        const QPoint px = pixelAt(pos);
        if (m_sprite.format() == QImage::Format_Indexed8 && m_sprite.rect().contains(px))
            emit colorCaptured(uchar(m_sprite.pixelIndex(px)));
        return;
    }

    const qreal z = m_zoom.factor();
    const int zone = m_dragZone;
    int dx = 0, dy = 0;
    if (z <= 1 || zone == ZoneNone) {
        dx = pos.x() - m_last.x();
        dy = pos.y() - m_last.y();
        if (zone <= ZoneBox)
            m_last = pos;
    } else {
        dx = int(qRound(qreal(pos.x() - m_last.x())) / z);
        dy = int(qRound(qreal(pos.y() - m_last.y())) / z);
        if (zone <= ZoneBox)
            m_last += QPoint(int(z * dx), int(z * dy));
    }
    if (zone == ZoneGuideY || zone == 8 || zone == 13)
        dx = 0;
    if (zone == ZoneGuideX || zone == 10 || zone == 11)
        dy = 0;
    if (zone <= ZoneBox && dx == 0 && dy == 0)
        return;

    const QPoint delta(dx, dy);
    const QPoint screenDelta(qRound(dx * (zone == ZoneNone ? 1.0 : z)), qRound(dy * (zone == ZoneNone ? 1.0 : z)));
    switch (zone) {
    case ZoneNone:
        if (m_adding && m_mode == AnimationMode)
            break;
        m_origin += delta;
        relayout();
        break;
    case ZoneSprite:
        if (m_mode == SpriteMode) {
            m_spriteAxis -= delta;
            if (m_sprites && m_spriteIndex >= 0) {
                QSpriteInfo info = m_sprites->item(m_spriteIndex)->info;
                info.x = qint16(m_spriteAxis.x());
                info.y = qint16(m_spriteAxis.y());
                m_sprites->setInfo(m_spriteIndex, info);
            }
            relayout();
            emit axisChanged(m_mode, m_spriteAxis);
            break;
        }
        Q_FALLTHROUGH();
    case ZoneAnimCross:
        m_frame.offset += delta;
        relayout();
        emit axisChanged(m_mode, m_frame.offset);
        break;
    case ZoneExtraCross:
        m_extraAxis += delta;
        relayout();
        emit extraAxisChanged();
        break;
    case ZoneGuideY:
    case ZoneGuideX:
        m_guide += delta;
        emit guideChanged();
        break;
    case ZoneBox:
        for (RenderClsnBox &b : m_boxes)
            if (b.selected)
                b.screen.translate(screenDelta);
        for (QPoint &h : m_handles)
            h += screenDelta;
        break;
    default:
        if (m_adding && m_mode == AnimationMode) {
            // The stroke of a new box: from the press to the mouse.
            RenderClsnBox &b = m_boxes.last();
            b.screen = QRect(b.start.topLeft(), pos);
        } else {
            resizeSelection(dx, dy);
        }
        break;
    }
    emit repaintNeeded(true);
}

void QSprRender::resizeSelection(int dx, int dy)
{
    const qreal z = m_zoom.factor();
    const int zone = m_dragZone;
    const int ddx = z <= 1 ? dx : qRound(dx * z);
    const int ddy = z <= 1 ? dy : qRound(dy * z);
    const int L = m_selectionStart.left(), T = m_selectionStart.top();
    const int w0 = qMax(1, m_selectionStart.right() - L), h0 = qMax(1, m_selectionStart.bottom() - T);
    int ux = ddx, uy = ddy;
    if (zone == 8 || zone == 13)
        ux = 0;
    if (zone == 7 || zone == 11 || zone == 12)
        ux = -ddx;
    if (zone == 10 || zone == 11)
        uy = 0;
    if (zone == 7 || zone == 8 || zone == 9)
        uy = -ddy;
    const qreal sx = qreal(w0 + ux) / w0, sy = qreal(h0 + uy) / h0;
    for (RenderClsnBox &b : m_boxes) {
        if (!b.selected)
            continue;
        int left = int((b.start.left() - L) * sx + L);
        int top = int((b.start.top() - T) * sy + T);
        if (zone == 7 || zone == 8 || zone == 11 || zone == 12)
            left -= ux;
        if (zone == 7 || zone == 8 || zone == 9 || zone == 11)
            top -= uy;
        const int right = left + int(sx * (b.start.right() + 1 - b.start.left())) - 1;
        const int bottom = top + int(sy * (b.start.bottom() + 1 - b.start.top())) - 1;
        b.screen = QRect(QPoint(left, top), QPoint(right, bottom));
    }
    computeHandles();
}

void QSprRender::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_dragZone == ZoneNone)
        emit cursorShapeNeeded(m_adding ? Qt::CrossCursor : Qt::OpenHandCursor);
    const bool wasDragging = m_dragging;
    m_dragging = false;
    if (event->button() == Qt::RightButton) {
        if (m_adding) {
            m_adding = false;
            emit clsnModeExit();
        }
        return;
    }
    if (event->button() != Qt::LeftButton || !wasDragging || m_dragZone < ZoneBox)
        return;
    storeSelectedBoxes();
}

void QSprRender::storeSelectedBoxes()
{
    const qreal z = m_zoom.factor();
    if (m_adding) {
        // A click without a stroke, or one too small for a sprite pixel, adds nothing.
        RenderClsnBox &b = m_boxes.last();
        const QRect s = ordered(b.screen);
        const int width = qRound((s.right() + 1 - s.left()) / z);
        const int height = qRound((s.bottom() + 1 - s.top()) / z);
        if (b.screen.topLeft() == b.screen.bottomRight() || width <= 0 || height <= 0) {
            m_boxes.removeLast();
            m_current = -1;
            m_anySelected = false;
            emit repaintNeeded(false);
            return;
        }
    }
    bool changed = false;
    for (RenderClsnBox &b : m_boxes) {
        if (!b.selected)
            continue;
        b.screen = ordered(b.screen);
        const int height = qMax(1, qRound((b.screen.bottom() + 1 - b.screen.top()) / z));
        const int width = qMax(1, qRound((b.screen.right() + 1 - b.screen.left()) / z));
        const int top = qRound((b.screen.top() - m_origin.y()) / z);
        const int left = qRound((b.screen.left() - m_origin.x()) / z);
        const QRect rect(left, top, width, height);
        QList<QRect> &list = m_frame.clsn[b.type];
        if (m_adding && &b == &m_boxes.last()) {
            b.index = int(list.size());
            list.append(rect);
        } else if (b.index >= 0 && b.index < list.size() && list.at(b.index) != rect) {
            list[b.index] = rect;
        } else {
            continue;
        }
        b.rect = rect;
        changed = true;
    }
    layoutBoxes();
    if (changed)
        emit clsnChanged();
    emit repaintNeeded(false);
}

void QSprRender::keyPressEvent(QKeyEvent *event)
{
    if (event->modifiers() & ~Qt::KeypadModifier)
        return;
    switch (event->key()) {
    case Qt::Key_Delete: deleteSelected(); break;
    case Qt::Key_Left: moveSelected(-1, 0); break;
    case Qt::Key_Up: moveSelected(0, -1); break;
    case Qt::Key_Right: moveSelected(1, 0); break;
    case Qt::Key_Down: moveSelected(0, 1); break;
    default: return;
    }
    event->accept();
}

void QSprRender::wheelEvent(QWheelEvent *event)
{
    const int steps = event->angleDelta().y() / 120;
    if (steps)
        setZoomIndex(m_zoom.index() + steps);
}

// --- boxes ----------------------------------------------------------------------

void QSprRender::setAdding(bool adding, int type)
{
    m_adding = adding && m_mode == AnimationMode;
    m_addType = type & 3;
    emit cursorShapeNeeded(m_adding ? Qt::CrossCursor : Qt::OpenHandCursor);
}

void QSprRender::clearSelection()
{
    for (RenderClsnBox &b : m_boxes)
        b.selected = false;
    m_anySelected = false;
    emit repaintNeeded(false);
}

void QSprRender::selectAll()
{
    for (RenderClsnBox &b : m_boxes)
        b.selected = m_clsnVisible[b.type & 3];
    m_anySelected = std::any_of(m_boxes.cbegin(), m_boxes.cend(), [](const RenderClsnBox &b) { return b.selected; });
    if (m_anySelected)
        computeHandles();
    emit repaintNeeded(false);
}

void QSprRender::deleteSelected()
{
    if (!m_anySelected)
        return;
    for (int i = int(m_boxes.size()) - 1; i >= 0; --i) {
        const RenderClsnBox &b = m_boxes.at(i);
        if (b.selected && b.index < m_frame.clsn[b.type].size())
            m_frame.clsn[b.type].removeAt(b.index);
    }
    loadBoxes();
    emit clsnChanged();
    emit repaintNeeded(false);
}

void QSprRender::moveSelected(int dx, int dy)
{
    if (!m_anySelected)
        return;
    for (RenderClsnBox &b : m_boxes) {
        if (!b.selected)
            continue;
        b.rect.translate(dx, dy);
        if (b.index < m_frame.clsn[b.type].size())
            m_frame.clsn[b.type][b.index] = b.rect;
    }
    layoutBoxes();
    emit clsnChanged();
    emit repaintNeeded(false);
}

void QSprRender::swapSelected(bool toggleDefault)
{
    if (!m_anySelected)
        return;
    QList<QRect> moved[4];
    // Take the selected boxes out of their lists, last first so that indices hold.
    for (int i = int(m_boxes.size()) - 1; i >= 0; --i) {
        const RenderClsnBox &b = m_boxes.at(i);
        if (!b.selected || b.index >= m_frame.clsn[b.type].size())
            continue;
        m_frame.clsn[b.type].removeAt(b.index);
        moved[toggleDefault ? (b.type ^ 2) : (b.type ^ 1)].prepend(b.rect);
    }
    for (int t = 0; t < 4; ++t) {
        if (!moved[t].isEmpty() && m_frame.clsn[t].isEmpty())
            m_frame.clsnFrame[t] = -1; // a new list lives on the current frame
        m_frame.clsn[t].append(moved[t]);
    }
    loadBoxes();
    emit clsnChanged();
    emit repaintNeeded(false);
}

QString QSprRender::selectedClsnText() const
{
    QStringList lines[4];
    for (const RenderClsnBox &b : m_boxes) {
        if (!b.selected)
            continue;
        QStringList &l = lines[b.type & 3];
        l << QStringLiteral("  Clsn%1[%2] = %3, %4, %5, %6\r\n")
                 .arg((b.type & 1) + 1)
                 .arg(l.size())
                 .arg(b.rect.left())
                 .arg(b.rect.top())
                 .arg(b.rect.right())
                 .arg(b.rect.bottom());
    }
    QString out;
    for (int t : {Clsn1Default, Clsn2Default, Clsn1, Clsn2}) {
        if (lines[t].isEmpty())
            continue;
        out += QStringLiteral("Clsn%1%2 %3\r\n").arg((t & 1) + 1).arg(t & 2 ? QStringLiteral("Default:") : QStringLiteral(":")).arg(lines[t].size());
        out += lines[t].join(QString());
    }
    return out;
}
