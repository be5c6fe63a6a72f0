// The sprites editor driven as a user drives it: the buttons of the preset,
// the keys on the stage and the mouse on the axis, with every question
// answered through QAskUser.
#include "appdriver.h"
#include "testsupport.h"

#include "project/qproject.h"
#include "render/qsprrender.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterface.h"
#include "shell/qwindowlayout.h"
#include "sprites/qimagefile.h"
#include "sprites/qspritecache.h"
#include "sprites/qsprites.h"
#include "sprites/ui/qspriteseditor.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QScrollBar>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>

class TestSpritesEditor : public QObject
{
    Q_OBJECT

    QTemporaryDir m_files;
    std::unique_ptr<TestSupport::AppDriver> m_app;

    QInterface *ui() const { return m_app->ui(); }
    QEditorRegistry &registry() const { return m_app->registry(); }
    QSpritesEditor *editor() const { return static_cast<QSpritesEditor *>(registry().editor(1)); }
    QSprites *store() const { return ui()->currentProject()->sprites(); }
    void trigger(const char *key) { m_app->trigger(key); }
    QWidget *control(const char *name) const { return m_app->control(name); }
    QString label(const char *name) const { return m_app->control<QLabel>(name)->text(); }
    int spin(const char *name) const { return m_app->control<QSpinBox>(name)->value(); }

    // A new empty project in front, on the sprites tab.
    void freshProject()
    {
        ui()->newProject(false);
        registry().editorAction(1)->trigger();
    }

    // Images with a transparent border around a coloured block, one per file.
    QStringList writeImages(int count, const QString &prefix)
    {
        QStringList names;
        for (int i = 0; i < count; ++i) {
            QImage image(20 + i, 30, QImage::Format_ARGB32);
            image.fill(Qt::transparent);
            for (int y = 10; y < 25; ++y)
                for (int x = 4; x < 14 + i; ++x)
                    image.setPixel(x, y, qRgb(40 * (i % 6), 200, 90));
            names << m_files.filePath(QStringLiteral("%1%2.png").arg(prefix).arg(i));
            if (!QImageFile::write(names.last(), image))
                return {};
        }
        return names;
    }

private slots:
    void initTestCase()
    {
        m_app = std::make_unique<TestSupport::AppDriver>();
    }
    void cleanupTestCase()
    {
        m_app.reset();
    }
    void init()
    {
        m_app->ask.reset();
    }

