#include <QAction>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "shell/qaction2.h"
#include "shell/qactionlist.h"
#include "shell/qactionmanager.h"

namespace {

// Counts how often each action of a manager is triggered.
struct TriggerLog
{
    QMap<QString, int> hits;
    void watch(QAction2 *a)
    {
        QObject::connect(a, &QAction::triggered, [this, a] { ++hits[a->key()]; });
    }
};

QString writeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &content)
{
    const QString path = dir.filePath(name);
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return QString();
    f.write(content);
    return path;
}

} // namespace

class TestActions : public QObject
{
    Q_OBJECT

private slots:
    void oneKeyInTwoScopesRunsTheCurrentEditorsAction();
    void conflictsAreRefusedAndLeaveEverythingUnchanged();
    void carriersAreSharedCountedAndDeleted();
    void addActionConnectsSlotsAndEnabling();
    void shortcutFileRoundTripAndBadFiles();
    void shippedShortcutsLoadWithoutConflict();
    void tableModelEditsShortcuts();
    void actionListFollowsTheEditor();
};

void TestActions::oneKeyInTwoScopesRunsTheCurrentEditorsAction()
{
    QActionManager m;
    QSignalSpy created(&m, &QActionManager::carrierCreated);
    QAction2 *spr = m.addAction({1, -1}, "spr_save", 72);
    QAction2 *st = m.addAction({4, -1}, "st_save", 203);
    QAction2 *glob = m.addAction({7, -1}, "file_new", 0);
    TriggerLog log;
    log.watch(spr);
    log.watch(st);
    log.watch(glob);

    QVERIFY(m.setShortcut(spr, QKeySequence("Ctrl+S")));
    QVERIFY(m.setShortcut(st, QKeySequence("Ctrl+S")));
    QVERIFY(m.setShortcut(glob, QKeySequence("Ctrl+N")));
    QCOMPARE(m.carriers().size(), 2);
    QCOMPARE(created.count(), 2);
    QAction *carrier = spr->carrier();
    QVERIFY(carrier);
    QCOMPARE(st->carrier(), carrier);
    QCOMPARE(carrier->data().toInt(), 2);

    m.setScope(1);
    carrier->trigger();
    QCOMPARE(log.hits.value("spr_save"), 1);
    QCOMPARE(log.hits.value("st_save"), 0);

    m.setScope(4);
    carrier->trigger();
    QCOMPARE(log.hits.value("spr_save"), 1);
    QCOMPARE(log.hits.value("st_save"), 1);

    // An editor that has neither: nothing runs. A global action runs everywhere.
    m.setScope(2);
    carrier->trigger();
    glob->carrier()->trigger();
    QCOMPARE(log.hits.value("spr_save") + log.hits.value("st_save"), 2);
    QCOMPARE(log.hits.value("file_new"), 1);

    // No editor at all: no shortcut does anything, not even global ones.
    for (int none : {8, 9, -1}) {
        m.setScope(none);
        carrier->trigger();
        glob->carrier()->trigger();
    }
    QCOMPARE(log.hits.value("file_new"), 1);
    QCOMPARE(log.hits.value("spr_save") + log.hits.value("st_save"), 2);

    // A disabled action still takes its turn: the key does nothing rather than
    // falling through to an action of another scope.
    QAction2 *both = m.addAction({2, -1}, "anim_save", 139);
    log.watch(both);
    QVERIFY(m.setShortcut(both, QKeySequence("Ctrl+S")));
    m.setScope(1);
    spr->setEnabled(false);
    carrier->trigger();
    QCOMPARE(log.hits.value("spr_save"), 1);
    QCOMPARE(log.hits.value("anim_save"), 0);

    // Texts show the keys.
    QCOMPARE(st->text(), QString("Save (Ctrl+S)"));
}

