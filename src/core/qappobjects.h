#pragma once

// The process-wide objects, set once by the main window as it starts and
// valid until its destructor; code reaches them directly, in the order of
// creation below.
class QMugenSyntaxProperties;
class QLuaSyntaxProperties;
class SyntaxFormats;
class QIconsetManager;
class QStylesheetManager;
class QColorsetManager;
class QMugenModel;
class QPresetManager;
class QLanguageManager;
class QSCtrlManager;
class QScriptManager;
class QSnippetManager;
class QFileWatcherManager;
class QInterface;

namespace Bf {
extern QMugenSyntaxProperties *mugenSyntax;
extern QLuaSyntaxProperties *luaSyntax;
extern QIconsetManager *iconsets;
extern QStylesheetManager *stylesheets;
extern QColorsetManager *colorsets;
extern SyntaxFormats *syntaxFormats;
extern QMugenModel *config;
extern QPresetManager *presets;
extern QLanguageManager *languages;
extern QSCtrlManager *sctrls;
extern QScriptManager *scripts;
extern QSnippetManager *snippets;
extern QFileWatcherManager *fileWatcher;
extern QInterface *mainInterface;
} // namespace Bf
