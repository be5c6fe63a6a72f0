#include "qscriptdialogs.h"

#include "scripting/qluabinding.h"
#include "shell/qaskuser.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QWizard>
#include <QWizardPage>

extern "C" {
#include <lauxlib.h>
#include <lua.h>
}

using namespace LuaBind;

namespace ScriptDialogs {

namespace {

const char *const pendingError = "bf_dialog_error";

template <class T>
T *as(QObject *o)
{
    return static_cast<T *>(o);
}

const Class &widgetClass();
const Class &layoutClass();
const Class &boxLayoutClass();
const Class &gridLayoutClass();

// The class a layout that the program hands back is shown as.
void pushLayout(lua_State *L, QLayout *layout)
{
    if (qobject_cast<QGridLayout *>(layout))
        push(L, layout, gridLayoutClass());
    else if (qobject_cast<QBoxLayout *>(layout))
        push(L, layout, boxLayoutClass());
    else
        push(L, layout, layoutClass());
}

QLayout *layoutArg(lua_State *L, int index)
{
    return as<QLayout>(toObject(L, index, layoutClass()));
}

QWidget *widgetArg(lua_State *L, int index)
{
    return as<QWidget>(toObject(L, index, widgetClass()));
}

// A layout can be placed only once, and never into itself.
void checkPlace(QLayout *layout, QObject *target)
{
    if (layout->parent())
        fail(QStringLiteral("this layout is placed already"));
    for (QObject *o = target; o; o = o->parent()) {
        if (o == layout)
            fail(QStringLiteral("a layout can't be placed inside itself"));
    }
}

void checkPlace(QWidget *widget, QObject *target)
{
    if (widget->isWindow() && qobject_cast<QDialog *>(widget))
        fail(QStringLiteral("a dialog can't be placed in a layout"));
    for (QObject *o = target; o; o = o->parent()) {
        if (o == widget)
            fail(QStringLiteral("a widget can't be placed inside itself"));
    }
}

// A grid cell: row, column and, with five arguments, the spans.
struct Cell
{
    int row, column, rows, columns;
};

Cell cell(lua_State *L)
{
    return {qBound(0, toInt(L, 3), 10000), qBound(0, toInt(L, 4), 10000),
            lua_isnoneornil(L, 5) ? 1 : qBound(1, toInt(L, 5), 10000),
            lua_isnoneornil(L, 6) ? 1 : qBound(1, toInt(L, 6), 10000)};
}

void place(lua_State *, QBoxLayout *box, QWidget *w)
{
    box->addWidget(w);
}
void place(lua_State *, QBoxLayout *box, QLayout *l)
{
    box->addLayout(l);
}
void place(lua_State *L, QGridLayout *grid, QWidget *w)
{
    const Cell c = cell(L);
    grid->addWidget(w, c.row, c.column, c.rows, c.columns);
}
void place(lua_State *L, QGridLayout *grid, QLayout *l)
{
    const Cell c = cell(L);
    grid->addLayout(l, c.row, c.column, c.rows, c.columns);
}

// Layouts take widgets and layouts alike: the item in argument 2 is checked,
// placed and handed back, so that calls can be chained.
template <class Layout, class Item>
int addItem(lua_State *L, QObject *s, Item *item)
{
    checkPlace(item, s);
    place(L, as<Layout>(s), item);
    lua_pushvalue(L, 2);
    return 1;
}

template <class Layout>
std::vector<Function> addMethods()
{
    return {
        {"addWidget", [](lua_State *L, QObject *s) { return addItem<Layout>(L, s, widgetArg(L, 2)); }},
        {"addLayout", [](lua_State *L, QObject *s) { return addItem<Layout>(L, s, layoutArg(L, 2)); }},
    };
}

const Class &widgetClass()
{
    static const Class cls{
        "Widget",
        nullptr,
        {
            {"enabled", [](lua_State *L, QObject *s) { return pushBool(L, as<QWidget>(s)->isEnabled()); },
             [](lua_State *L, QObject *s) { as<QWidget>(s)->setEnabled(toBool(L, 2)); }},
        },
        {},
        {},
        [](lua_State *) -> QObject * { return new QWidget; },
    };
    return cls;
}

const Class &layoutClass()
{
    static const Class cls{
        "Layout",
        nullptr,
        {
            {"margin", [](lua_State *L, QObject *s) { return pushNumber(L, as<QLayout>(s)->contentsMargins().left()); },
             [](lua_State *L, QObject *s) {
                 const int m = qBound(0, toInt(L, 2), 1000);
                 as<QLayout>(s)->setContentsMargins(m, m, m, m);
             }},
            {"spacing", [](lua_State *L, QObject *s) { return pushNumber(L, as<QLayout>(s)->spacing()); },
             [](lua_State *L, QObject *s) { as<QLayout>(s)->setSpacing(qBound(0, toInt(L, 2), 1000)); }},
        },
        {},
        {},
    };
    return cls;
}

const Class &boxLayoutClass()
{
    static const Class cls{
        "BoxLayout",
        &layoutClass(),
        {},
        addMethods<QBoxLayout>(),
        {
            {"Vertical", QBoxLayout::TopToBottom},
            {"Horizontal", QBoxLayout::LeftToRight},
        },
        [](lua_State *L) -> QObject * {
            int direction = QBoxLayout::TopToBottom;
            if (!lua_isnoneornil(L, 1))
                direction = toInt(L, 1);
            if (direction < QBoxLayout::LeftToRight || direction > QBoxLayout::BottomToTop)
                fail(QStringLiteral("BoxLayout: the direction is BoxLayout.Vertical or BoxLayout.Horizontal"));
            return new QBoxLayout(QBoxLayout::Direction(direction));
        },
    };
    return cls;
}

const Class &gridLayoutClass()
{
    static const Class cls{
        "GridLayout",
        &layoutClass(),
        {},
        addMethods<QGridLayout>(),
        {},
        [](lua_State *) -> QObject * { return new QGridLayout; },
    };
    return cls;
}

// The layout property of dialogs and wizard pages.
Property layoutProperty()
{
    return {"layout",
            [](lua_State *L, QObject *s) {
                pushLayout(L, as<QWidget>(s)->layout());
                return 1;
            },
            [](lua_State *L, QObject *s) {
                QLayout *l = layoutArg(L, 2);
                if (as<QWidget>(s)->layout())
                    fail(QStringLiteral("this window has a layout already"));
                checkPlace(l, s);
                as<QWidget>(s)->setLayout(l);
            }};
}

// A click handler may fail; the dialog then closes and its show() reports it.
int runDialog(lua_State *L, QDialog *dialog)
{
    lua_pushnil(L);
    lua_setfield(L, LUA_REGISTRYINDEX, pendingError);
    const int result = QAskUser::exec(dialog);
    lua_getfield(L, LUA_REGISTRYINDEX, pendingError);
    if (lua_isstring(L, -1))
        fail(QString::fromUtf8(lua_tostring(L, -1)));
    lua_pop(L, 1);
    return pushNumber(L, result == QDialog::Accepted ? QDialog::Accepted : QDialog::Rejected);
}

const Class &dialogClass()
{
    static const Class cls{
        "Dialog",
        &widgetClass(),
        {
            layoutProperty(),
            {"text", [](lua_State *L, QObject *s) { return pushText(L, as<QWidget>(s)->windowTitle()); },
             [](lua_State *L, QObject *s) { as<QWidget>(s)->setWindowTitle(toString(L, 2)); }},
        },
        {
            {"accept",
             [](lua_State *, QObject *s) {
                 as<QDialog>(s)->accept();
                 return 0;
             }},
            {"reject",
             [](lua_State *, QObject *s) {
                 as<QDialog>(s)->reject();
                 return 0;
             }},
            {"show", [](lua_State *L, QObject *s) { return runDialog(L, as<QDialog>(s)); }},
        },
        {
            {"Rejected", QDialog::Rejected},
            {"Accepted", QDialog::Accepted},
        },
        [](lua_State *) -> QObject * { return new QDialog; },
    };
    return cls;
}

const Class &wizardPageClass()
{
    static const Class cls{
        "WizardPage",
        &widgetClass(),
        {
            layoutProperty(),
            {"title", [](lua_State *L, QObject *s) { return pushText(L, as<QWizardPage>(s)->title()); },
             [](lua_State *L, QObject *s) { as<QWizardPage>(s)->setTitle(toString(L, 2)); }},
            {"subTitle", [](lua_State *L, QObject *s) { return pushText(L, as<QWizardPage>(s)->subTitle()); },
             [](lua_State *L, QObject *s) { as<QWizardPage>(s)->setSubTitle(toString(L, 2)); }},
        },
        {},
        {},
        [](lua_State *) -> QObject * { return new QWizardPage; },
    };
    return cls;
}

QWizardPage *pageArg(lua_State *L, int index)
{
    auto *page = as<QWizardPage>(toObject(L, index, wizardPageClass()));
    // A wizard adopts its pages.
    if (page->parent())
        fail(QStringLiteral("this page belongs to a wizard already"));
    return page;
}

const Class &wizardClass()
{
    static const Class cls{
        "Wizard",
        &dialogClass(),
        {},
        {
            {"addPage", [](lua_State *L, QObject *s) { return pushNumber(L, as<QWizard>(s)->addPage(pageArg(L, 2))); }},
            {"setPage",
             [](lua_State *L, QObject *s) {
                 const int id = toInt(L, 2);
                 if (id < 0 || as<QWizard>(s)->pageIds().contains(id))
                     fail(QStringLiteral("setPage: page id %1 is taken or negative").arg(id));
                 as<QWizard>(s)->setPage(id, pageArg(L, 3));
                 return 0;
             }},
            {"removePage",
             [](lua_State *L, QObject *s) {
                 as<QWizard>(s)->removePage(toInt(L, 2));
                 return 0;
             }},
            {"currentPage",
             [](lua_State *L, QObject *s) {
                 push(L, as<QWizard>(s)->currentPage(), wizardPageClass());
                 return 1;
             }},
            {"currentId", [](lua_State *L, QObject *s) { return pushNumber(L, as<QWizard>(s)->currentId()); }},
        },
        {},
        [](lua_State *) -> QObject * { return new QWizard; },
    };
    return cls;
}

template <class T>
Property textProperty()
{
    return {"text", [](lua_State *L, QObject *s) { return pushText(L, as<T>(s)->text()); },
            [](lua_State *L, QObject *s) { as<T>(s)->setText(toString(L, 2)); }};
}

template <class T>
Property checkedProperty()
{
    return {"checked",
            [](lua_State *L, QObject *s) { return pushBool(L, as<T>(s)->isChecked()); },
            [](lua_State *L, QObject *s) { as<T>(s)->setChecked(toBool(L, 2)); }};
}

template <class T>
std::vector<Property> rangeProperties(const char *valueName)
{
    return {
        {"minimum", [](lua_State *L, QObject *s) { return pushNumber(L, int(as<T>(s)->minimum())); },
         [](lua_State *L, QObject *s) { as<T>(s)->setMinimum(toInt(L, 2)); }},
        {"maximum", [](lua_State *L, QObject *s) { return pushNumber(L, int(as<T>(s)->maximum())); },
         [](lua_State *L, QObject *s) { as<T>(s)->setMaximum(toInt(L, 2)); }},
        {valueName, [](lua_State *L, QObject *s) { return pushNumber(L, as<T>(s)->value()); },
         [](lua_State *L, QObject *s) { as<T>(s)->setValue(toInt(L, 2)); }},
    };
}

// Calls the handler a script gave a button; a failure ends the dialog.
void clicked(lua_State *L, int ref, QWidget *button)
{
    lua_rawgeti(L, LUA_REGISTRYINDEX, ref);
    if (lua_pcall(L, 0, 0, 0) != 0) {
        lua_setfield(L, LUA_REGISTRYINDEX, pendingError);
        if (auto *dialog = qobject_cast<QDialog *>(button->window()))
            dialog->reject();
    }
}

const Class &makeWidget(const char *name, std::vector<Property> properties, Constructor create,
                        std::vector<Function> methods = {})
{
    // Classes live as long as the program: one each, made on first use.
    auto *cls = new Class{name, &widgetClass(), std::move(properties), std::move(methods), {}, create};
    return *cls;
}

const Class &labelClass()
{
    static const Class &cls =
        makeWidget("Label", {textProperty<QLabel>()}, [](lua_State *) -> QObject * { return new QLabel; });
    return cls;
}

const Class &buttonClass()
{
    static const Class &cls = makeWidget(
        "Button", {textProperty<QPushButton>()}, [](lua_State *) -> QObject * { return new QPushButton; },
        {{"onClick", [](lua_State *L, QObject *s) {
              if (!lua_isfunction(L, 2))
                  argError(L, 2, "function");
              lua_pushvalue(L, 2);
              const int ref = luaL_ref(L, LUA_REGISTRYINDEX);
              auto *button = as<QPushButton>(s);
              QObject::connect(button, &QPushButton::clicked, button, [L, ref, button] { clicked(L, ref, button); });
              return 0;
          }}});
    return cls;
}

const Class &textEditClass()
{
    static const Class &cls =
        makeWidget("TextEdit", {textProperty<QLineEdit>()}, [](lua_State *) -> QObject * { return new QLineEdit; });
    return cls;
}

const Class &intEditClass()
{
    static const Class &cls = makeWidget("IntEdit", rangeProperties<QSpinBox>("value"),
                                         [](lua_State *) -> QObject * { return new QSpinBox; });
    return cls;
}

const Class &floatEditClass()
{
    static const Class &cls = makeWidget(
        "FloatEdit",
        {
            {"minimum", [](lua_State *L, QObject *s) { return pushNumber(L, as<QDoubleSpinBox>(s)->minimum()); },
             [](lua_State *L, QObject *s) { as<QDoubleSpinBox>(s)->setMinimum(toNumber(L, 2)); }},
            {"maximum", [](lua_State *L, QObject *s) { return pushNumber(L, as<QDoubleSpinBox>(s)->maximum()); },
             [](lua_State *L, QObject *s) { as<QDoubleSpinBox>(s)->setMaximum(toNumber(L, 2)); }},
            {"value", [](lua_State *L, QObject *s) { return pushNumber(L, as<QDoubleSpinBox>(s)->value()); },
             [](lua_State *L, QObject *s) { as<QDoubleSpinBox>(s)->setValue(toNumber(L, 2)); }},
        },
        [](lua_State *) -> QObject * { return new QDoubleSpinBox; });
    return cls;
}

const Class &checkBoxClass()
{
    static const Class &cls = makeWidget("CheckBox", {textProperty<QCheckBox>(), checkedProperty<QCheckBox>()},
                                         [](lua_State *) -> QObject * { return new QCheckBox; });
    return cls;
}

const Class &radioBoxClass()
{
    static const Class &cls = makeWidget("RadioBox", {textProperty<QRadioButton>(), checkedProperty<QRadioButton>()},
                                         [](lua_State *) -> QObject * { return new QRadioButton; });
    return cls;
}

const Class &sliderClass()
{
    static const Class &cls =
        makeWidget("Slider", rangeProperties<QSlider>("position"),
                   [](lua_State *) -> QObject * { return new QSlider(Qt::Horizontal); });
    return cls;
}

} // namespace

void registerClasses(lua_State *L)
{
    for (const Class *cls : {&sliderClass(), &radioBoxClass(), &checkBoxClass(), &floatEditClass(), &intEditClass(),
                             &textEditClass(), &buttonClass(), &labelClass(), &wizardClass(), &wizardPageClass(),
                             &dialogClass(), &gridLayoutClass(), &boxLayoutClass(), &layoutClass(), &widgetClass()})
        registerClass(L, *cls);
}

} // namespace ScriptDialogs