void TestActions::conflictsAreRefusedAndLeaveEverythingUnchanged()
{
    QActionManager m;
    QSignalSpy conflicts(&m, &QActionManager::conflict);
    QAction2 *add = m.addAction({1, -1}, "spr_add", 74);
    QAction2 *del = m.addAction({1, -1}, "spr_delete", 75);
    QAction2 *multi = m.addAction({1, 2, -1}, "spr_multi", 81);
    QAction2 *glob = m.addAction({7, -1}, "file_open", 1);
    QAction2 *def1 = m.addAction({0, -1}, "def_a", 65);
    QAction2 *def2 = m.addAction({0, -1}, "def_b", 66);
    QAction2 *snd = m.addAction({5, -1}, "snd_add", 218);

    QVERIFY(m.setShortcut(add, QKeySequence("Ctrl+A")));
    QVERIFY(m.setShortcut(del, QKeySequence("Del")));

    // Same scope: refused, and del keeps its own key.
    QVERIFY(!m.setShortcut(del, QKeySequence("Ctrl+A")));
    QCOMPARE(conflicts.count(), 1);
    QCOMPARE(conflicts.at(0).at(0).value<QAction2 *>(), del);
    QCOMPARE(del->keys(), QKeySequence("Del"));
    QCOMPARE(add->carrier()->data().toInt(), 1);
    QCOMPARE(m.carriers().size(), 2);

    // Overlapping scope lists clash too.
    QVERIFY(!m.setShortcut(multi, QKeySequence("Ctrl+A")));
    // A global action and an editor action clash, whichever comes first.
    QVERIFY(!m.setShortcut(glob, QKeySequence("Ctrl+A")));
    QVERIFY(m.setShortcut(glob, QKeySequence("Ctrl+O")));
    QVERIFY(!m.setShortcut(snd, QKeySequence("Ctrl+O")));
    QCOMPARE(conflicts.count(), 4);
    QVERIFY(!multi->carrier());
    QVERIFY(!snd->carrier());

    // Different editors share a key freely.
    QVERIFY(m.setShortcut(snd, QKeySequence("Ctrl+A")));
    // The definitions editor may reuse a key among its own actions.
    QVERIFY(m.setShortcut(def1, QKeySequence("Ctrl+D")));
    QVERIFY(m.setShortcut(def2, QKeySequence("Ctrl+D")));
    QCOMPARE(conflicts.count(), 4);

    // Giving an action the keys it already has changes nothing.
    QVERIFY(m.setShortcut(add, QKeySequence("Ctrl+A")));
    QCOMPARE(add->carrier()->data().toInt(), 2);

    // Null and foreign actions are refused quietly.
    QVERIFY(!m.setShortcut(nullptr, QKeySequence("Ctrl+Q")));
    QAction2 stranger({1, -1}, "x", 0);
    QVERIFY(!m.setShortcut(&stranger, QKeySequence("Ctrl+Q")));
    QCOMPARE(conflicts.count(), 4);
}

void TestActions::carriersAreSharedCountedAndDeleted()
{
    QActionManager m;
    QAction2 *a = m.addAction({1, -1}, "a", 74);
    QAction2 *b = m.addAction({2, -1}, "b", 142);
    QVERIFY(m.setShortcut(a, QKeySequence("F5")));
    QVERIFY(m.setShortcut(b, QKeySequence("F5")));
    QPointer<QAction> carrier = a->carrier();
    QCOMPARE(carrier->data().toInt(), 2);

    // Moving one user away lowers the count; clearing the last deletes it.
    QVERIFY(m.setShortcut(a, QKeySequence("F6")));
    QCOMPARE(carrier->data().toInt(), 1);
    QCOMPARE(m.carriers().size(), 2);
    QVERIFY(m.setShortcut(b, QKeySequence()));
    QVERIFY(carrier.isNull());
    QVERIFY(!b->carrier());
    QCOMPARE(m.carriers().size(), 1);
    QCOMPARE(b->text(), QString("Add"));

    // Clearing an action without a shortcut is harmless.
    QVERIFY(m.setShortcut(b, QKeySequence()));
    QCOMPARE(m.carriers().size(), 1);
    QCOMPARE(m.action("a"), a);
    QCOMPARE(m.action("A"), nullptr);
    QCOMPARE(m.action(""), nullptr);
}

void TestActions::addActionConnectsSlotsAndEnabling()
{
    // The receiver: a checkable action drives setVisible of a plain QAction,
    // a plain one triggers another; enabling comes from a signal with a bool.
    QAction target;
    QAction toggler;
    toggler.setCheckable(true);
    QActionManager m;
    QAction2 *check = m.addAction({7, -1}, "view_left_panel", 18, true, &target, SLOT(setVisible(bool)),
                                  SIGNAL(toggled(bool)));
    QAction2 *plain = m.addAction({7, -1}, "file_close", 2, false, &target, SLOT(toggle()));
    QVERIFY(check->isCheckable());
    QVERIFY(!plain->isCheckable());
    QCOMPARE(check->text(), QString("Left panel"));
    QCOMPARE(check->objectName(), QString("view_left_panel"));

    check->setChecked(false);
    check->setChecked(true);
    check->setChecked(false);
    QVERIFY(!target.isVisible());
    target.setCheckable(true);
    plain->trigger();
    QVERIFY(target.isChecked());
    // target's own toggled(bool) now enables or disables `check`.
    target.setChecked(false);
    QVERIFY(!check->isEnabled());
    target.setChecked(true);
    QVERIFY(check->isEnabled());
}

