#include "remapdlg.h"

#include "sprites/qremapmodel.h"
#include "sprites/qsprites.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QPainter>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const int kGap = 8;
const int kCaption = 18;

void checker(QPainter &p, const QRect &r)
{
    const int s = 6;
    p.save();
    p.setClipRect(r);
    for (int y = r.top(); y <= r.bottom(); y += s)
        for (int x = r.left(); x <= r.right(); x += s)
            p.fillRect(x, y, s, s, ((x - r.left()) / s + (y - r.top()) / s) % 2 ? QColor(70, 70, 70) : QColor(90, 90, 90));
    p.restore();
}

} // namespace

// --- QPalRemapWidget ----------------------------------------------------------------

QPalRemapWidget::QPalRemapWidget(QSprites *sprites, QWidget *parent)
    : QWidget(parent)
    , m_sprites(sprites)
{
    setObjectName(QStringLiteral("remapPreview"));
    setMinimumSize(300, 330);
    // Every edit of the table shows at once, whichever row it touched.
    connect(sprites->remap(), &QRemapModel::dataChanged, this, qOverload<>(&QWidget::update));
}

QSize QPalRemapWidget::sizeHint() const
{
    return QSize(340, 380);
}

void QPalRemapWidget::setRow(int row)
{
    m_row = row;
    update();
}

void QPalRemapWidget::setSprite(int sprite)
{
    m_sprite = sprite;
    update();
}

void QPalRemapWidget::drawPalette(QPainter &p, const QRect &area, int palette, const QString &caption) const
{
    p.setPen(this->palette().color(QPalette::WindowText));
    p.drawText(QRect(area.left(), area.top(), area.width(), kCaption), Qt::AlignLeft | Qt::AlignVCenter, caption);
    const QRect grid(area.left(), area.top() + kCaption, area.width(), area.height() - kCaption);
    const QRGBPal *colors = palette >= 0 ? m_sprites->paletteColors(palette) : nullptr;
    if (!colors) {
        p.fillRect(grid, this->palette().color(QPalette::Mid));
        p.drawText(grid, Qt::AlignCenter | Qt::TextWordWrap, tr("No such palette"));
        return;
    }
    const int cell = qMax(1, qMin(grid.width(), grid.height()) / 16);
    checker(p, QRect(grid.topLeft(), QSize(cell * 16, cell * 16)));
    for (int i = 0; i < 256; ++i) {
        const QRect r(grid.left() + (i % 16) * cell, grid.top() + (i / 16) * cell, cell, cell);
        p.fillRect(r, QColor::fromRgba(colors->colors[i].rgba()));
    }
    p.setPen(QColor(0, 0, 0, 90));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRect(grid.topLeft(), QSize(cell * 16, cell * 16)).adjusted(0, 0, -1, -1));
}

void QPalRemapWidget::drawSprite(QPainter &p, const QRect &area, const QImage &image, const QString &caption) const
{
    p.setPen(palette().color(QPalette::WindowText));
    p.drawText(QRect(area.left(), area.top(), area.width(), kCaption), Qt::AlignLeft | Qt::AlignVCenter, caption);
    const QRect box(area.left(), area.top() + kCaption, area.width(), area.height() - kCaption);
    checker(p, box);
    if (image.isNull())
        return;
    QSize size = image.size();
    // Small sprites are enlarged by whole steps so their pixels stay sharp.
    const int zoom = qMax(1, qMin(box.width() / qMax(1, size.width()), box.height() / qMax(1, size.height())));
    size *= zoom;
    if (size.width() > box.width() || size.height() > box.height())
        size.scale(box.size(), Qt::KeepAspectRatio);
    const QRect target(box.left() + (box.width() - size.width()) / 2, box.top() + (box.height() - size.height()) / 2,
                       size.width(), size.height());
    p.drawImage(target, image);
}

