// The palettes panel beside the sprites, driven through its buttons and
// controls, with every question answered through QAskUser.
#include "appdriver.h"
#include "palettesupport.h"
#include "testsupport.h"

#include "base/qmessages.h"
#include "project/qproject.h"
#include "render/qsprrender.h"
#include "shell/qaskuser.h"
#include "shell/qinterface.h"
#include "sprites/qpalettefile.h"
#include "sprites/qrgbpalette.h"
#include "sprites/qsprites.h"
#include "sprites/ui/qpaletteseditor.h"
#include "sprites/ui/qpalettewidget.h"
#include "sprites/ui/qspriteseditor.h"

#include <QAbstractButton>
#include <QColorDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

class TestPalettesEditor : public QObject
{
    Q_OBJECT

    QTemporaryDir m_files;
    std::unique_ptr<TestSupport::AppDriver> m_app;

    QInterface *ui() const { return m_app->ui(); }
    QEditorRegistry &registry() const { return m_app->registry(); }
    QSpritesEditor *sprites() const { return static_cast<QSpritesEditor *>(registry().editor(1)); }
    QPalettesEditor *panel() const { return static_cast<QPalettesEditor *>(registry().extraEditor(1)); }
    QSprites *store() const { return ui()->currentProject()->sprites(); }
    QPaletteWidget *view() const { return panel()->view(); }
    void trigger(const char *key) { m_app->trigger(key); }
    bool enabled(const char *key) const { return m_app->action(key)->isEnabled(); }
    QWidget *control(const char *name) const { return m_app->control(name); }
    QString label(const char *name) const { return m_app->control<QLabel>(name)->text(); }

    // A new empty project on the sprites tab, with the palettes beside it.
    void freshProject()
    {
        ui()->newProject(false);
        registry().editorAction(1)->trigger();
        registry().setExtraEditor(1);
    }
    static QRGBPal ramp(int seed)
    {
        QRGBPal pal;
        for (int i = 0; i < 256; ++i)
            pal[i] = TestSupport::rgb((i * 3 + seed) & 255, (i + seed * 7) & 255, (255 - i + seed) & 255);
        return pal;
    }

private slots:
    void initTestCase() { m_app = std::make_unique<TestSupport::AppDriver>(); }
    void cleanupTestCase() { m_app.reset(); }
    void init() { m_app->ask.reset(); }

