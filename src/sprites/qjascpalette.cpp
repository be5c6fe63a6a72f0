#include "qjascpalette.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QRegularExpression>

static QString tr(const char *text)
{
    return QCoreApplication::translate("QPaletteFile", text);
}

bool QJascPalette::load(QIODevice &device, QRGBPal *colors)
{
    // A palette text is tiny; a large file is not one.
    const QByteArray data = readAtMost(device, 1 << 20);
    const QStringList lines = QString::fromLatin1(data).split(QRegularExpression(QStringLiteral("[\r\n]")),
                                                              Qt::SkipEmptyParts);
    if (lines.size() < 3 || lines.at(0).trimmed() != QLatin1String("JASC-PAL"))
        return fail(tr("The file does not start with JASC-PAL."));
    if (lines.at(1).trimmed() != QLatin1String("0100"))
        return fail(tr("This version of the JASC palette is not supported."));
    bool ok = false;
    const int declared = lines.at(2).trimmed().toInt(&ok);
    if (!ok || declared < 0)
        return fail(tr("The number of colours is missing."));
    static const QRegularExpression colour(
        QStringLiteral("^([0-9]{1,3})\\s([0-9]{1,3})\\s([0-9]{1,3})(?:\\s([0-9]{1,3}))?$"));
    const int n = qMin(qMin(declared, 256), int(lines.size()) - 3);
    for (int i = 0; i < n; ++i) {
        const QRegularExpressionMatch m = colour.match(lines.at(3 + i).trimmed());
        if (!m.hasMatch())
            return fail(tr("Line %1 is not a colour.").arg(4 + i));
        auto channel = [&m](int c) { return quint8(qMin(m.captured(c).toInt(), 255)); };
        (*colors)[i] = QRGBColor{channel(1), channel(2), channel(3),
                                 m.capturedLength(4) > 0 ? channel(4) : quint8(255)};
    }
    return true;
}
