#pragma once

#include <QDialog>
#include <QWidget>

class QRemapModel;
class QSprites;
class QTableView;

// The source and destination palettes of one remap row, side by side, and the
// shown sprite before and after the table, so that an edit is seen at once.
class QPalRemapWidget : public QWidget
{
    Q_OBJECT

public:
    explicit QPalRemapWidget(QSprites *sprites, QWidget *parent = nullptr);

    void setRow(int row);
    void setSprite(int sprite);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void drawPalette(QPainter &p, const QRect &area, int palette, const QString &caption) const;
    void drawSprite(QPainter &p, const QRect &area, const QImage &image, const QString &caption) const;

    QSprites *m_sprites;
    int m_row = -1;
    int m_sprite = -1;
};

// The palette remap table of the sprites, edited row by row while the stage and
// the preview follow. "Apply" gives every sprite the palette the table maps its
// own to; closing without it leaves the table as it was found.
class RemapDlg : public QDialog
{
    Q_OBJECT

public:
    RemapDlg(QSprites *sprites, int sprite, QWidget *parent = nullptr);

    QTableView *table() const { return m_table; }
    QPalRemapWidget *preview() const { return m_preview; }

private:
    void currentRowChanged();

    QSprites *m_sprites;
    QTableView *m_table;
    QPalRemapWidget *m_preview;
};
