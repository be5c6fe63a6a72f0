#include <QtTest>

#include "shell/qaction2.h"
#include "approot.h"
#include "testsupport.h"
#include "shell/qcolorsetmanager.h"
#include "shell/qiconsetmanager.h"
#include "base/qlifecyclelog.h"
#include "project/qproject.h"
#include "base/qxmlhelper.h"
#include "shell/mainwindow.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterface.h"
#include "shell/qwindowlayout.h"
#include "shell/qinterfacecontrolaction.h"
#include "shell/qinterfacecontrolwidget.h"
#include "shell/qinterfacecontrolwidget2.h"
#include "shell/qinterfaceeditor.h"
#include "shell/qinterfaceextraeditor.h"
#include "shell/qinterfaceworkspace.h"
#include "shell/qpanelwidget.h"
#include "shell/qpresetmanager.h"
#include "shell/qstylesheetmanager.h"

#include <QActionGroup>
#include <QComboBox>
#include <QSpinBox>
#include <QStackedLayout>
#include <QTemporaryDir>
#include <QToolBar>
#include <QToolButton>

namespace {
// An editor that counts what the controller does to it.
class CountingEditor : public QInterfaceEditor
{
    Q_OBJECT
public:
    int undos = 0, finds = 0, reloads = 0, refreshes = 0, deactivations = 0;
    int id() const override { return 7; }
    QString name() const override { return "editor_counting"; }
    QString tag() const override { return "counting"; }
    int layoutFlags() const override { return 7; }
    int workspaceId() const override { return 1; }
    int projectTypes() const override { return 2; }
    int captionId() const override { return 43; }
    void activate(bool reload) override
    {
        (reload ? reloads : refreshes)++;
        QInterfaceEditor::activate(reload);
    }
    void deactivate() override
    {
        ++deactivations;
        QInterfaceEditor::deactivate();
    }
public slots:
    void clear() override {}
    void open() override {}
    void save() override {}
    void saveAs() override {}
    void undo() override { ++undos; }
    void redo() override {}
    void cut() override {}
    void copy() override {}
    void paste() override {}
    void find(const QString &, const QQuickFindOptions &) override { ++finds; }
    void replace(const QString &, const QString &, const QQuickFindOptions &, bool) override {}
};

class PaletteStandIn : public QWidget
{
    Q_OBJECT
signals:
    void changed();
};

class Owner : public QObject
{
    Q_OBJECT
public:
    int changes = 0;
public slots:
    void onChanged() { ++changes; }
    void onValue(int) { ++changes; }
signals:
    void setValue(int);
};
} // namespace

class TestEditorFramework : public QObject
{
    Q_OBJECT

    QTemporaryDir m_presets;
    QTemporaryDir m_home;
    std::unique_ptr<QAppRoot> m_root;
    QStringList m_xmlFailures;