void TestActions::shortcutFileRoundTripAndBadFiles()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath("shortcuts.xml");
    {
        QActionManager m;
        QAction2 *a = m.addAction({1, -1}, "spr_save", 72);
        m.addAction({1, -1}, "spr_add", 74); // no shortcut: not written
        QAction2 *c = m.addAction({4, -1}, "st_save", 203);
        QAction2 *d = m.addAction({7, -1}, "file_run_mugen", 9);
        QVERIFY(m.setShortcut(a, QKeySequence("Ctrl+S")));
        QVERIFY(m.setShortcut(c, QKeySequence("Ctrl+S")));
        QVERIFY(m.setShortcut(d, QKeySequence(Qt::Key_F9)));
        QVERIFY(m.save(path));
    }
    QFile f(path);
    QVERIFY(f.open(QIODevice::ReadOnly));
    const QByteArray text = f.readAll();
    f.close();
    QVERIFY(text.contains("<!DOCTYPE ORVShortcutML>"));
    QVERIFY(text.contains("<shortcuts>"));
    QVERIFY(text.contains("\n    <shortcut action=\"spr_save\" keys=\"Ctrl+S\"/>") ||
            text.contains("\n    <shortcut keys=\"Ctrl+S\" action=\"spr_save\"/>"));
    QVERIFY(!text.contains("spr_add"));
    QCOMPARE(text.count("<shortcut "), 3);

    QActionManager m;
    QAction2 *a = m.addAction({1, -1}, "spr_save", 72);
    QAction2 *b = m.addAction({1, -1}, "spr_add", 74);
    QAction2 *c = m.addAction({4, -1}, "st_save", 203);
    QAction2 *d = m.addAction({7, -1}, "file_run_mugen", 9);
    QVERIFY(m.load(path));
    QCOMPARE(a->keys(), QKeySequence("Ctrl+S"));
    QCOMPARE(c->carrier(), a->carrier());
    QCOMPARE(d->keys(), QKeySequence(Qt::Key_F9));
    QVERIFY(!b->carrier());

    // A missing file: false, nothing changes.
    QVERIFY(!m.load(dir.filePath("none.xml")));
    QCOMPARE(m.carriers().size(), 2);

    // Wrong root, broken XML, binary junk: false, nothing changes, no crash.
    const QString wrongRoot = writeFile(dir, "wr.xml", "<config><shortcut action=\"spr_add\" keys=\"A\"/></config>");
    const QString broken = writeFile(dir, "br.xml", "<shortcuts><shortcut action=\"spr_add\" keys=");
    const QString junk = writeFile(dir, "junk.xml", QByteArray("\x00\xff\xfe<\x01", 5));
    for (const QString &bad : {wrongRoot, broken, junk}) {
        QVERIFY(!m.load(bad));
        QVERIFY(!b->carrier());
    }

    // Unknown actions are skipped; a conflict inside the file is reported for
    // that element and the others still load.
    QSignalSpy conflicts(&m, &QActionManager::conflict);
    const QString mixed = writeFile(dir, "mixed.xml",
                                    "<!DOCTYPE ORVShortcutML><shortcuts>"
                                    "<shortcut action=\"gone_action\" keys=\"Ctrl+G\"/>"
                                    "<shortcut action=\"spr_add\" keys=\"Ctrl+S\"/>"
                                    "<shortcut keys=\"Ctrl+Q\"/>"
                                    "<shortcut action=\"st_save\" keys=\"\"/>"
                                    "</shortcuts>");
    QVERIFY(m.load(mixed));
    QCOMPARE(conflicts.count(), 1);
    QVERIFY(!b->carrier());
    QVERIFY(!c->carrier()); // empty keys clear the shortcut
    QCOMPARE(a->carrier()->data().toInt(), 1);

    // A save into a folder that doesn't exist fails without leaving anything.
    QVERIFY(!m.save(dir.filePath("no/such/dir/shortcuts.xml")));
}

