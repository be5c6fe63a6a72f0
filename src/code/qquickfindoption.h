#pragma once

#include <QMap>

// Options of a find or replace request, as the search bar and the multi-line
// find dialog send them to the current editor.
enum class QQuickFindOption : int { RegularExpression = 0, CaseSensitive = 1, Backward = 2, Circular = 3 };

using QQuickFindOptions = QMap<QQuickFindOption, bool>;