    void browsesKfmWithThePanelAndTheKeys()
    {
        BF_REQUIRE_SAMPLE();
        freshProject();
        QCOMPARE(label("spr_sel_lb"), QStringLiteral("0 / 0"));
        QCOMPARE(label("spr_info_lb"), QStringLiteral("No image"));
        QVERIFY(!control("spr_grp")->isEnabled());

        ui()->openProject(TestSupport::samplePath("chars/kfm/kfm.def"));
        registry().editorAction(1)->trigger();
        QSprites *s = store();
        QVERIFY(s->count() > 100);
        // The preset put the controls on the sprites page.
        QWidget *page = registry().editorPanel(QStringLiteral("sprites"));
        for (const char *name : {"spr_sel", "spr_grp", "spr_num", "spr_xaxis", "spr_yaxis", "spr_onion_skin"})
            QVERIFY2(control(name)->parentWidget() == page && control(name)->isVisible(), name);
        QCOMPARE(label("spr_sel_lb"), QStringLiteral("1 / %1").arg(s->count()));
        QCOMPARE(spin("spr_grp"), int(s->item(0)->info.group));
        QVERIFY(label("spr_info_lb").endsWith(QLatin1String("pixels (8 bits)")));

        // Walking with the keys on the stage decodes only what it shows.
        QWidget *host = editor()->stageHost();
        const quint64 decodes = QSpriteCache::decodeCount();
        for (int i = 0; i < 5; ++i)
            QTest::keyClick(host, Qt::Key_Right);
        QCOMPARE(editor()->position(), 5);
        QVERIFY(QSpriteCache::decodeCount() - decodes <= 5);
        QCOMPARE(editor()->stage()->spriteIndex(), 5);
        QTest::keyClick(host, Qt::Key_Down);
        QVERIFY(s->item(editor()->position())->info.group != s->item(5)->info.group);
        qobject_cast<QScrollBar *>(control("spr_sel"))->setValue(0);
        QCOMPARE(editor()->position(), 0);

        // Group, number and axis from the panel, each undone on its own.
        const QSpriteInfo before = s->item(0)->info;
        qobject_cast<QSpinBox *>(control("spr_grp"))->setValue(4321);
        qobject_cast<QSpinBox *>(control("spr_xaxis"))->setValue(before.x + 7);
        QCOMPARE(s->item(0)->info.group, quint16(4321));
        QCOMPARE(s->item(0)->info.x, qint16(before.x + 7));
        trigger("spr_pos_left");
        QCOMPARE(s->item(0)->info.x, qint16(before.x + 8));
        trigger("edit_undo");
        trigger("edit_undo");
        QCOMPARE(spin("spr_xaxis"), int(before.x));
        trigger("edit_undo");
        QCOMPARE(s->item(0)->info.group, before.group);

        // The stage's view commands are in the action list, for menus and keys.
        QSprRender *stage = editor()->stage();
        stage->setZoomIndex(2);
        trigger("view_zoomin");
        QCOMPARE(stage->zoomIndex(), 3);
        QAction2 *rulers = registry().actionManager().action(QStringLiteral("view_rulers"));
        rulers->setChecked(!rulers->isChecked());
        QCOMPARE(stage->rulers(), rulers->isChecked());
        rulers->setChecked(!rulers->isChecked());

        // A drag on the sprite moves the axis; one undo takes the whole drag back.
        stage->setZoomIndex(2);
        QTRY_VERIFY(!stage->spriteRect().isEmpty());
        const QPoint from = stage->spriteRect().center();
        QTest::mousePress(host, Qt::LeftButton, {}, from);
        for (int step = 1; step <= 4; ++step)
            QTest::mouseMove(host, from + QPoint(3 * step, 2 * step));
        QTest::mouseRelease(host, Qt::LeftButton, {}, from + QPoint(12, 8));
        QCOMPARE(s->item(0)->info.x, qint16(before.x - 12));
        QCOMPARE(s->item(0)->info.y, qint16(before.y - 8));
        QTRY_COMPARE(spin("spr_xaxis"), before.x - 12);
        QVERIFY(registry().layout().statusField(1)->text().startsWith(QLatin1String("Position: ")));
        trigger("edit_undo");
        QCOMPARE(s->item(0)->info.x, before.x);
        QCOMPARE(s->item(0)->info.y, before.y);

        // Find by "group,number", and a miss said as such.
        const QSpriteInfo target = s->item(40)->info;
        emit registry().editFind(QStringLiteral("%1,%2").arg(target.group).arg(target.number), {});
        QCOMPARE(s->findSprite(0, target.group, target.number), editor()->position());
        emit registry().editFind(QStringLiteral("65000,1"), {});
        QVERIFY(m_app->ask.messages().last().endsWith(QLatin1String("No sprite found!")));
    }