    QInterface *ui() const { return m_root->controller(); }
    void writePreset(const QString &name, const QByteArray &body)
    {
        QFile f(m_presets.filePath(name + ".xml"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(body);
    }
    QPresetManager testPresets()
    {
        const QAppObjects &o = m_root->objects();
        return QPresetManager({m_presets.path()}, o.iconsets, o.stylesheets, o.colorsets);
    }
    bool applyTest(const QString &name, QPresetManager &pm)
    {
        return pm.apply(ui()->registry(), name, QString(), QString(), QString());
    }

private slots:
    void initTestCase()
    {
        QXmlHelper::setFailureHandler([this](const QString &m) { m_xmlFailures << m; });
        m_root = TestSupport::startProgram(m_home.path());
    }
    void init() { m_xmlFailures.clear(); }
    void cleanupTestCase()
    {
        m_root.reset();
    }

    void everyEditorIsReachable()
    {
        // Each editor has its button (checkable, in the exclusive group, found
        // by its key), a page in the left panel, a toolbar entry and a
        // workspace, and switching to it shows them. Pages stand in the order
        // of the numbers, whatever the order of registration.
        QEditorRegistry &r = ui()->registry();
        QVERIFY(r.editorGroup()->isExclusive());
        QCOMPARE(r.editorIds(), (QList<int>{0, 1, 2, 3, 4, 5, 6}));
        for (int id : r.editorIds()) {
            QInterfaceEditor *e = r.editor(id);
            QAction *a = r.editorAction(id);
            QVERIFY(a->isCheckable());
            QVERIFY(r.editorGroup()->actions().contains(a));
            QCOMPARE(static_cast<QAction *>(r.actionManager().action(e->name())), a);
            QVERIFY(!a->text().isEmpty());
            QVERIFY(r.toolbarEntries().contains(e->tag()));
            QVERIFY(e->canClose(nullptr));
            QCOMPARE(r.layout().leftStack()->indexOf(r.editorPanel(e->tag())), id);
            a->trigger();
            QCOMPARE(r.currentEditorId(), id);
            QVERIFY(r.workspace(e->workspaceId())->isActive());
            QCOMPARE(r.layout().centralStack()->currentIndex(), e->workspaceId());
            QCOMPARE(r.layout().leftStack()->currentWidget(), r.editorPanel(e->tag()));
        }
        for (int id = 0; id < QEditorRegistry::NoExtraEditor; ++id) {
            QInterfaceExtraEditor *x = r.extraEditor(id);
            QCOMPARE(r.layout().rightStack()->indexOf(r.extraPanel(x->name())), id);
            QVERIFY(!x->widget());
        }
        QVERIFY(!r.editor(QEditorRegistry::NoEditor));
        r.editorSwitch(0);
    }

    void switchingAndRefresh()
    {
        auto owned = std::make_unique<CountingEditor>();
        CountingEditor *c = owned.get();
        ui()->registry().addEditor(std::move(owned));
        QVERIFY(ui()->registry().editorPanel("counting"));

        // Switching to the current id again only refreshes: one connection.
        ui()->registry().editorSwitch(7);
        ui()->registry().editorSwitch(7);
        ui()->registry().editorAction(7)->trigger();
        QCOMPARE(ui()->registry().currentEditorId(), 7);
        QCOMPARE(c->reloads, 3);
        emit ui()->registry().editUndo();
        emit ui()->registry().editFind("x", {});
        QCOMPARE(c->undos, 1);
        QCOMPARE(c->finds, 1);
        QVERIFY(c->isActive());
        QCOMPARE(ui()->registry().currentWorkspaceId(), 1);
        QVERIFY(ui()->registry().workspace(1)->isActive());
        QVERIFY(!ui()->registry().workspace(0)->isActive());

        // A new project refreshes every editor; the current one gets a real
        // activation at the end and still hears each command once.
        c->reloads = c->refreshes = c->deactivations = 0;
        ui()->setCurrentProject(nullptr);
        QCOMPARE(c->refreshes, 1);
        QCOMPARE(c->reloads, 1);
        QCOMPARE(c->deactivations, 2);
        emit ui()->registry().editUndo();
        QCOMPARE(c->undos, 2);

        // Away from it: cut off and deactivated.
        ui()->registry().editorSwitch(0);
        QVERIFY(!c->isActive());
        QVERIFY(ui()->registry().editorAction(0)->isChecked());
        emit ui()->registry().editUndo();
        QCOMPARE(c->undos, 2);
        QCOMPARE(ui()->registry().currentWorkspaceId(), 0);
        QVERIFY(!ui()->registry().workspace(1)->isActive());

        // Panels follow the flags; the right one needs an extra editor.
        ui()->registry().setExtraEditor(1);
        ui()->registry().editorSwitch(1);
        QVERIFY(!ui()->layout().leftPanel()->isHidden());
        QVERIFY(!ui()->layout().rightPanel()->isHidden());
        QCOMPARE(ui()->layout().rightPanel()->title(), QStringLiteral("Palettes"));
        QCOMPARE(ui()->layout().leftPanel()->title(), QStringLiteral("Sprites"));
        ui()->registry().editorSwitch(0);
        QVERIFY(!ui()->layout().leftPanel()->isHidden());
        QVERIFY(ui()->layout().rightPanel()->isHidden());
        ui()->registry().editorSwitch(1);
        QVERIFY(!ui()->layout().rightPanel()->isHidden()); // survives a detour
        ui()->registry().editorSwitch(6);
        QVERIFY(ui()->layout().leftPanel()->isHidden());
        QCOMPARE(ui()->registry().currentWorkspaceId(), 2);

        // No editor: toolbars empty, panels hidden, no extra editor.
        ui()->registry().editorSwitch(8);
        QCOMPARE(ui()->registry().currentEditorId(), 8);
        QVERIFY(ui()->layout().mainToolBar()->actions().isEmpty());
        QVERIFY(ui()->layout().leftPanel()->isHidden());
        QCOMPARE(ui()->registry().currentExtraEditorId(), 3);
        emit ui()->registry().editUndo(); // goes nowhere, harmlessly
        ui()->registry().setExtraEditor(0);
        ui()->registry().editorSwitch(0);
    }

    void projectTypeVisibility()
    {
        ui()->registry().editorSwitch(2);
        ui()->registry().applyProjectType(8); // Font
        QList<int> visible;
        for (int id = 0; id <= 7; ++id) {
            if (ui()->registry().editorAction(id) && ui()->registry().editorAction(id)->isVisible())
                visible << id;
        }
        QCOMPARE(visible, (QList<int>{0, 1, 6}));
        QCOMPARE(ui()->registry().currentEditorId(), 0);

        ui()->registry().editorSwitch(1);
        ui()->registry().applyProjectType(2); // Storyboard: the counting editor serves it
        QCOMPARE(ui()->registry().currentEditorId(), 1);
        QVERIFY(ui()->registry().editorAction(7)->isVisible());
        QVERIFY(!ui()->registry().editorAction(3)->isVisible());
        ui()->registry().applyProjectType(1);
        QVERIFY(ui()->registry().editorAction(3)->isVisible());
        QVERIFY(!ui()->registry().editorAction(7)->isVisible());
        ui()->registry().editorSwitch(0);

        // Only the current project's type counts.
        ui()->registry().applyProjectType(8);
        QProject other;
        ui()->projTypeChanged(&other);
        QVERIFY(!ui()->registry().editorAction(3)->isVisible());
        QProject *current = ui()->projects().first();
        ui()->setCurrentProject(current);
        ui()->projTypeChanged(current); // a new project is a character
        QVERIFY(ui()->registry().editorAction(3)->isVisible());
        QCOMPARE(ui()->registry().editor(3)->project(), current);
        QVERIFY(ui()->registry().canCloseProject(current));
    }

    void presetPlacement()
    {
        QVERIFY(m_presets.isValid());
        QPresetManager pm = testPresets();
        pm.setDpiOverride(192); // everything doubles
        QVERIFY(QFile::copy(TestSupport::fixturesDir() + "/presets/Twice.xml", m_presets.filePath("Twice.xml")));
        pm.refresh();
        QVERIFY(pm.count() >= 1);
        const QTranslationUnit &tu = ui()->actionManager().translation();
        auto spin = std::make_unique<QInterfaceControlWidget2>(5, -1, nullptr, nullptr, nullptr,
                                                               nullptr, tu);
        QInterfaceControlWidget2 *spin2 = spin.get();
        ui()->registry().addControl("spin2", std::move(spin));

        QVERIFY(applyTest("Twice", pm));
        QCOMPARE(pm.scale(), 2);
        QCOMPARE(ui()->layout().leftPanel()->minimumWidth(), 300);
        QCOMPARE(ui()->layout().leftPanel()->titleTop(), 8);
        QCOMPARE(ui()->layout().leftPanel()->titleHeight(), 40);
        // A bad metric leaves the right panel as it was.
        QCOMPARE(ui()->layout().rightPanel()->minimumWidth(), 220);

        const QToolBarEntry main = ui()->registry().toolbarEntries().value("main");
        QCOMPARE(main.iconSize, 24);
        QCOMPARE(main.actions.size(), 3); // unknown key skipped
        QVERIFY(!main.actions.at(1));
        QVERIFY(ui()->registry().toolbarEntries().contains("newbar"));

        // One control placed twice: two buttons that enable together.
        auto *undo = static_cast<QInterfaceControlAction *>(ui()->registry().control("edit_undo"));
        const QList<QToolButton *> buttons = undo->buttons();
        QCOMPARE(buttons.size(), 2);
        QCOMPARE(buttons.at(0)->geometry(), QRect(20, 40, 60, 50));
        QVERIFY(buttons.at(0)->autoRaise());
        QCOMPARE(buttons.at(0)->iconSize(), QSize(16, 16));
        QCOMPARE(buttons.at(1)->pos(), QPoint(0, 0)); // bad position: 0,0
        QCOMPARE(buttons.at(0)->parentWidget(), ui()->registry().editorPanel("sprites"));
        ui()->registry().setControlEnabled("edit_undo", false);
        QVERIFY(!buttons.at(0)->isEnabled() && !buttons.at(1)->isEnabled());
        ui()->registry().setControlEnabled("edit_undo", true);
        QVERIFY(buttons.at(0)->isEnabled() && buttons.at(1)->isEnabled());

        // The two-widget control: each placement takes one widget, a third has none.
        QCOMPARE(spin2->widget(0)->size(), QSize(80, 40));
        QCOMPARE(spin2->widget(0)->minimumSize(), spin2->widget(0)->maximumSize());
        QCOMPARE(spin2->widget(1)->pos(), QPoint(10, 100));
        QVERIFY(!spin2->widget(1)->isHidden());
        ui()->registry().setControlEnabled("spin2", false);
        QVERIFY(!spin2->widget(0)->isEnabled() && !spin2->widget(1)->isEnabled());
        ui()->registry().setControlEnabled("spin2", true);

        auto *redo = static_cast<QInterfaceControlAction *>(ui()->registry().control("edit_redo"));
        QCOMPARE(redo->buttons().size(), 1);
        QCOMPARE(redo->buttons().at(0)->parentWidget(), ui()->registry().extraPanel("organizer"));

        // The real toolbar is filled from the entries at the next switch.
        ui()->registry().editorSwitch(0);
        QCOMPARE(ui()->layout().mainToolBar()->actions().size(), 3);
        QCOMPARE(ui()->layout().mainToolBar()->iconSize(), QSize(24, 24));

        // A missing preset or a wrong root: nothing stays.
        writePreset("WrongRoot", "<!DOCTYPE ORVPresetML><shortcuts><toolbar name=\"main\"><button name=\"edit_undo\"/></toolbar></shortcuts>");
        for (const char *name : {"Absent", "WrongRoot"}) {
            QVERIFY(!applyTest(name, pm));
            QVERIFY(undo->buttons().isEmpty());
            QVERIFY(redo->buttons().isEmpty());
            QVERIFY(spin2->widget(0)->isHidden());
            for (const QToolBarEntry &e : ui()->registry().toolbarEntries())
                QVERIFY(e.actions.isEmpty());
            ui()->registry().editorSwitch(0);
            QVERIFY(ui()->layout().mainToolBar()->actions().isEmpty());
        }
        // A broken preset is reported, and leaves nothing either.
        writePreset("Broken", "<preset><toolbar name=\"main\">");
        m_xmlFailures.clear();
        QVERIFY(!applyTest("Broken", pm));
        QCOMPARE(m_xmlFailures.size(), 1);

        // Absent attributes take their defaults: panel 220,0,30 at any metric
        // left before, icon size 24, "Classic" appearance.
        writePreset("Bare", "<preset><toolbar name=\"main\"><button name=\"edit_undo\"/></toolbar></preset>");
        pm.setDpiOverride(96);
        QVERIFY(applyTest("Bare", pm));
        QCOMPARE(ui()->layout().leftPanel()->minimumWidth(), 220);
        QCOMPARE(ui()->layout().leftPanel()->titleHeight(), 30);
        QCOMPARE(ui()->registry().toolbarEntries().value("main").iconSize, 24);
        QCOMPARE(m_root->objects().iconsets->current(), QStringLiteral("Classic"));
        QCOMPARE(m_root->objects().colorsets->current(), QStringLiteral("Classic"));
        pm.setDpiOverride(40); // a low density never shrinks to nothing
        QVERIFY(applyTest("Bare", pm));
        QCOMPARE(pm.scale(), 1);
    }

    void shippedClassicPreset()
    {
        // The preset that ships lays out every editor's toolbar and the
        // editor buttons; every key in it is a real action or panel control.
        QMap<QString, QToolBarEntry> &entries = ui()->registry().toolbarEntries();
        m_root->objects().presets->setDpiOverride(96);
        QVERIFY(m_root->objects().presets->apply(ui()->registry(), "Classic", QString(), QString(), QString()));
        for (const char *tag : {"main", "extra", "definitions", "sprites", "animations", "commands",
                                "states", "sounds", "docs"})
            QVERIFY2(entries.contains(tag), tag);
        QStringList extra;
        for (const QPointer<QAction> &a : entries.value("extra").actions) {
            if (a)
                extra << static_cast<QAction2 *>(a.data())->key();
        }
        QCOMPARE(extra, (QStringList{"editor_def", "editor_sff", "editor_air", "editor_cmd",
                                     "editor_st", "editor_snd", "ref_docs"}));
        QFile f(QCoreApplication::applicationDirPath() + "/presets/Classic.xml");
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(f.readAll());
        static const QRegularExpression key("<(?:button|control) name=\"([a-z_]+)\"");
        for (auto it = key.globalMatch(text); it.hasNext();) {
            const QString k = it.next().captured(1);
            QVERIFY2(ui()->actionManager().action(k) || ui()->registry().control(k), qPrintable(k));
        }
        QVERIFY(m_xmlFailures.isEmpty());
    }

    void controlTypes()
    {
        // A control wires its widget to the owner both ways, and a placement
        // names it and hands it back when the next preset clears it.
        const QTranslationUnit &tu = ui()->actionManager().translation();
        Owner owner;
        QInterfaceControlOptions combo;
        combo.captions = {0, 1, 2, -1, 3};
        QInterfaceControlWidget list(8, 5, &combo, &owner, SLOT(onChanged()), nullptr, tu);
        QCOMPARE(qobject_cast<QComboBox *>(list.widget())->count(), 3); // -1 ends the list
        auto *pal = new PaletteStandIn;
        QInterfaceControlWidget palette(12, 5, nullptr, &owner, SLOT(onChanged()), nullptr, tu, pal);
        emit pal->changed();
        QCOMPARE(owner.changes, 1);
        QVERIFY(!QInterfaceControlWidget(99, 5, nullptr, &owner, SLOT(onChanged()), nullptr, tu).widget());

        QInterfaceControlWidget driven(5, -1, nullptr, &owner, SLOT(onValue(int)), SIGNAL(setValue(int)), tu);
        emit owner.setValue(42);
        QCOMPARE(qobject_cast<QSpinBox *>(driven.widget())->value(), 42);
        QWidget page;
        QWidget *w = driven.create(&page, "value", 3, 4, -1, -1, tu);
        QCOMPARE(w->objectName(), QStringLiteral("value"));
        driven.clear();
        QVERIFY(!w->parentWidget());
    }

    void appearance()
    {
        QCOMPARE(QStylesheetManager::prepare("a{margin:[10]px;}", "Blue"), QStringLiteral("a{margin:10px;}"));
        QCOMPARE(QStylesheetManager::prepare("[3]x", "Blue"), QStringLiteral("x"));
        QCOMPARE(QStylesheetManager::prepare("b{image:url(a.png)} c{image:url(b.png)}", "/data/styles/Blue"),
                 QStringLiteral("b{image:url(/data/styles/Blue/a.png)} c{image:url(/data/styles/Blue/b.png)}"));

        QTemporaryDir dir;
        QFile custom(dir.filePath("Custom.xml"));
        QVERIFY(custom.open(QIODevice::WriteOnly));
        custom.write("<!DOCTYPE ORVColorsML><colors><color name=\"line\" value=\"1,2,3\"/>"
                     "<color name=\"comment\" value=\"1,2\" bold=\"true\"/></colors>");
        custom.close();
        QColorsetManager colors({dir.path()});
        QCOMPARE(colors.count(), 0); // Custom isn't listed
        QVERIFY(colors.load("Custom"));
        QCOMPARE(colors.color("line").color, QColor(1, 2, 3));
        QVERIFY(!colors.colors().contains("comment")); // out of pattern
        QCOMPARE(colors.rowCount(), 1);
        QCOMPARE(colors.data(colors.index(0), Qt::ForegroundRole).value<QColor>(), QColor(Qt::white));
        QCOMPARE(QColorsetManager::contrast(QColor(255, 255, 200)), QColor(Qt::black));
    }
};

QTEST_MAIN(TestEditorFramework)
#include "tst_editorframework.moc"