void TestActions::shippedShortcutsLoadWithoutConflict()
{
    const QString shipped = QStringLiteral(BF_SOURCE_DIR "/data/shortcuts.xml");
    if (!QFile::exists(shipped))
        QSKIP("data/shortcuts.xml not found beside the sources");
    QActionManager m;
    const QStringList keys = {"file_new", "file_open", "file_close", "file_save", "file_saveas", "file_run_mugen",
                              "edit_undo", "edit_redo", "edit_cut", "edit_copy", "edit_paste",
                              "edit_find_replace", "edit_find_replace_multi"};
    for (const QString &k : keys)
        m.addAction({7, -1}, k, 0);
    // Editor actions of the same names users know from other programs must not collide either.
    m.addAction({1, -1}, "spr_save", 72);
    QSignalSpy conflicts(&m, &QActionManager::conflict);
    QVERIFY(m.load(shipped));
    QCOMPARE(conflicts.count(), 0);
    for (const QString &k : keys)
        QVERIFY2(m.action(k)->carrier(), qPrintable(k));
    QCOMPARE(m.carriers().size(), keys.size());
    QCOMPARE(m.action("file_save")->keys(), QKeySequence(QKeySequence::fromString("Ctrl+S")));
    QCOMPARE(m.action("file_saveas")->keys(), QKeySequence::fromString("Ctrl+Shift+S"));
    QCOMPARE(m.action("file_run_mugen")->keys(), QKeySequence(Qt::Key_F9));
}

void TestActions::tableModelEditsShortcuts()
{
    QActionManager m;
    m.setIconProvider([](const QString &key) {
        QPixmap px(4, 4);
        px.fill(key == "spr_add" ? Qt::red : Qt::blue);
        return QIcon(px);
    });
    QAction2 *a = m.addAction({1, -1}, "spr_add", 74);
    QAction2 *b = m.addAction({1, -1}, "spr_delete", 75);
    QCOMPARE(m.rowCount(), 2);
    QCOMPARE(m.columnCount(), 2);
    QCOMPARE(m.headerData(0, Qt::Horizontal).toString(), QString("Function"));
    QCOMPARE(m.headerData(1, Qt::Horizontal).toString(), QString("Keys"));
    QCOMPARE(m.data(m.index(0, 0)).toString(), a->toolTip());
    QVERIFY(!m.data(m.index(0, 0), Qt::DecorationRole).value<QIcon>().isNull());
    QVERIFY(!(m.flags(m.index(0, 0)) & Qt::ItemIsEditable));
    QVERIFY(m.flags(m.index(0, 1)) & Qt::ItemIsEditable);

    QSignalSpy changed(&m, &QAbstractItemModel::dataChanged);
    QVERIFY(m.setData(m.index(0, 1), "Ctrl+Shift+A"));
    QCOMPARE(a->keys(), QKeySequence("Ctrl+Shift+A"));
    QCOMPARE(m.data(m.index(0, 1)).toString(), QString("Ctrl+Shift+A"));
    QCOMPARE(changed.count(), 1);
    QVERIFY(!m.setData(m.index(1, 1), "Ctrl+Shift+A")); // same scope
    QVERIFY(!b->carrier());
    QVERIFY(!m.setData(m.index(0, 0), "Ctrl+B"));
    QVERIFY(!m.setData(m.index(5, 1), "Ctrl+B"));
    QVERIFY(!m.setData(m.index(0, 1), "Ctrl+B", Qt::DisplayRole));
    QVERIFY(m.setData(m.index(0, 1), ""));
    QVERIFY(!a->carrier());
    QVERIFY(!m.data(m.index(9, 0)).isValid());
}

void TestActions::actionListFollowsTheEditor()
{
    QActionManager m;
    m.addAction({7, -1}, "file_new", 0);
    QAction2 *sprAdd = m.addAction({1, -1}, "spr_add", 74);
    m.addAction({2, -1}, "air_add", 142);
    QAction2 *shared = m.addAction({1, 2, -1}, "zoom_in", 56);
    QActionList &list = m.list();
    QSignalSpy removed(&list, &QAbstractItemModel::rowsRemoved);
    QSignalSpy inserted(&list, &QAbstractItemModel::rowsInserted);

    QCOMPARE(list.rowCount(), 0);
    list.setEditor(1);
    QCOMPARE(list.rowCount(), 2);
    QCOMPARE(list.action(0), sprAdd);
    QCOMPARE(list.action(1), shared);
    QCOMPARE(list.data(list.index(0)).toString(), sprAdd->toolTip());
    QCOMPARE(list.data(list.index(0), Qt::ToolTipRole).toString(), sprAdd->toolTip());
    QCOMPARE(inserted.count(), 1);

    list.setEditor(2);
    QCOMPARE(list.rowCount(), 2);
    QCOMPARE(list.action(0)->key(), QString("air_add"));
    QCOMPARE(removed.count(), 1);

    list.setEditor(5); // an editor with nothing of its own
    QCOMPARE(list.rowCount(), 0);
    list.setEditor(8);
    QCOMPARE(list.rowCount(), 0);
    list.setEditor(-3);
    QCOMPARE(list.rowCount(), 0);
    QCOMPARE(list.action(0), nullptr);
    QVERIFY(!list.data(list.index(0)).isValid());
}

QTEST_MAIN(TestActions)
#include "tst_actions.moc"