    void addsSavesAndCrops()
    {
        freshProject();
        const QStringList files = writeImages(10, QStringLiteral("add"));
        QCOMPARE(files.size(), 10);
        m_app->ask.files << files.join(QLatin1Char('\n'));
        m_app->ask.fill = [](QDialog *d) {
            d->findChild<QSpinBox *>("group")->setValue(7);
            d->findChild<QSpinBox *>("index")->setValue(0);
            d->findChild<QAbstractButton *>("TenInc")->setChecked(true);
            d->findChild<QAbstractButton *>("AxisS")->setChecked(true);
            d->findChild<QComboBox *>("cropImg")->setCurrentIndex(1);
        };
        trigger("spr_add");
        QSprites *s = store();
        QCOMPARE(s->count(), 10);
        QCOMPARE(label("spr_sel_lb"), QStringLiteral("1 / 10"));
        // Cropped before the axis: the bottom centre of the coloured block.
        QCOMPARE(s->spriteSize(3), quint32(15) << 16 | quint32(13));
        QCOMPARE(s->item(3)->info.x, qint16(6));
        QCOMPARE(s->item(3)->info.y, qint16(15));

        const QString sff = m_files.filePath(QStringLiteral("added.sff"));
        s->setFileName(sff);
        trigger("spr_save");
        QVERIFY(m_app->ask.messages().isEmpty());
        QSprites back;
        QVERIFY(back.fromFile(sff, false, false));
        QCOMPARE(back.count(), 10);
        for (int i = 0; i < 10; ++i) {
            QCOMPARE(back.item(i)->info.group, quint16(7));
            QCOMPARE(back.item(i)->info.number, quint16(10 * i));
        }
        QVERIFY(!s->isModified());

        // The whole add is one undo step.
        trigger("edit_undo");
        QCOMPARE(s->count(), 0);
        QCOMPARE(label("spr_sel_lb"), QStringLiteral("0 / 0"));
        trigger("edit_redo");
        QCOMPARE(s->count(), 10);

        // Duplicate as a link, then delete the original: the link inherits the image.
        m_app->ask.fill = [](QDialog *d) { d->findChild<QAbstractButton *>("DuplLink")->setChecked(true); };
        editor()->definePos(2);
        trigger("spr_duplicate");
        QCOMPARE(s->count(), 11);
        QCOMPARE(editor()->position(), 3);
        QCOMPARE(label("spr_link_lb"), QStringLiteral("Linked at 7, 20"));
        editor()->definePos(2);
        trigger("spr_delete");
        QCOMPARE(s->count(), 10);
        QVERIFY(!s->image(2).isNull());

        // A new picture for a sprite keeps its place and info; undo brings the old one back.
        m_app->ask.files << writeImages(1, QStringLiteral("replace")).first();
        editor()->definePos(0);
        const quint32 oldSize = s->spriteSize(0);
        const QSpriteInfo oldInfo = s->item(0)->info;
        trigger("spr_openimg");
        QCOMPARE(s->spriteSize(0), quint32(30) << 16 | quint32(20));
        QCOMPARE(s->item(0)->info.number, oldInfo.number);
        trigger("edit_undo");
        QCOMPARE(s->spriteSize(0), oldSize);

        // Renaming and deleting a group go through their dialogs.
        m_app->ask.fill = [](QDialog *d) { d->findChild<QSpinBox *>("newGroup")->setValue(9); };
        trigger("spr_rename_grp");
        QCOMPARE(s->findSprite(0, 7, 0), -1);
        QCOMPARE(s->findSprite(0, 9, 0), 0);
        m_app->ask.fill = [](QDialog *d) {
            d->findChild<QAbstractButton *>("interval")->setChecked(true);
            d->findChild<QSpinBox *>("start")->setValue(0);
            d->findChild<QSpinBox *>("end")->setValue(40);
        };
        trigger("spr_delete_grp");
        QCOMPARE(s->count(), 5);
    }

    void exportsReplacesAndSplits()
    {
        freshProject();
        m_app->ask.files << writeImages(3, QStringLiteral("exp")).join(QLatin1Char('\n'));
        m_app->ask.fill = [](QDialog *d) {
            d->findChild<QSpinBox *>("group")->setValue(0);
            d->findChild<QAbstractButton *>("AxisC")->setChecked(true);
        };
        trigger("spr_add");
        QSprites *s = store();
        QCOMPARE(s->count(), 3);

        // Aligned: every file one canvas, each axis on one point, and the axis written down.
        QDir out(m_files.filePath(QStringLiteral("aligned")));
        QVERIFY(out.mkpath(QStringLiteral(".")));
        m_app->ask.files << out.filePath(QStringLiteral("kfm.png"));
        m_app->ask.fill = [](QDialog *d) { d->findChild<QAbstractButton *>("interval")->setChecked(true); };
        trigger("spr_saveimg_aligned");
        QStringList written = out.entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name);
        QCOMPARE(written, (QStringList{"kfm_0-0.png", "kfm_0-1.png", "kfm_0-2.png"}));
        QPoint axisMax, sizeMax;
        s->bounds(axisMax, sizeMax);
        for (const QString &name : written)
            QCOMPARE(QImage(out.filePath(name)).size(), QSize(axisMax.x() + sizeMax.x(), axisMax.y() + sizeMax.y()));
        QCOMPARE(TestSupport::readAll(out.filePath(QStringLiteral("axis.txt"))),
                 QStringLiteral("X axis: %1\r\nY axis: %2\r\n").arg(axisMax.x()).arg(axisMax.y()).toUtf8());
        QVERIFY(m_app->ask.messages().last().startsWith(QLatin1String("Perfect axis: The axis is X:")));

        // A failed export names the file and keeps the store as it was.
        m_app->ask.files << m_files.filePath(QStringLiteral("missing/folder/one.png"));
        m_app->ask.fill = [](QDialog *d) { d->findChild<QAbstractButton *>("current")->setChecked(true); };
        trigger("spr_saveimg");
        QVERIFY(m_app->ask.messages().last().contains(QLatin1String("one.png")));

