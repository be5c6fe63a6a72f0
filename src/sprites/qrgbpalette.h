#pragma once

#include "sprites/qrgbpal.h"

#include <QList>
#include <QObject>
#include <QRgb>
#include <QString>

// Performs every colour operation on a palette buffer it does not own. It is put
// on a buffer for as long as an operation or a dialog needs it.
//
// Selections are arrays of 256 bytes (non-zero: selected); a null selection
// means every entry. Every public mutator emits changing() first and changed()
// last, so that views can take an undo snapshot; setColorsQuiet() emits neither.
// With no buffer set, operations do nothing (and emit nothing).
class QRGBPalette : public QObject
{
    Q_OBJECT

public:
    // The combo of the advanced palette editor lists kinds 1 to 12 in this
    // order; its index plus one is the kind.
    enum Effect {
        BlueToRed = 1,
        BlueToGreen,
        GreenToRed,
        GreenToBlue,
        RedToGreen,
        RedToBlue,
        Lighter,
        Darker,
        Monochrome,
        Fire,
        Sapphire,
        Stone,
        MuchLighter, // +128, not in the combo
        MuchDarker,  // -128, not in the combo
    };

    explicit QRGBPalette(QRGBPal *colors = nullptr, QObject *parent = nullptr);

    QRGBPal *buffer() const { return m_colors; }
    void setBuffer(QRGBPal *colors) { m_colors = colors; }

    void setColors(const QRGBPal &colors);
    void setColorsQuiet(const QRGBPal &colors);
    void setColor(int index, QRGBColor color);
    void fill(const quint8 *selection, QRGBColor color);
    void reverse(const quint8 *selection);
    void effect(int kind, const quint8 *selection);
    void sort();
    void gradient(const quint8 *selection, QRGBColor from, QRGBColor to);
    void gradientRange(int first, QRGBColor from, int last, QRGBColor to);
    void addDifferent(const QRGBPal &other);
    void deleteDuplicates(QRGBColor replacement);
    void adjustHsl(const quint8 *selection, int hue, int saturation, int lightness);
    void adjustRgb(const quint8 *selection, int red, int green, int blue);

    QList<QRgb> toColorTable() const;
    void fromColorTable(const QList<QRgb> &table);

    // Writes the palette as an ACT file (768 bytes, entry 255 first, no alpha),
    // atomically. False if the file could not be written completely.
    bool saveAct(const QString &path, QString *error = nullptr) const;
    // Reads any palette file the program knows (ACT, Jasc and RIFF PAL, ACO,
    // ASE, Painter swatches, the palette of a PCX, PNG or BMP image).
    bool load(const QString &path, QString *error = nullptr);

signals:
    void changing();
    void changed();

private:
    QRGBPal *m_colors;
};