    void browsesKfmAndRecoloursTheStage()
    {
        BF_REQUIRE_SAMPLE();
        freshProject();
        QCOMPARE(label("pal_sel_lb"), QStringLiteral("0 / 0"));
        QVERIFY(!enabled("pal_delete") && !control("pal_grp")->isEnabled());

        ui()->openProject(TestSupport::samplePath("chars/kfm/kfm.def"));
        registry().editorAction(1)->trigger();
        registry().setExtraEditor(1);
        QSprites *s = store();
        const int n = s->paletteCount();
        const int p11 = s->findPalette(0, 1, 1), p16 = s->findPalette(0, 1, 6);
        QVERIFY(p11 >= 0 && p16 >= 0);
        QWidget *page = registry().extraPanel(QStringLiteral("palettes"));
        QVERIFY(control("pal_view")->parentWidget() == page && control("pal_view")->isVisible());

        // The panel goes with the shown sprite's palette; moving in the panel recolours the stage.
        int sprite = 0;
        while (sprite < s->count() && (s->item(sprite)->info.group != 0 || s->item(sprite)->info.number != 0))
            ++sprite;
        QVERIFY(sprite < s->count());
        qobject_cast<QScrollBar *>(control("spr_sel"))->setValue(sprite);
        QCOMPARE(panel()->position(), int(s->item(sprite)->info.palette));
        auto *bar = qobject_cast<QScrollBar *>(control("pal_sel"));
        bar->setValue(p11);
        QCOMPARE(label("pal_sel_lb"), QStringLiteral("%1 / %2").arg(p11 + 1).arg(n));
        QCOMPARE(qobject_cast<QSpinBox *>(control("pal_grp"))->value(), 1);
        const QImage in11 = sprites()->stage()->render(QSize(320, 240));
        bar->setValue(p16);
        QCOMPARE(qobject_cast<QSpinBox *>(control("pal_num"))->value(), 6);
        // The sample's character palettes are alike: 1,6 gets colours of its own first.
        view()->rgbPalette()->setColors(ramp(4));
        const QImage in16 = sprites()->stage()->render(QSize(320, 240));
        QVERIFY(TestSupport::imageDifference(in11, in16) > 0);
        QCOMPARE(*view()->rgbPalette()->buffer(), *s->paletteColors(p16));
        // A refresh of the sprites editor keeps the palette the user chose.
        sprites()->updateSel();
        QCOMPARE(panel()->position(), p16);

        // The picker: a click on the sprite selects its colour there and leaves the axis alone.
        trigger("pal_pick_color");
        const QSpriteInfo axis = s->item(sprite)->info;
        const QPoint body = sprites()->stage()->spriteRect().center();
        QTest::mouseClick(sprites()->stageHost(), Qt::LeftButton, {}, body);
        const QList<int> picked = view()->selectedIndices();
        QVERIFY(picked.size() == 1 && picked.first() > 0);
        QVERIFY(s->item(sprite)->info == axis);
        trigger("pal_pick_color");

        // Group and number edits go through the store's undo.
        qobject_cast<QSpinBox *>(control("pal_num"))->setValue(40);
        QCOMPARE(int(s->paletteInfo(p16).number), 40);
        s->undoStack()->undo();
        QCOMPARE(int(s->paletteInfo(p16).number), 6);
        trigger("pal_prev_grp");
        QVERIFY(panel()->position() < p16);

        // Applying to a group changes exactly that group's sprites, in one undo step.
        const QList<int> before = s->spritePaletteIndices();
        bar->setValue(p16);
        const int shown = panel()->position();
        m_app->ask.onDialog = [](QDialog *d) {
            const QList<QListWidgetItem *> fives = d->findChild<QListWidget *>(QStringLiteral("groups"))->findItems(QStringLiteral("5"), Qt::MatchExactly);
            if (fives.size() != 1)
                return int(QDialog::Rejected);
            fives.first()->setCheckState(Qt::Checked);
            d->findChild<QPushButton *>(QStringLiteral("apply"))->click();
            return int(QDialog::Accepted);
        };
        trigger("pal_apply_group");
        const QList<int> after = s->spritePaletteIndices();
        int changed = 0;
        for (int i = 0; i < s->count(); ++i) {
            QCOMPARE(after[i], s->item(i)->info.group == 5 ? shown : before[i]);
            changed += after[i] != before[i];
        }
        QVERIFY(changed > 0);
        s->undoStack()->undo();
        QCOMPARE(s->spritePaletteIndices(), before);

        // Leaving the panel gives the stage back to the sprites' own palettes.
        registry().setExtraEditor(QEditorRegistry::NoExtraEditor);
        QVERIFY(!panel()->isActive());
    }

