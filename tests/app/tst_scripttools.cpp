// The shipped tool scripts as the Tools menu runs them: folders are submenus,
// a tool's dialog goes through the program's dialog seam, its report and its
// errors reach the user.
#include "approot.h"
#include "askrecorder.h"
#include "project/qproject.h"

#include <QGuiApplication>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QAction *findAction(QMenu *menu, const QString &text)
{
    for (QAction *a : menu->actions()) {
        if (a->text() == text)
            return a;
    }
    return nullptr;
}

} // namespace

class TestScriptTools : public QObject
{
    Q_OBJECT

private slots:
    void toolsMenuRunsScripts();
};

void TestScriptTools::toolsMenuRunsScripts()
{
    QTemporaryDir home;
    TestSupport::AskRecorder ask;
    auto root = TestSupport::startProgram(home.path());
    auto *tools = root->window()->findChild<QMenu *>(QStringLiteral("menuTools"));
    QVERIFY(tools);
    QAction *spritesMenu = findAction(tools, QStringLiteral("Sprites"));
    QVERIFY(spritesMenu && spritesMenu->menu());
    QAction *renumber = findAction(spritesMenu->menu(), QStringLiteral("Renumber a group"));
    QAction *unused = findAction(spritesMenu->menu(), QStringLiteral("List unused sprites"));
    QVERIFY(renumber && unused);

    // The tool's own dialog, filled in and accepted, then its report.
    QStringList dialogs;
    ask.onDialog = [&](QDialog *dialog) {
        dialogs << dialog->windowTitle();
        const QList<QSpinBox *> boxes = dialog->findChildren<QSpinBox *>();
        if (boxes.size() != 2)
            return int(QDialog::Rejected);
        boxes.at(0)->setValue(3);
        boxes.at(1)->setValue(9);
        return int(QDialog::Accepted);
    };
    renumber->trigger();
    QCOMPARE(dialogs, QStringList{"Renumber a group"});
    QCOMPARE(ask.messages(), QStringList{"Renumber a group: 0 sprites moved from group 3 to group 9"});

    // A tool that refuses the project says why, in the tool error box.
    root->controller()->currentProject()->setType(QProjectType::Stage);
    unused->trigger();
    QCOMPARE(ask.titles.last(), QStringLiteral("Tool script error"));
    QVERIFY(ask.texts.last().contains("characters only"));

    // With BF_SCREENSHOT_DIR set (under xvfb-run), the menu as the docs show it.
    const QString dir = qEnvironmentVariable("BF_SCREENSHOT_DIR");
    if (dir.isEmpty())
        return;
    root->window()->resize(900, 560);
    root->window()->show();
    QVERIFY(QTest::qWaitForWindowExposed(root->window()));
    QMenu *bar = tools;
    QMenuBar *menuBar = root->window()->menuBar();
    bar->popup(menuBar->mapToGlobal(menuBar->actionGeometry(tools->menuAction()).bottomLeft()));
    QTest::qWait(200);
    bar->setActiveAction(spritesMenu);
    spritesMenu->menu()->popup(bar->mapToGlobal(QPoint(bar->width(), bar->actionGeometry(spritesMenu).top())));
    QTest::qWait(300);
    const QRect area = root->window()->frameGeometry().united(spritesMenu->menu()->geometry());
    QVERIFY(QGuiApplication::primaryScreen()->grabWindow(0, area.x(), area.y(), area.width(), area.height())
                .save(dir + QStringLiteral("/tools-menu.png")));
}

QTEST_MAIN(TestScriptTools)
#include "tst_scripttools.moc"
