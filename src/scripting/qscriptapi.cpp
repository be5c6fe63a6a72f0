#include "qscriptapi.h"

#include "qluabinding.h"
#include "qscriptmanager.h"

#include "animations/animrecords.h"
#include "animations/qanimations.h"
#include "code/qsyntaxtexteditor.h"
#include "project/qproject.h"
#include "sprites/qspriteitem.h"
#include "sprites/qsprites.h"

#include <QTextBlock>
#include <QTextDocument>

extern "C" {
#include <lua.h>
}

using namespace LuaBind;

namespace ScriptApi {

const char *const managerKey = "bf_script_manager";

QScriptManager *manager(lua_State *L)
{
    lua_getfield(L, LUA_REGISTRYINDEX, managerKey);
    auto *m = static_cast<QScriptManager *>(lua_touserdata(L, -1));
    lua_pop(L, 1);
    return m;
}

namespace {

QProject *asProject(QObject *o)
{
    return static_cast<QProject *>(o);
}
QSprites *asSprites(QObject *o)
{
    return static_cast<QSprites *>(o);
}
QAnimations *asAnimations(QObject *o)
{
    return static_cast<QAnimations *>(o);
}
QSyntaxTextEditor *asDoc(QObject *o)
{
    return static_cast<QSyntaxTextEditor *>(o);
}

// Reading and writing files is refused to text of unknown origin.
void needFiles(lua_State *L)
{
    if (manager(L)->isSandboxed())
        fail(QStringLiteral("files are out of reach of this script"));
}

// An index argument that must name an existing item (or, with `end`, the
// place after the last one).
int index(lua_State *L, int arg, int count, bool end = false)
{
    const int i = toInt(L, arg);
    if (i < 0 || i > count || (i == count && !end))
        fail(QStringLiteral("index %1 is out of range (0 to %2)").arg(i).arg(end ? count : count - 1));
    return i;
}

// ---------------------------------------------------------------- globals

int projectCount(lua_State *L)
{
    return pushNumber(L, double(manager(L)->projects().size()));
}

int project(lua_State *L)
{
    QScriptManager *m = manager(L);
    if (lua_isnoneornil(L, 1)) {
        push(L, m->currentProject(), projectClass());
        return 1;
    }
    const QList<QProject *> all = m->projects();
    const int i = toInt(L, 1);
    if (i == -1) {
        push(L, m->currentProject(), projectClass());
        return 1;
    }
    if (i < 0 || i >= all.size())
        fail(QStringLiteral("there is no project %1 (%2 open)").arg(i).arg(all.size()));
    push(L, all.at(i), projectClass());
    return 1;
}

// ---------------------------------------------------------------- TextDocument

QTextCursor &cursor(lua_State *L, QObject *self)
{
    return manager(L)->cursorFor(asDoc(self));
}

const Class &makeTextDocument()
{
    static const Class cls{
        "TextDocument",
        nullptr,
        {
            {"atLineStart", [](lua_State *L, QObject *s) { return pushBool(L, cursor(L, s).atBlockStart()); }, nullptr},
            {"atLineEnd", [](lua_State *L, QObject *s) { return pushBool(L, cursor(L, s).atBlockEnd()); }, nullptr},
            {"atStart", [](lua_State *L, QObject *s) { return pushBool(L, cursor(L, s).atStart()); }, nullptr},
            {"atEnd", [](lua_State *L, QObject *s) { return pushBool(L, cursor(L, s).atEnd()); }, nullptr},
            {"lineNumber", [](lua_State *L, QObject *s) { return pushNumber(L, cursor(L, s).blockNumber()); }, nullptr},
            {"columnNumber", [](lua_State *L, QObject *s) { return pushNumber(L, cursor(L, s).columnNumber()); },
             nullptr},
            {"position", [](lua_State *L, QObject *s) { return pushNumber(L, cursor(L, s).position()); },
             [](lua_State *L, QObject *s) {
                 // Beyond the end is the end, as a text cursor moved there would be.
                 QTextCursor &c = cursor(L, s);
                 const int last = qMax(0, asDoc(s)->document()->characterCount() - 1);
                 c.setPosition(qBound(0, toInt(L, 2), last));
             }},
            {"selectedText",
             [](lua_State *L, QObject *s) {
                 QString text = cursor(L, s).selectedText();
                 text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
                 return pushText(L, text);
             },
             nullptr},
            {"text", [](lua_State *L, QObject *s) { return pushText(L, asDoc(s)->text()); },
             [](lua_State *L, QObject *s) {
                 // One edit the author can undo, not a new document.
                 const QString text = toString(L, 2);
                 QTextCursor &c = cursor(L, s);
                 c.select(QTextCursor::Document);
                 c.insertText(text);
                 manager(L)->outlineChanged(asDoc(s));
             }},
            {"fileName", [](lua_State *L, QObject *s) { return pushText(L, asDoc(s)->fileName()); }, nullptr},
            {"lineCount", [](lua_State *L, QObject *s) { return pushNumber(L, asDoc(s)->document()->blockCount()); },
             nullptr},
            {"isModified", [](lua_State *L, QObject *s) { return pushBool(L, asDoc(s)->isModified()); }, nullptr},
        },
        {
            {"movePosition",
             [](lua_State *L, QObject *s) {
                 const int op = toInt(L, 2);
                 const int mode = lua_isnoneornil(L, 3) ? 0 : toInt(L, 3);
                 const int n = lua_isnoneornil(L, 4) ? 1 : toInt(L, 4);
                 if (op < 0 || op > QTextCursor::PreviousRow || (mode != 0 && mode != 1))
                     fail(QStringLiteral("movePosition: unknown move or mode"));
                 cursor(L, s).movePosition(QTextCursor::MoveOperation(op), QTextCursor::MoveMode(mode), qMax(0, n));
                 return 0;
             }},
            {"select",
             [](lua_State *L, QObject *s) {
                 const int what = toInt(L, 2);
                 if (what < 0 || what > QTextCursor::Document)
                     fail(QStringLiteral("select: unknown selection %1").arg(what));
                 cursor(L, s).select(QTextCursor::SelectionType(what));
                 return 0;
             }},
            {"clearSelection",
             [](lua_State *L, QObject *s) {
                 cursor(L, s).clearSelection();
                 return 0;
             }},
            {"insertText",
             [](lua_State *L, QObject *s) {
                 cursor(L, s).insertText(toString(L, 2));
                 manager(L)->outlineChanged(asDoc(s));
                 return 0;
             }},
            {"line",
             [](lua_State *L, QObject *s) {
                 const QTextBlock block = asDoc(s)->document()->findBlockByNumber(toInt(L, 2));
                 if (!block.isValid())
                     return 0;
                 return pushText(L, block.text());
             }},
            {"sectionExists",
             [](lua_State *L, QObject *s) {
                 manager(L)->refreshOutline(asDoc(s));
                 return pushBool(L, asDoc(s)->sectionExists(toString(L, 2)));
             }},
            {"findValue",
             [](lua_State *L, QObject *s) {
                 manager(L)->refreshOutline(asDoc(s));
                 return pushText(L, asDoc(s)->findValue(toString(L, 2), toString(L, 3)));
             }},
        },
        {
            {"WordUnderCursor", QTextCursor::WordUnderCursor},
            {"LineUnderCursor", QTextCursor::BlockUnderCursor},
            {"Document", QTextCursor::Document},
            {"KeepAnchor", QTextCursor::KeepAnchor},
            {"MoveAnchor", QTextCursor::MoveAnchor},
            {"NextWord", QTextCursor::NextWord},
            {"NextCharacter", QTextCursor::NextCharacter},
            {"NextLine", QTextCursor::NextBlock},
            {"EndOfWord", QTextCursor::EndOfWord},
            {"EndOfLine", QTextCursor::EndOfBlock},
            {"End", QTextCursor::End},
            {"PreviousWord", QTextCursor::PreviousWord},
            {"PreviousCharacter", QTextCursor::PreviousCharacter},
            {"PreviousLine", QTextCursor::PreviousBlock},
            {"StartOfWord", QTextCursor::StartOfWord},
            {"StartOfLine", QTextCursor::StartOfLine},
            {"Start", QTextCursor::Start},
            {"NoMove", QTextCursor::NoMove},
        },
    };
    return cls;
}

// ---------------------------------------------------------------- Sprites

int spriteIndex(lua_State *L, QObject *s, int arg, bool end = false)
{
    return index(L, arg, asSprites(s)->count(), end);
}

const Class &makeSprites()
{
    static const Class cls{
        "Sprites",
        nullptr,
        {
            {"version", [](lua_State *L, QObject *s) { return pushNumber(L, asSprites(s)->version()); },
             [](lua_State *L, QObject *s) {
                 const unsigned v = toUInt(L, 2);
                 if (v != 0x01000100 && v != 0x02000000 && v != 0x02000100)
                     fail(QStringLiteral("unknown sprite file version %1").arg(v));
                 asSprites(s)->setVersion(v);
             }},
            {"index", [](lua_State *L, QObject *s) { return pushNumber(L, asSprites(s)->index()); },
             [](lua_State *L, QObject *s) { asSprites(s)->setIndex(toUInt(L, 2)); }},
            {"isModified", [](lua_State *L, QObject *s) { return pushBool(L, asSprites(s)->isModified()); }, nullptr},
        },
        {
            {"fromFile",
             [](lua_State *L, QObject *s) {
                 needFiles(L);
                 return pushBool(L, asSprites(s)->fromFile(toString(L, 2), toBool(L, 3), toBool(L, 4)));
             }},
            {"toFile",
             [](lua_State *L, QObject *s) {
                 needFiles(L);
                 return pushBool(L, asSprites(s)->toFile(toString(L, 2), toBool(L, 3), toUInt(L, 4), toBool(L, 5),
                                                          toBool(L, 6)));
             }},
            {"count", [](lua_State *L, QObject *s) { return pushNumber(L, asSprites(s)->count()); }},
            {"add",
             [](lua_State *, QObject *s) {
                 asSprites(s)->add();
                 return 0;
             }},
            {"insert",
             [](lua_State *L, QObject *s) {
                 asSprites(s)->insert(spriteIndex(L, s, 2, true));
                 return 0;
             }},
            {"remove",
             [](lua_State *L, QObject *s) {
                 asSprites(s)->remove(spriteIndex(L, s, 2));
                 return 0;
             }},
            {"clear",
             [](lua_State *, QObject *s) {
                 asSprites(s)->clear();
                 return 0;
             }},
            {"move",
             [](lua_State *L, QObject *s) {
                 asSprites(s)->move(spriteIndex(L, s, 2), spriteIndex(L, s, 3));
                 return 0;
             }},
            {"crop",
             [](lua_State *L, QObject *s) {
                 asSprites(s)->crop(spriteIndex(L, s, 2));
                 return 0;
             }},
            // Group and number of a sprite, and the index of a sprite by them.
            {"group", [](lua_State *L, QObject *s) {
                 return pushNumber(L, asSprites(s)->item(spriteIndex(L, s, 2))->info.group);
             }},
            {"number", [](lua_State *L, QObject *s) {
                 return pushNumber(L, asSprites(s)->item(spriteIndex(L, s, 2))->info.number);
             }},
            {"find", [](lua_State *L, QObject *s) {
                 return pushNumber(L, asSprites(s)->findSprite(0, toInt(L, 2), toInt(L, 3)));
             }},
            {"renameGroup",
             [](lua_State *L, QObject *s) {
                 const int from = toInt(L, 2);
                 const int to = toInt(L, 3);
                 if (from < 0 || from > 65535 || to < 0 || to > 65535)
                     fail(QStringLiteral("renameGroup: groups run from 0 to 65535"));
                 asSprites(s)->renameGroup(from, to, true, 0, 0);
                 return 0;
             }},
        },
        {
            {"Version_201", 0x02000100},
            {"Version_200", 0x02000000},
            {"Version_101", 0x01000100},
        },
    };
    return cls;
}

// ---------------------------------------------------------------- Animations

int actionIndex(lua_State *L, QObject *s, int arg)
{
    return index(L, arg, asAnimations(s)->count());
}

const Class &makeAnimations()
{
    static const Class cls{
        "Animations",
        nullptr,
        {
            {"isModified", [](lua_State *L, QObject *s) { return pushBool(L, asAnimations(s)->isModified()); },
             nullptr},
        },
        {
            {"count", [](lua_State *L, QObject *s) { return pushNumber(L, asAnimations(s)->count()); }},
            {"number", [](lua_State *L, QObject *s) {
                 return pushNumber(L, asAnimations(s)->action(actionIndex(L, s, 2))->number);
             }},
            {"name", [](lua_State *L, QObject *s) {
                 return pushText(L, asAnimations(s)->action(actionIndex(L, s, 2))->name);
             }},
            {"frameCount", [](lua_State *L, QObject *s) {
                 return pushNumber(L, asAnimations(s)->frameCount(actionIndex(L, s, 2)));
             }},
            // Group and number of the sprite a frame shows (-1 for none).
            {"frame",
             [](lua_State *L, QObject *s) {
                 const int a = actionIndex(L, s, 2);
                 const int f = index(L, 3, asAnimations(s)->frameCount(a));
                 const AnimFrameData d = asAnimations(s)->frame(a, f);
                 lua_pushnumber(L, d.group);
                 lua_pushnumber(L, d.number);
                 return 2;
             }},
        },
        {},
    };
    return cls;
}

// ---------------------------------------------------------------- Project

const Class &makeProject()
{
    static const Class cls{
        "Project",
        nullptr,
        {
            {"version", [](lua_State *L, QObject *s) { return pushNumber(L, asProject(s)->version()); }, nullptr},
            {"localCoord",
             [](lua_State *L, QObject *s) {
                 lua_createtable(L, 0, 2);
                 lua_pushnumber(L, asProject(s)->localWidth());
                 lua_setfield(L, -2, "x");
                 lua_pushnumber(L, asProject(s)->localHeight());
                 lua_setfield(L, -2, "y");
                 return 1;
             },
             nullptr},
            {"type", [](lua_State *L, QObject *s) { return pushNumber(L, int(asProject(s)->type())); },
             [](lua_State *L, QObject *s) {
                 const int t = toInt(L, 2);
                 if (t != 1 && t != 2 && t != 4 && t != 8)
                     fail(QStringLiteral("unknown project type %1").arg(t));
                 asProject(s)->setType(QProjectType(t));
             }},
            {"definitions", [](lua_State *L, QObject *s) {
                 push(L, asProject(s)->definitions(), textDocumentClass());
                 return 1;
             }, nullptr},
            {"commands", [](lua_State *L, QObject *s) {
                 push(L, asProject(s)->commands(), textDocumentClass());
                 return 1;
             }, nullptr},
            {"statesCount", [](lua_State *L, QObject *s) { return pushNumber(L, asProject(s)->statesCount()); },
             nullptr},
            {"sprites", [](lua_State *L, QObject *s) {
                 push(L, asProject(s)->sprites(), spritesClass());
                 return 1;
             }, nullptr},
            {"animations", [](lua_State *L, QObject *s) {
                 push(L, asProject(s)->animations(), animationsClass());
                 return 1;
             }, nullptr},
            {"name", [](lua_State *L, QObject *s) { return pushText(L, asProject(s)->name()); }, nullptr},
        },
        {
            {"states", [](lua_State *L, QObject *s) {
                 push(L, asProject(s)->state(index(L, 2, asProject(s)->statesCount())), textDocumentClass());
                 return 1;
             }},
            {"addState", [](lua_State *L, QObject *s) {
                 push(L, asProject(s)->addState(), textDocumentClass());
                 return 1;
             }},
            {"fromFile", [](lua_State *L, QObject *s) {
                 needFiles(L);
                 return pushBool(L, asProject(s)->fromFile(toString(L, 2), toUInt(L, 3), toBool(L, 4), toBool(L, 5)));
             }},
            {"toFile", [](lua_State *L, QObject *s) {
                 needFiles(L);
                 return pushBool(L, asProject(s)->toFile());
             }},
            {"toTemporary", [](lua_State *L, QObject *s) {
                 needFiles(L);
                 return pushBool(L, asProject(s)->toTemporary(toString(L, 2), toString(L, 3)));
             }},
        },
        {
            {"Storyboard", 2},
            {"Font", 8},
            {"Stage", 4},
            {"Character", 1},
        },
    };
    return cls;
}

} // namespace

const Class &projectClass()
{
    return makeProject();
}
const Class &textDocumentClass()
{
    return makeTextDocument();
}
const Class &spritesClass()
{
    return makeSprites();
}
const Class &animationsClass()
{
    return makeAnimations();
}

void registerAll(lua_State *L)
{
    lua_register(L, "projectCount", guarded<projectCount>);
    lua_register(L, "project", guarded<project>);
    registerClass(L, projectClass());
    registerClass(L, spritesClass());
    registerClass(L, animationsClass());
    registerClass(L, textDocumentClass());
    for (const char *name : {"Slider", "RadioBox", "CheckBox", "FloatEdit", "IntEdit", "TextEdit", "Button", "Label",
                             "Wizard", "WizardPage", "Dialog", "GridLayout", "BoxLayout", "Layout", "Widget"})
        registerUnavailable(L, name, "dialogs are not available here: the script runs without a window");
}

} // namespace ScriptApi
