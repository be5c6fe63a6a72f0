#pragma once

#include "animrecords.h"

#include <QList>
#include <QString>

// The AIR text the program writes: CR LF line ends, the maker's header, one
// empty line before and after every action, and element lines in the short
// form authors write by hand ("5,1, -3,0, 6, H").
namespace AirFormat {

// A float as the text stream writes it by default (six significant digits).
QString number(float value);
// The element line, without line end.
QString frameLine(const AnimFrameData &frame);
// The keyword lines, box blocks and element line of one frame, each ended by CR LF.
QString frameText(const AnimFrame &frame);
// "; name", the header and every frame, each line ended by CR LF.
QString actionText(const AnimAction &action);
// The four comment lines that open a saved file, each ended by CR LF.
QString fileHeader();
// A whole file: the header, then each action between empty lines.
QString fileText(const QList<AnimAction *> &actions);

// Names of the transparency and flip as authors write them ("", "A", "A1",
// "S", "AS<n>D<n>"; "", "H", "V", "HV").
QString transText(const AnimFrameData &frame);
QString flipText(const AnimFrameData &frame);

} // namespace AirFormat
