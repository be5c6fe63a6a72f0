// The advanced palette editor, opened from the palettes panel on kfm and driven
// through its commands; what it commits must be one undo step each.
#include "appdriver.h"
#include "testsupport.h"

#include "project/qproject.h"
#include "shell/qinterface.h"
#include "sprites/qrgbpalette.h"
#include "sprites/qsprites.h"
#include "sprites/ui/paleditor.h"
#include "sprites/ui/qpaletteseditor.h"
#include "sprites/ui/qpalettewidget.h"

#include <QFileInfo>
#include <QRadioButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

class TestAdvPalEditor : public QObject
{
    Q_OBJECT

    QTemporaryDir m_files;
    std::unique_ptr<TestSupport::AppDriver> m_app;

    QScrollBar *bar(const char *name) const { return m_app->control<QScrollBar>(name); }

private slots:
    void initTestCase() { m_app = std::make_unique<TestSupport::AppDriver>(); }
    void cleanupTestCase() { m_app.reset(); }

    void commitsPaletteAndSpriteAsOneUndoStepEach()
    {
        BF_REQUIRE_SAMPLE();
        m_app->ui()->openProject(TestSupport::samplePath("chars/kfm/kfm.def"));
        m_app->registry().editorAction(1)->trigger();
        m_app->registry().setExtraEditor(1);
        QSprites *s = m_app->ui()->currentProject()->sprites();
        const int p11 = s->findPalette(0, 1, 1), sprite = s->findSprite(0, 0, 0);
        QVERIFY(p11 >= 0 && sprite >= 0);
        bar("spr_sel")->setValue(sprite);
        bar("pal_sel")->setValue(p11);
        const QRGBPal before = *s->paletteColors(p11);
        const QImage picture = s->image(sprite);
        const int steps = s->undoStack()->index();
        QRGBPal fired = before;
        QRGBPalette(&fired).effect(QRGBPalette::Fire, nullptr);

        QStringList failures;
        auto check = [&](bool ok, const char *what) {
            if (!ok)
                failures << QString::fromLatin1(what);
        };
        const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
        m_app->ask.onDialog = [&](QDialog *d) {
            auto *editor = qobject_cast<PalEditor *>(d);
            if (!editor)
                return int(QDialog::Accepted);
            check(editor->charColors() == before && editor->image().size() == picture.size(), "starts from the store");
            editor->setEffect(QRGBPalette::Fire);
            editor->action(QStringLiteral("advpal_effect_apply"))->trigger();
            check(editor->charColors() == fired, "fire on every colour");
            // The sliders act live; Reset takes them back, undo the effect.
            editor->setRgb(40, 0, 0);
            check(editor->charColors()[5].r == qMin(255, fired[5].r + 40), "live red");
            editor->action(QStringLiteral("advpal_rgb_reset"))->trigger();
            check(editor->charColors() == fired, "reset");
            editor->action(QStringLiteral("advpal_undo"))->trigger();
            check(editor->charColors() == before, "undo");
            editor->action(QStringLiteral("advpal_redo"))->trigger();
            if (!shots.isEmpty()) {
                for (int i = 16; i < 32; ++i)
                    editor->charView()->select(i, true);
                editor->resize(1000, 640);
                editor->show();
                QTest::qWait(300);
                check(editor->grab().save(shots + QStringLiteral("/palette-advanced.png")), "screenshot");
            }
            editor->action(QStringLiteral("advpal_commit_changes"))->trigger();

            // The picture in a grey palette of its own, sent to the sprite.
            editor->findChild<QRadioButton *>(QStringLiteral("advpal_image_active"))->setChecked(true);
            editor->action(QStringLiteral("advpal_grayscale"))->trigger();
            for (int i = 1; i < 256; ++i)
                check(editor->imageColors()[i].r == editor->imageColors()[i].g, "grey entries");
            editor->action(QStringLiteral("advpal_commit_spr_changes"))->trigger();

            // Files: the palette and the picture written, then read back as
            // image files for a palette of their own and to take this one.
            const QString act = m_files.filePath(QStringLiteral("grey.act")), png = m_files.filePath(QStringLiteral("grey.png"));
            m_app->ask.files = {act, png, png, png};
            for (const char *key : {"advpal_save", "advpal_save_img", "advpal_gen_pal_imgs", "advpal_insert_pal_imgs",
                                    "advpal_adapt_image", "advpal_optimize", "advpal_auto_sort", "advpal_invert_all"})
                editor->action(QString::fromLatin1(key))->trigger();
            check(QFileInfo(act).size() == 768 && !QImage(png).isNull() && m_app->ask.titles.isEmpty(), "files");
            return int(QDialog::Accepted);
        };
        m_app->trigger("pal_advanced");
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join(QStringLiteral(", "))));

        QCOMPARE(*s->paletteColors(p11), fired);
        QCOMPARE(s->undoStack()->index(), steps + 2);
        const QImage grey = s->image(sprite);
        QCOMPARE(grey.size(), picture.size());
        for (int y = 0; y < grey.height(); y += 3)
            for (int x = 0; x < grey.width(); x += 3)
                if (grey.pixelIndex(x, y))
                    QCOMPARE(qRed(grey.pixel(x, y)), qGreen(grey.pixel(x, y)));
        // Two commits, two steps: undoing both gives the store back.
        s->undoStack()->undo();
        s->undoStack()->undo();
        QCOMPARE(s->undoStack()->index(), steps);
        QCOMPARE(*s->paletteColors(p11), before);
        QCOMPARE(TestSupport::imageDifference(s->image(sprite), picture), 0);
    }
};

QTEST_MAIN(TestAdvPalEditor)
#include "tst_advpaleditor.moc"