    void addsDeletesLoadsAndSavesPaletteFiles()
    {
        freshProject();
        QSprites *s = store();
        // No: a blank palette after the current one.
        m_app->ask.answer = QMessageBox::No;
        trigger("pal_add");
        trigger("pal_add");
        QCOMPARE(s->paletteCount(), 2);
        QCOMPARE(*s->paletteColors(1), QRGBPal());
        QCOMPARE(s->paletteColors(1)->colors[0], TestSupport::rgb(0, 0, 0, 255));
        QCOMPARE(label("pal_sel_lb"), QStringLiteral("2 / 2"));

        // Yes: one palette per file, after the current one; a bad file is reported by name.
        m_app->ask.answer = QMessageBox::Yes;
        const QString a = m_files.filePath(QStringLiteral("a.act")), b = m_files.filePath(QStringLiteral("b.act"));
        const QString bad = m_files.filePath(QStringLiteral("bad.pal"));
        QVERIFY(QPaletteFile::saveAct(a, ramp(1)) && QPaletteFile::saveAct(b, ramp(2)));
        QVERIFY(TestSupport::writeAll(bad, "JASC-PAL\r\nnonsense"));
        m_app->ask.files << QStringList{a, bad, b}.join(QLatin1Char('\n'));
        m_app->ask.fill = [](QDialog *d) {
            d->findChild<QSpinBox *>(QStringLiteral("group"))->setValue(7);
            d->findChild<QSpinBox *>(QStringLiteral("number"))->setValue(3);
        };
        trigger("pal_add");
        QCOMPARE(s->paletteCount(), 4);
        QCOMPARE(s->paletteColors(2)->colors[7], ramp(1)[7]);
        QCOMPARE(s->paletteColors(3)->colors[200], ramp(2)[200]);
        QVERIFY(s->paletteInfo(2).group == 7 && s->paletteInfo(2).number == 3 && s->paletteInfo(3).number == 4);
        m_app->ask.fill = nullptr;
        QVERIFY(m_app->ask.messages().last().contains(QStringLiteral("bad.pal")));

        // Open loads a file into the shown palette, and the panel's undo takes it back.
        const QRGBPal before = *s->paletteColors(panel()->position());
        m_app->ask.files << a;
        trigger("pal_open");
        QCOMPARE(*s->paletteColors(panel()->position()), ramp(1));
        trigger("pal_undo");
        QCOMPARE(*s->paletteColors(panel()->position()), before);

        // Several palettes are saved as group-number.act, 768 bytes each; a cancel writes nothing.
        QDir out(m_files.filePath(QStringLiteral("out")));
        QVERIFY(out.mkpath(QStringLiteral(".")));
        m_app->ask.onDialog = [](QDialog *) { return int(QDialog::Rejected); };
        trigger("pal_save");
        QVERIFY(out.isEmpty());
        m_app->ask.onDialog = [](QDialog *d) {
            d->findChild<QSpinBox *>(QStringLiteral("start"))->setValue(1);
            d->findChild<QSpinBox *>(QStringLiteral("end"))->setValue(4);
            d->findChild<QAbstractButton *>(QStringLiteral("interval"))->setChecked(true);
            return int(QDialog::Accepted);
        };
        m_app->ask.files << out.filePath(QStringLiteral("pal.act"));
        const QList<int> indices = s->spritePaletteIndices();
        const int undoIndex = s->undoStack()->index();
        trigger("pal_save");
        const QStringList written = out.entryList(QDir::Files, QDir::Name);
        QCOMPARE(written.size(), 4);
        for (int i = 0; i < 4; ++i) {
            const QPaletteInfo info = s->paletteInfo(i);
            const QString name = QStringLiteral("%1-%2.act").arg(info.group).arg(info.number);
            QVERIFY2(written.contains(name), qPrintable(name));
            QCOMPARE(TestSupport::readAll(out.filePath(name)), QPaletteFile::actBytes(*s->paletteColors(i)));
        }
        QCOMPARE(TestSupport::readAll(out.filePath(written.first())).size(), 768);
        QCOMPARE(s->undoStack()->index(), undoIndex);
        QCOMPARE(s->spritePaletteIndices(), indices);

        // Delete asks first; No keeps the palette.
        m_app->ask.answer = QMessageBox::No;
        trigger("pal_delete");
        QCOMPARE(s->paletteCount(), 4);
        m_app->ask.answer = QMessageBox::Yes;
        trigger("pal_delete");
        QCOMPARE(s->paletteCount(), 3);
        QVERIFY(m_app->ask.messages().last().startsWith(QStringLiteral("Delete palette: ")));
    }

    void setsMovesAndUndoesColours()
    {
        freshProject();
        QSprites *s = store();
        m_app->ask.answer = QMessageBox::No;
        trigger("pal_add");
        const int p = panel()->position();
        QVERIFY(!enabled("pal_set_color") && !enabled("pal_undo"));

        // The colour dialog's answer goes to every selected entry.
        view()->select(5);
        view()->select(9, true);
        QVERIFY(enabled("pal_switch_color"));
        m_app->ask.onDialog = [](QDialog *d) {
            auto *dialog = qobject_cast<QColorDialog *>(d);
            if (!dialog || d->windowTitle() != QLatin1String("Color"))
                return int(QDialog::Rejected);
            dialog->setCurrentColor(QColor(255, 127, 0));
            return int(QDialog::Accepted);
        };
        trigger("pal_set_color");
        QCOMPARE(s->paletteColors(p)->colors[5], TestSupport::rgb(255, 127, 0));
        QCOMPARE(s->paletteColors(p)->colors[9], TestSupport::rgb(255, 127, 0));
        QCOMPARE(s->paletteColors(p)->colors[6], TestSupport::rgb(0, 0, 0));

        // Dragging entry 5 onto cell 2 shifts 2..4 up by one.
        QRGBPal pal = ramp(3);
        view()->rgbPalette()->setColors(pal);
        QCOMPARE(*s->paletteColors(p), pal);
        view()->select(5);
        QTest::mousePress(view(), Qt::LeftButton, {}, view()->cellRect(5).center());
        QTest::mouseMove(view(), view()->cellRect(3).center());
        QTest::mouseMove(view(), view()->cellRect(2).center());
        QTest::mouseRelease(view(), Qt::LeftButton, {}, view()->cellRect(2).center());
        const QRGBPal *moved = s->paletteColors(p);
        QCOMPARE(moved->colors[2], pal[5]);
        QCOMPARE(moved->colors[3], pal[2]);
        QCOMPARE(moved->colors[5], pal[4]);
        QCOMPARE(moved->colors[6], pal[6]);

        // Twenty changes: the history goes back twelve and stops there.
        for (int k = 0; k < 20; ++k)
            view()->rgbPalette()->setColor(0, TestSupport::rgb(k, k, k));
        int undone = 0;
        while (enabled("pal_undo") && undone < 30) {
            trigger("pal_undo");
            ++undone;
        }
        QCOMPARE(undone, QPaletteWidget::HistorySize);
        QCOMPARE(s->paletteColors(p)->colors[0], TestSupport::rgb(7, 7, 7));
        trigger("pal_redo");
        QCOMPARE(s->paletteColors(p)->colors[0], TestSupport::rgb(8, 8, 8));
    }