        // Replace ",5" changes the number and nothing else.
        editor()->definePos(1);
        const QSpriteInfo before = s->item(1)->info;
        emit registry().editReplace(QStringLiteral("0,1"), QStringLiteral(",5"), {}, false);
        QCOMPARE(s->item(1)->info.number, quint16(5));
        QCOMPARE(s->item(1)->info.group, before.group);
        QCOMPARE(s->item(1)->info.x, before.x);
        emit registry().editReplace(QStringLiteral("0,\\d"), QStringLiteral("3"),
                                    {{QQuickFindOption::RegularExpression, true}}, true);
        QCOMPARE(s->findSprite(0, 3, 5), 1);
        QCOMPARE(s->findSprite(0, 0, 0), -1);

        // Split channels: three sprites, each on a ramp of its own channel.
        const int palettes = s->paletteCount();
        editor()->definePos(0);
        const QImage rgb = s->image(0).convertToFormat(QImage::Format_RGB32);
        trigger("spr_split_channels");
        QCOMPARE(s->count(), 5);
        QCOMPARE(s->paletteCount(), palettes + 3);
        for (int c = 0; c < 3; ++c) {
            const QImage channel = s->image(c);
            QCOMPARE(channel.format(), QImage::Format_Indexed8);
            const QRGBPal *ramp = s->paletteColors(s->item(c)->info.palette);
            QCOMPARE(ramp->colors[200].rgba(), qRgb(c == 0 ? 200 : 0, c == 1 ? 200 : 0, c == 2 ? 200 : 0));
            const QRgb p = rgb.pixel(6, 12);
            QCOMPARE(channel.pixelIndex(6, 12), c == 0 ? qRed(p) : c == 1 ? qGreen(p) : qBlue(p));
        }
        trigger("edit_undo");
        QCOMPARE(s->count(), 3);
        QCOMPARE(s->paletteCount(), palettes);
    }

    // With BF_SCREENSHOT_DIR set (under xvfb-run), the pictures of the README.
    void screenshotsForTheDocs()
    {
        const QString dir = qEnvironmentVariable("BF_SCREENSHOT_DIR");
        if (dir.isEmpty())
            QSKIP("BF_SCREENSHOT_DIR not set");
        BF_REQUIRE_SAMPLE();
        QWidget *window = m_app->root->window();
        auto shoot = [&](const char *name) {
            QTest::qWait(200);
            QVERIFY(window->grab().save(dir + QLatin1Char('/') + QLatin1String(name)));
        };
        freshProject();
        shoot("sprites-empty.png");
        ui()->openProject(TestSupport::samplePath("chars/kfm/kfm.def"));
        registry().editorAction(1)->trigger();
        editor()->stage()->setOrigin(editor()->stageHost()->width() / 2, editor()->stageHost()->height() * 3 / 4);
        editor()->stage()->setZoomIndex(3);
        editor()->definePos(store()->findSprite(0, 0, 0));
        shoot("sprites-kfm-stand.png");
        editor()->stage()->setZoomIndex(2);
        editor()->stage()->setOrigin(editor()->stageHost()->width() / 3, editor()->stageHost()->height() / 4);
        editor()->definePos(store()->findSprite(0, 9000, 1));
        shoot("sprites-kfm-portrait.png");
        editor()->definePos(store()->findSprite(0, 0, 0));
        registry().setExtraEditor(1);
        shoot("palettes-kfm-1-1.png");
    }

    void largeStoreDecodesOnlyWhatItShows()
    {
        // A store the size of a big character: stepping through it decodes
        // one sprite a step, and opening the tab one.
        freshProject();
        QSprites *s = store();
        QImage image(8, 8, QImage::Format_Indexed8);
        image.setColorTable(QList<QRgb>(256, qRgb(9, 9, 9)));
        image.fill(1);
        for (int i = 0; i < 1642; ++i) {
            s->add();
            s->changeImage(i, image, 255, false, 0, 0);
        }
        registry().editorAction(0)->trigger();
        const quint64 decodes = QSpriteCache::decodeCount();
        registry().editorAction(1)->trigger();
        for (int i = 0; i < 20; ++i)
            QTest::keyClick(editor()->stageHost(), Qt::Key_Right);
        QCOMPARE(editor()->position(), 20);
        QVERIFY2(QSpriteCache::decodeCount() - decodes <= 21 + 2,
                 qPrintable(QString::number(QSpriteCache::decodeCount() - decodes)));
    }
};

QTEST_MAIN(TestSpritesEditor)
#include "tst_spriteseditor.moc"
