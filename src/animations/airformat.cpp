#include "airformat.h"

#include <QTextStream>

namespace AirFormat {

namespace {
const QString Eol = QStringLiteral("\r\n");
}

QString number(float value)
{
    QString s;
    QTextStream(&s) << value;
    // Six significant digits as the stream writes them, but never with an
    // exponent ("1e-07"), which no reader of AIR text takes for one number:
    // the point is moved instead.
    const qsizetype e = s.indexOf(QLatin1Char('e'));
    if (e < 0)
        return s;
    const int exponent = s.mid(e + 1).toInt();
    QString mantissa = s.left(e);
    const bool negative = mantissa.startsWith(QLatin1Char('-'));
    if (negative)
        mantissa.remove(0, 1);
    qsizetype point = mantissa.indexOf(QLatin1Char('.'));
    if (point < 0)
        point = mantissa.size();
    const QString digits = mantissa.remove(QLatin1Char('.'));
    const qsizetype at = point + exponent; // digits before the point
    QString out;
    if (at <= 0)
        out = QStringLiteral("0.") + QString(-at, QLatin1Char('0')) + digits;
    else if (at >= digits.size())
        out = digits + QString(at - digits.size(), QLatin1Char('0'));
    else
        out = digits.left(at) + QLatin1Char('.') + digits.mid(at);
    return negative ? QLatin1Char('-') + out : out;
}

QString flipText(const AnimFrameData &frame)
{
    switch (frame.flip) {
    case AnimFrame::FlipH: return QStringLiteral("H");
    case AnimFrame::FlipV: return QStringLiteral("V");
    case AnimFrame::FlipH | AnimFrame::FlipV: return QStringLiteral("HV");
    default: return QString();
    }
}

QString transText(const AnimFrameData &frame)
{
    switch (frame.trans) {
    case AnimFrame::TransAdd:
        if (frame.src == 256 && frame.dst == 256)
            return QStringLiteral("A");
        if (frame.src == 256 && frame.dst == 128)
            return QStringLiteral("A1");
        return QStringLiteral("AS%1D%2").arg(frame.src).arg(frame.dst);
    case AnimFrame::TransSub:
        return QStringLiteral("S");
    default:
        return QString();
    }
}

QString frameLine(const AnimFrameData &f)
{
    const bool floats = f.scaleX != 0 || f.scaleY != 0 || f.angle != 0;
    QString s = QStringLiteral("%1,%2, %3,%4, %5").arg(f.group).arg(f.number).arg(f.x).arg(f.y).arg(f.time);

    switch (f.flip) {
    case AnimFrame::FlipV: s += QLatin1String(", V"); break;
    case AnimFrame::FlipH: s += QLatin1String(", H"); break;
    case AnimFrame::FlipH | AnimFrame::FlipV: s += QLatin1String(", VH"); break;
    case 0:
        if (f.trans != 0 || floats)
            s += QLatin1String(", ");
        break;
    default: break;
    }

    if (f.trans == AnimFrame::TransAdd || f.trans == AnimFrame::TransSub)
        s += QLatin1String(", ") + transText(f);
    else if (f.trans == 0 && floats)
        s += QLatin1String(", ");

    if (f.scaleX != 0)
        s += QLatin1String(", ") + number(f.scaleX);
    else if (f.scaleY != 0 || f.angle != 0)
        s += QLatin1String(", ");

    if (f.scaleY != 0)
        s += QLatin1Char(',') + number(f.scaleY);
    else if (f.angle != 0)
        s += QLatin1Char(',');

    if (f.angle != 0)
        s += QLatin1String(" , ") + number(f.angle);
    return s;
}

QString frameText(const AnimFrame &f)
{
    QString s;
    if (f.loopstart)
        s += QStringLiteral("Loopstart\r\n");
    if (f.interpOffset)
        s += QStringLiteral("Interpolate Offset\r\n");
    if (f.interpBlend)
        s += QStringLiteral("Interpolate Blend\r\n");
    if (f.interpScale)
        s += QStringLiteral("Interpolate Scale\r\n");
    if (f.interpAngle)
        s += QStringLiteral("Interpolate Angle\r\n");

    for (int type : {AnimFrame::Clsn1Default, AnimFrame::Clsn2Default, AnimFrame::Clsn1, AnimFrame::Clsn2}) {
        if (!f.hasClsn(type))
            continue;
        const QList<QRect> &boxes = f.clsn[type];
        const QString kind = (type & 1) ? QStringLiteral("Clsn2") : QStringLiteral("Clsn1");
        s += kind + ((type & 2) ? QLatin1String("Default:") : QLatin1String(":")) + QString::number(boxes.size())
             + Eol;
        for (qsizetype i = 0; i < boxes.size(); ++i) {
            const QRect &r = boxes.at(i);
            s += QStringLiteral("  %1[%2] = %3, %4, %5, %6")
                     .arg(kind)
                     .arg(i)
                     .arg(r.left())
                     .arg(r.top())
                     .arg(r.right())
                     .arg(r.bottom())
                 + Eol;
        }
    }
    return s + frameLine(f) + Eol;
}

QString actionText(const AnimAction &action)
{
    QString s = QStringLiteral("; %1\r\n[Begin Action %2]\r\n").arg(action.name, QString::number(action.number));
    for (const AnimFrame *f : action.frames)
        s += frameText(*f);
    return s;
}

QString fileHeader()
{
    return QStringLiteral(";--------------------------------------------------------------------------;\r\n"
                          ";----------------------  Made in  Brawlforge 3  ----------------------;\r\n"
                          ";-----------------  https://brawlforge.orvane.org/  ------------------;\r\n"
                          ";--------------------------------------------------------------------------;\r\n");
}

QString fileText(const QList<AnimAction *> &actions)
{
    QString s = fileHeader();
    for (const AnimAction *a : actions)
        s += Eol + actionText(*a) + Eol;
    return s;
}

} // namespace AirFormat