    // A character whose DEF names its palette files: they are palettes 1,N over
    // the sprite file's own, and the project's save writes an edit back.
    void savesCharacterPaletteFilesBack()
    {
        BF_REQUIRE_SAMPLE();
        const QDir dir(m_files.filePath(QStringLiteral("char")));
        QVERIFY(dir.mkpath(QStringLiteral(".")));
        QVERIFY(QFile::copy(TestSupport::samplePath("chars/kfm/kfm.sff"), dir.filePath(QStringLiteral("kfm.sff"))));
        QVERIFY(TestSupport::writeAll(dir.filePath(QStringLiteral("kfm.def")),
                                      "[Info]\nname = \"K\"\n[Files]\nsprite = kfm.sff\npal1 = one.act\npal2 = two.act\npal4 = gone.act\n"
                                      "pal5 = blocked/five.act\n"));
        // A file where pal5's folder should be: that palette can't be written.
        QVERIFY(TestSupport::writeAll(dir.filePath(QStringLiteral("blocked")), "x"));
        const QString one = dir.filePath(QStringLiteral("one.act")), two = dir.filePath(QStringLiteral("two.act"));
        QVERIFY(QPaletteFile::saveAct(one, ramp(1)) && QPaletteFile::saveAct(two, ramp(2)));
        const QByteArray oneBytes = TestSupport::readAll(one), twoBytes = TestSupport::readAll(two);

        ui()->openProject(dir.filePath(QStringLiteral("kfm.def")));
        registry().editorAction(1)->trigger();
        registry().setExtraEditor(1);
        QSprites *s = store();
        const int p12 = s->findPalette(0, 1, 2);
        QCOMPARE(QPaletteFile::actBytes(*s->paletteColors(s->findPalette(0, 1, 1))), oneBytes);
        QCOMPARE(QPaletteFile::actBytes(*s->paletteColors(p12)), twoBytes);
        bool warned = false;
        for (const QMessages::Message &m : ui()->currentProject()->messages()->messages())
            warned |= m.kind == QMessages::Warning && m.text.contains(QStringLiteral("gone.act"));
        QVERIFY(warned);

        qobject_cast<QScrollBar *>(control("pal_sel"))->setValue(p12);
        view()->rgbPalette()->setColor(7, TestSupport::rgb(1, 2, 3));
        const QRGBPal edited = *s->paletteColors(p12);
        const int undoIndex = s->undoStack()->index();
        // No to the palette question leaves the files as they were.
        m_app->ask.answer = QMessageBox::No;
        ui()->fileSave();
        QCOMPARE(TestSupport::readAll(two), twoBytes);
        m_app->ask.answer = QMessageBox::Yes;
        ui()->fileSave();
        QCOMPARE(TestSupport::readAll(two), QPaletteFile::actBytes(edited));
        QCOMPARE(TestSupport::readAll(two).mid(3 * (255 - 7), 3), QByteArray("\x01\x02\x03", 3));
        QCOMPARE(TestSupport::readAll(one), oneBytes);
        QVERIFY(m_app->ask.messages().last().contains(QStringLiteral("five.act")));
        QCOMPARE(TestSupport::readAll(dir.filePath(QStringLiteral("blocked"))), QByteArray("x"));
        // The missing file is made from the sprite file's own palette 1,4.
        QCOMPARE(TestSupport::readAll(dir.filePath(QStringLiteral("gone.act"))), QPaletteFile::actBytes(*s->paletteColors(s->findPalette(0, 1, 4))));
        QCOMPARE(s->undoStack()->index(), undoIndex);
        QCOMPARE(*s->paletteColors(p12), edited);
    }