void QPalRemapWidget::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    const int half = (width() - kGap) / 2;
    const int palSide = qMin(half, 16 * 10) + kCaption;
    const QRemapModel *model = m_sprites->remap();
    const bool valid = m_row >= 0 && m_row < model->rowCount();
    const QRemapModel::Row row = valid ? model->rows().at(m_row) : QRemapModel::Row{};
    const int src = valid ? m_sprites->findPalette(0, row.srcGroup, row.srcNumber) : -1;
    const int dst = valid ? m_sprites->findPalette(0, row.dstGroup, row.dstNumber) : -1;
    if (valid) {
        drawPalette(p, QRect(0, 0, half, palSide), src, tr("From %1, %2").arg(row.srcGroup).arg(row.srcNumber));
        drawPalette(p, QRect(half + kGap, 0, half, palSide), dst, tr("To %1, %2").arg(row.dstGroup).arg(row.dstNumber));
    } else {
        p.drawText(QRect(0, 0, width(), palSide), Qt::AlignCenter | Qt::TextWordWrap,
                   tr("Add a row, or choose one, to see its palettes."));
    }

    // The sprite in its own palette, and as the table has it now.
    const QSpriteItem *item = m_sprites->item(m_sprite);
    QImage after = item ? m_sprites->image(m_sprite) : QImage();
    QImage before = after;
    if (item && before.format() == QImage::Format_Indexed8) {
        if (const QRGBPal *own = m_sprites->paletteColors(item->info.palette))
            before.setColorTable(own->toColorTable());
    }
    const QRect sprites(0, palSide + kGap, width(), height() - palSide - kGap);
    drawSprite(p, QRect(sprites.left(), sprites.top(), half, sprites.height()), before, tr("Before"));
    drawSprite(p, QRect(half + kGap, sprites.top(), half, sprites.height()), after, tr("After"));
}

// --- RemapDlg -------------------------------------------------------------------------

RemapDlg::RemapDlg(QSprites *sprites, int sprite, QWidget *parent)
    : QDialog(parent)
    , m_sprites(sprites)
{
    setObjectName(QStringLiteral("RemapDlg"));
    setWindowTitle(tr("Remap"));
    auto *layout = new QHBoxLayout(this);

    auto *left = new QVBoxLayout;
    m_table = new QTableView(this);
    m_table->setObjectName(QStringLiteral("rows"));
    m_table->setModel(sprites->remap());
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_table->setMinimumWidth(300);
    left->addWidget(m_table, 1);

    auto *rowButtons = new QHBoxLayout;
    auto button = [this](const char *name, const QString &text) {
        auto *b = new QPushButton(text, this);
        b->setObjectName(QString::fromLatin1(name));
        b->setAutoDefault(false);
        return b;
    };
    QPushButton *add = button("add", tr("Add"));
    QPushButton *del = button("delete", tr("Delete"));
    QPushButton *clear = button("clear", tr("Clear"));
    rowButtons->addWidget(add);
    rowButtons->addWidget(del);
    rowButtons->addWidget(clear);
    rowButtons->addStretch();
    left->addLayout(rowButtons);

    auto *endButtons = new QHBoxLayout;
    endButtons->addStretch();
    QPushButton *apply = button("apply", tr("Apply"));
    apply->setToolTip(tr("Every sprite takes the palette the table maps its own to, as one step to undo"));
    QPushButton *close = button("close", tr("Close"));
    endButtons->addWidget(apply);
    endButtons->addWidget(close);
    left->addLayout(endButtons);
    layout->addLayout(left, 1);

    m_preview = new QPalRemapWidget(sprites, this);
    m_preview->setSprite(sprite);
    layout->addWidget(m_preview);

    QRemapModel *model = sprites->remap();
    connect(add, &QPushButton::clicked, this, [this, model] {
        model->addRow();
        m_table->selectRow(model->rowCount() - 1);
    });
    connect(del, &QPushButton::clicked, this, [this, model] {
        const QModelIndex current = m_table->currentIndex();
        if (current.isValid())
            model->removeRow(current.row());
        currentRowChanged();
    });
    connect(clear, &QPushButton::clicked, this, [this, model] {
        model->clear();
        currentRowChanged();
    });
    connect(apply, &QPushButton::clicked, this, &QDialog::accept);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentChanged, this, &RemapDlg::currentRowChanged);
    connect(model, &QAbstractItemModel::modelReset, this, &RemapDlg::currentRowChanged);
    if (model->rowCount() > 0)
        m_table->selectRow(0);
    currentRowChanged();
}

void RemapDlg::currentRowChanged()
{
    const QModelIndex current = m_table->currentIndex();
    m_preview->setRow(current.isValid() ? current.row() : (m_sprites->remap()->rowCount() > 0 ? 0 : -1));
}
