#include "qappobjects.h"

namespace Bf {
QMugenSyntaxProperties *mugenSyntax = nullptr;
QLuaSyntaxProperties *luaSyntax = nullptr;
QIconsetManager *iconsets = nullptr;
QStylesheetManager *stylesheets = nullptr;
QColorsetManager *colorsets = nullptr;
SyntaxFormats *syntaxFormats = nullptr;
QMugenModel *config = nullptr;
QPresetManager *presets = nullptr;
QLanguageManager *languages = nullptr;
QSCtrlManager *sctrls = nullptr;
QScriptManager *scripts = nullptr;
QSnippetManager *snippets = nullptr;
QFileWatcherManager *fileWatcher = nullptr;
QInterface *mainInterface = nullptr;
} // namespace Bf