    // Remap: sprites drawn in 1,1 take 1,6 on "Apply", pixel for pixel, in one undo step.
    void remapsSpritePalettesInOneStep()
    {
        BF_REQUIRE_SAMPLE();
        ui()->openProject(TestSupport::samplePath("chars/kfm/kfm.def"));
        registry().editorAction(1)->trigger();
        registry().setExtraEditor(1);
        QSprites *s = store();
        const int p11 = s->findPalette(0, 1, 1), p16 = s->findPalette(0, 1, 6);
        s->setPaletteColors(p16, ramp(5));
        const int n = qMin(s->count(), 80);
        QList<QImage> before;
        for (int i = 0; i < n; ++i)
            before << s->image(i);
        const QList<int> indices = s->spritePaletteIndices();
        const int undoIndex = s->undoStack()->index();
        m_app->ask.onDialog = [s](QDialog *d) {
            d->findChild<QPushButton *>(QStringLiteral("add"))->click();
            s->remap()->setRow(0, 1, 1, 1, 6);
            return int(QDialog::Accepted);
        };
        trigger("pal_remap");
        QCOMPARE(s->remap()->rowCount(), 0);
        int moved = 0;
        for (int i = 0; i < n; ++i) {
            QImage expected = before[i];
            if (indices[i] == p11 && expected.format() == QImage::Format_Indexed8) {
                expected.setColorTable(ramp(5).toColorTable());
                ++moved;
            }
            QCOMPARE(s->item(i)->info.palette, quint16(indices[i] == p11 ? p16 : indices[i]));
            QCOMPARE(s->image(i), expected);
        }
        QVERIFY(moved > 0);
        QCOMPARE(s->undoStack()->index(), undoIndex + 1);
        s->undoStack()->undo();
        QCOMPARE(s->spritePaletteIndices(), indices);
    }

    // With BF_SCREENSHOT_DIR set (under xvfb-run), the pictures of the README.
    void screenshotsForTheDocs()
    {
        const QString dir = qEnvironmentVariable("BF_SCREENSHOT_DIR");
        if (dir.isEmpty())
            QSKIP("BF_SCREENSHOT_DIR not set");
        BF_REQUIRE_SAMPLE();
        auto shoot = [&dir](QWidget *w, const char *name) {
            QTest::qWait(200);
            QVERIFY(w->grab().save(dir + QLatin1Char('/') + QLatin1String(name)));
        };
        ui()->openProject(TestSupport::samplePath("chars/kfm/kfm.def"));
        registry().editorAction(1)->trigger();
        registry().setExtraEditor(1);
        QSprites *s = store();
        int stand = 0;
        while (stand < s->count() && (s->item(stand)->info.group != 0 || s->item(stand)->info.number != 0))
            ++stand;
        qobject_cast<QScrollBar *>(control("spr_sel"))->setValue(stand);
        auto *bar = qobject_cast<QScrollBar *>(control("pal_sel"));
        bar->setValue(s->findPalette(0, 1, 1));
        shoot(m_app->root->window(), "palettes-kfm-1-1.png");
        bar->setValue(s->findPalette(0, 1, 6));
        shoot(m_app->root->window(), "palettes-kfm-1-6.png");
        bar->setValue(s->findPalette(0, 1, 1));
        m_app->ask.onDialog = [&](QDialog *d) {
            d->resize(760, 440);
            d->show();
            d->findChild<QPushButton *>(QStringLiteral("add"))->click();
            shoot(d, "remap-before.png");
            s->remap()->setRow(0, 1, 1, 1, 6);
            shoot(d, "remap-after.png");
            return int(QDialog::Rejected);
        };
        trigger("pal_remap");
    }
};

QTEST_MAIN(TestPalettesEditor)
#include "tst_paletteseditor.moc"
