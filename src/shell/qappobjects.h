#pragma once

class QAppPaths;
class QColorsetManager;
class QFileWatcherManager;
class QIconsetManager;
class QLanguageManager;
class QLog;
class QLuaSyntaxProperties;
class QMugenSyntaxProperties;
class QMugenModel;
class QPresetManager;
class QSCtrlManager;
class QScriptManager;
class QSnippetManager;
class QSpriteCache;
class QSpriteRecordPool;
class QStylesheetManager;
class SyntaxFormats;

// The process-wide objects, as the composition root (app/) hands them to the
// window, the controller and the editors. The root creates and owns them all;
// they stay valid from before the controller exists until after it is gone.
// Nothing else holds them: there is no global way to reach them.
struct QAppObjects
{
    const QAppPaths *paths = nullptr;
    // The engine's language and the Lua names that every text document reads.
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
    QLog *log = nullptr;
    // Where the undo commands of every project's sprites keep the images they
    // can bring back: one temporary file for the whole program.
    QSpriteCache *undoCache = nullptr;
    // The same for the samples of every project's sounds.
    QSpriteCache *soundUndoCache = nullptr;
    // The records of every sprite and sound cache of the program, reused as
    // projects open and close.
    QSpriteRecordPool *spriteRecords = nullptr;
};
