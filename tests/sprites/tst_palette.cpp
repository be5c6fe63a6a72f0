#include <QSignalSpy>
#include <QtTest>

#include "palettesupport.h"

#include "sprites/qpaletteitem.h"
#include "sprites/qpalettelist.h"
#include "sprites/qremapmodel.h"
#include "sprites/qrgbpalette.h"

using TestSupport::rgb;

// Every entry a different colour, so that moves and duplicates are visible.
static QRGBPal distinct()
{
    QRGBPal p;
    for (int i = 0; i < 256; ++i)
        p[i] = rgb(i, 255 - i, (i * 7) & 0xFF);
    return p;
}

static QRGBPal filled(QRGBColor c)
{
    QRGBPal p;
    for (auto &e : p.colors)
        e = c;
    return p;
}


class TestPalette : public QObject
{
    Q_OBJECT
private slots:
    void colorCountRule()
    {
        QRGBPal p; // all opaque black: no significant colour
        QCOMPARE(QPaletteItem::colorCountOf(p), quint16(32));

        // Ten colours, the rest equal to entry 255.
        for (int i = 0; i < 10; ++i)
            p[i] = rgb(10 * i + 1, 2, 3);
        QCOMPARE(QPaletteItem::significantColors(p), 9);
        QCOMPARE(QPaletteItem::colorCountOf(p), quint16(32));

        // The boundary: index 31 still counts as small, 32 does not.
        p[31] = rgb(1, 1, 1);
        QCOMPARE(QPaletteItem::colorCountOf(p), quint16(32));
        p[32] = rgb(1, 1, 1);
        QCOMPARE(QPaletteItem::colorCountOf(p), quint16(256));

        // Entry 254 differing from 255, even only in alpha, makes a full palette.
        QRGBPal q;
        q[254] = rgb(0, 0, 0, 254);
        QCOMPARE(QPaletteItem::significantColors(q), 254);
        QCOMPARE(QPaletteItem::colorCountOf(q), quint16(256));

        QPaletteItem item;
        item.setColors(q);
        QCOMPARE(item.colorCount, quint16(256));
        item.setColors(QRGBPal());
        QCOMPARE(item.colorCount, quint16(32));

        QPaletteList list;
        list.add(q, false, 0, 0);
        QCOMPARE(list.info(0).colorCount, quint16(256));
        list.setColors(0, QRGBPal());
        QCOMPARE(list.info(0).colorCount, quint16(32));
    }

    void effects()
    {
        QRGBPal p;
        QRGBPalette worker(&p);
        p[0] = rgb(255, 255, 255, 9);
        p[1] = rgb(30, 60, 90);
        p[2] = rgb(200, 200, 200);
        p[3] = rgb(100, 100, 100);
        p[4] = rgb(127, 127, 128); // m = 127
        p[5] = rgb(240, 10, 20);
        quint8 sel[256] = {};

        QRGBPal work = p;
        worker.setBuffer(&work);
        worker.effect(QRGBPalette::Fire, nullptr);
        QCOMPARE(work[0], rgb(255, 127, 0, 9)); // alpha stays
        QCOMPARE(work[1], rgb(160, 30, 0));

        work = p;
        worker.effect(QRGBPalette::Sapphire, nullptr);
        QCOMPARE(work[1], rgb(75, 0, 90)); // m 60: 15 + 60, 30 + 60

        work = p;
        worker.effect(QRGBPalette::Stone, nullptr);
        QCOMPARE(work[2], rgb(150, 150, 150));
        QCOMPARE(work[3], rgb(150, 150, 150));
        QCOMPARE(work[4], rgb(177, 177, 177));

        work = p;
        worker.effect(QRGBPalette::Lighter, nullptr);
        QCOMPARE(work[5], rgb(255, 42, 52));
        work = p;
        worker.effect(QRGBPalette::Darker, nullptr);
        QCOMPARE(work[5], rgb(208, 0, 0));
        work = p;
        worker.effect(QRGBPalette::MuchLighter, nullptr);
        QCOMPARE(work[3], rgb(228, 228, 228));
        work = p;
        worker.effect(QRGBPalette::MuchDarker, nullptr);
        QCOMPARE(work[5], rgb(112, 0, 0));
        work = p;
        worker.effect(QRGBPalette::Monochrome, nullptr);
        QCOMPARE(work[1], rgb(60, 60, 60));

        const struct { int kind; QRGBColor out; } swaps[] = {
            {QRGBPalette::BlueToRed, rgb(90, 60, 30)},  {QRGBPalette::RedToBlue, rgb(90, 60, 30)},
            {QRGBPalette::BlueToGreen, rgb(30, 90, 60)}, {QRGBPalette::GreenToBlue, rgb(30, 90, 60)},
            {QRGBPalette::GreenToRed, rgb(60, 30, 90)},  {QRGBPalette::RedToGreen, rgb(60, 30, 90)},
        };
        for (const auto &s : swaps) {
            work = p;
            worker.effect(s.kind, nullptr);
            QCOMPARE(work[1], s.out);
        }

        // An empty selection changes nothing; a selection limits the change.
        work = p;
        worker.effect(QRGBPalette::Fire, sel);
        QVERIFY(work == p);
        sel[1] = 1;
        worker.effect(QRGBPalette::Monochrome, sel);
        QCOMPARE(work[1], rgb(60, 60, 60));
        QCOMPARE(work[5], p[5]);

        // Unknown kinds are harmless.
        work = p;
        worker.effect(99, nullptr);
        QVERIFY(work == p);
    }

    void gradientsAndReverse()
    {
        QRGBPal p;
        QRGBPalette worker(&p);
        quint8 sel[256] = {};
        sel[5] = sel[9] = 1;
        worker.gradient(sel, rgb(0, 0, 0, 3), rgb(200, 100, 50, 7));
        QCOMPARE(p[5], rgb(0, 0, 0));
        QCOMPARE(p[9], rgb(200, 100, 50));
        QCOMPARE(p[6], rgb(0, 0, 0)); // untouched default

        // Four entries, falling: 200, 200 - 200/3, 200 - 400/3, 0 (truncation toward zero).
        worker.gradientRange(10, rgb(200, 0, 0), 14, rgb(0, 0, 0));
        QCOMPARE(p[10].r, quint8(200));
        QCOMPARE(p[11].r, quint8(134));
        QCOMPARE(p[12].r, quint8(67));
        QCOMPARE(p[13].r, quint8(0));
        QCOMPARE(p[14], rgb(0, 0, 0));

        // Null selection: all 256, the last on the end colour.
        worker.gradient(nullptr, rgb(0, 0, 0), rgb(255, 255, 255));
        QCOMPARE(p[0], rgb(0, 0, 0));
        QCOMPARE(p[1], rgb(1, 1, 1));
        QCOMPARE(p[255], rgb(255, 255, 255));

        // Out-of-range bounds are clamped, not overrun.
        worker.gradientRange(-5, rgb(1, 1, 1), 9999, rgb(1, 1, 1));
        QCOMPARE(p[255], rgb(1, 1, 1));

        QRGBPal r = distinct();
        const QRGBPal orig = r;
        worker.setBuffer(&r);
        quint8 three[256] = {};
        three[1] = three[3] = three[4] = 1;
        worker.reverse(three);
        QCOMPARE(r[1], orig[4]);
        QCOMPARE(r[4], orig[1]);
        QCOMPARE(r[3], orig[3]);
        worker.reverse(nullptr);
        QCOMPARE(r[0], orig[255]);
        QCOMPARE(r[255], orig[0]);
    }

    void sortDedupeAndAddDifferent()
    {
        // Greys in a scrambled order sort into a ramp; entry 0 stays.
        QRGBPal p;
        p[0] = rgb(0, 0, 0);
        for (int i = 1; i < 256; ++i) {
            const int v = (i * 37) % 255 + 1; // 37 is prime to 255: a permutation of 1..255
            p[i] = rgb(v, v, v, v);
        }
        QRGBPalette worker(&p);
        worker.sort();
        for (int i = 0; i < 256; ++i)
            QCOMPARE(p[i], rgb(i, i, i, i == 0 ? 255 : i)); // alpha travels with its colour

        // Duplicates: the lower copy gives way to the replacement, forced opaque.
        QRGBPal d = distinct();
        const QRGBColor a = rgb(1, 1, 1), b = rgb(2, 2, 2);
        d[0] = a;
        d[1] = b;
        d[2] = a;
        d[3] = a;
        worker.setBuffer(&d);
        worker.deleteDuplicates(rgb(9, 8, 7, 0));
        QCOMPARE(d[0], rgb(9, 8, 7));
        QCOMPARE(d[1], b);
        QCOMPARE(d[2], rgb(9, 8, 7));
        QCOMPARE(d[3], a);
        QCOMPARE(d[4], distinct()[4]);

        // Colours the other palette has and this one lacks go in from the top.
        QRGBPal mine; // all opaque black
        QRGBPal other;
        other[0] = rgb(255, 0, 0);
        other[1] = rgb(0, 255, 0);
        other[2] = rgb(255, 0, 0);
        other[3] = rgb(0, 0, 0, 0); // differs from black in alpha only
        worker.setBuffer(&mine);
        worker.addDifferent(other);
        QCOMPARE(mine[255], rgb(255, 0, 0));
        QCOMPARE(mine[254], rgb(0, 255, 0));
        QCOMPARE(mine[253], rgb(0, 0, 0, 0));
        QCOMPARE(mine[252], rgb(0, 0, 0));

        // A completely different palette fills everything but entry 0.
        QRGBPal full = filled(rgb(5, 5, 5));
        worker.setBuffer(&full);
        worker.addDifferent(distinct());
        QCOMPARE(full[0], rgb(5, 5, 5));
        QCOMPARE(full[255], distinct()[0]);
        QCOMPARE(full[1], distinct()[254]);
    }

    void adjustmentsAndSignals()
    {
        QRGBPal p;
        p[0] = rgb(250, 5, 100, 17);
        p[1] = rgb(255, 0, 0, 40);
        p[2] = rgb(128, 128, 128);
        QRGBPalette worker(&p);
        quint8 sel[256] = {};
        sel[0] = 1;
        worker.adjustRgb(sel, 10, -10, 0);
        QCOMPARE(p[0], rgb(255, 0, 100, 17));
        QCOMPARE(p[1], rgb(255, 0, 0, 40));

        QRGBPal h = p;
        worker.setBuffer(&h);
        worker.adjustHsl(nullptr, 120, 0, 0);
        QCOMPARE(h[1], rgb(0, 255, 0, 40));
        QCOMPARE(h[2], rgb(128, 128, 128)); // grey has no hue to turn
        h = p;
        worker.adjustHsl(nullptr, -120, 0, 0); // wraps round to 240
        QCOMPARE(h[1], rgb(0, 0, 255, 40));
        h = p;
        worker.adjustHsl(nullptr, 0, 0, -1000); // clamped, not invalid
        QCOMPARE(h[1], rgb(0, 0, 0, 40));
        h = p;
        worker.adjustHsl(nullptr, 0, 0, 1000);
        QCOMPARE(h[1], rgb(255, 255, 255, 40));

        // Colour tables: ARGB words, entry by entry.
        QRGBPal t;
        t[3] = rgb(1, 2, 3, 4);
        worker.setBuffer(&t);
        const QList<QRgb> table = worker.toColorTable();
        QCOMPARE(table.size(), 256);
        QCOMPARE(table[3], QRgb(0x04010203));
        QRGBPal back = QRGBPal::zeroed();
        worker.setBuffer(&back);
        worker.fromColorTable(table);
        QVERIFY(back == t);
        worker.fromColorTable({0xFF102030}); // a short table leaves the rest
        QCOMPARE(back[0], rgb(0x10, 0x20, 0x30));
        QCOMPARE(back[3], rgb(1, 2, 3, 4));

        // Mutators bracket their change; the quiet setter does not.
        QSignalSpy changing(&worker, &QRGBPalette::changing);
        QSignalSpy changed(&worker, &QRGBPalette::changed);
        QStringList order;
        connect(&worker, &QRGBPalette::changing, this, [&] { order << "changing"; });
        connect(&worker, &QRGBPalette::changed, this, [&] { order << "changed"; });
        worker.fill(nullptr, rgb(1, 1, 1));
        worker.setColor(7, rgb(2, 2, 2));
        worker.setColor(256, rgb(2, 2, 2)); // ignored
        worker.setColorsQuiet(QRGBPal());
        QCOMPARE(order, QStringList({"changing", "changed", "changing", "changed"}));

        // No buffer: nothing happens.
        QRGBPalette idle;
        QSignalSpy idleSpy(&idle, &QRGBPalette::changing);
        idle.sort();
        idle.effect(QRGBPalette::Fire, nullptr);
        QVERIFY(!idle.load(QStringLiteral("/nonexistent.act")));
        QVERIFY(!idle.saveAct(QStringLiteral("/nonexistent/x.act")));
        QCOMPARE(idleSpy.count(), 0);
    }

    void listAddRemoveMerge()
    {
        const QRGBPal a = distinct();
        QRGBPal b = a;
        b[7] = rgb(1, 2, 3);
        QRGBPal c = a;
        c[8] = rgb(3, 2, 1);

        QPaletteList list;
        bool added = false;
        QCOMPARE(list.add(a, true, 1, -1, &added), 0);
        QVERIFY(added);
        QCOMPARE(list.info(0).number, qint16(0)); // empty group starts at 0
        QCOMPARE(list.add(b, true, 1, 5), 1);
        QCOMPARE(list.add(c, true, 1, -1), 2);
        QCOMPARE(list.info(2).number, qint16(6));
        QCOMPARE(list.add(a, true, 4, 4, &added), 0); // dedupe returns the existing one
        QVERIFY(!added);
        QCOMPARE(list.count(), 3);
        QCOMPARE(list.add(a, false, -2, -1), 3);
        QCOMPARE(list.info(3).number, qint16(0));
        QVERIFY(list.setInfo(3, QPaletteInfo{true, -2, -7, 0, 32}));
        QCOMPARE(list.add(a, false, -2, -1), 4);
        QCOMPARE(list.info(4).number, qint16(-6)); // signed comparison
        QCOMPARE(list.find(0, 1, 6), 2);
        QCOMPARE(list.find(3, 1, 6), -1);
        QCOMPARE(list.info(99), (QPaletteInfo{false, 0, 0, 0, 0}));
        // The block as words: group in the upper half of the first word (little-endian).
        quint32 w1 = 0, w2 = 0;
        quint16 h = 0;
        const QPaletteInfo block{true, -2, 7, 3, 32};
        block.toWords(&w1, &w2, &h);
        if (QSysInfo::ByteOrder == QSysInfo::LittleEndian) {
            QCOMPARE(w1, 0xFFFE0001u);
            QCOMPARE(w2, 0x00030007u);
        }
        QCOMPARE(h, quint16(32));
        QCOMPARE(QPaletteInfo::fromWords(w1, w2, h), block);
        QCOMPARE(QPaletteInfo::fromWords(0xFF, 0, 0).hasColors, true);

        // Insert shifts sprite palettes at and above the position.
        QList<int> sprites{0, 1, 2, 7};
        QCOMPARE(list.insert(1, c, false, 3, 3, &sprites), 1);
        QCOMPARE(sprites, (QList<int>{0, 2, 3, 8}));
        QCOMPARE(list.insert(1, c, true, 3, 3, &sprites), 1); // equal to itself: no insert
        QCOMPARE(list.count(), 6);

        // Removing palette 0: its sprites show what was palette 1.
        QVERIFY(list.remove(0, &sprites));
        QCOMPARE(sprites, (QList<int>{0, 1, 2, 7}));
        QVERIFY(!list.remove(42, &sprites));

        // Links: heir takes the colours; the other link gets the heir's old position.
        QPaletteList links;
        links.add(a, false, 0, 0);
        auto l1 = std::make_unique<QPaletteItem>();
        l1->hasColors = false;
        l1->link = 0;
        auto l2 = std::make_unique<QPaletteItem>(*l1);
        links.append(std::move(l1));
        links.append(std::move(l2));
        QCOMPARE(links.findLink(0, 0), 1);
        QVERIFY(*links.colors(2) == a);
        links.remove(0, nullptr);
        QVERIFY(links.info(0).hasColors);
        QVERIFY(*links.colors(0) == a);
        QCOMPARE(links.info(1).link, quint16(1)); // points at itself now: no colours, no hang
        QVERIFY(links.colors(1) == nullptr);

        // A circle of links and a link out of the list yield no colours.
        QPaletteList circle;
        circle.add(a, false, 0, 0);
        circle.add(b, false, 0, 1);
        circle.setInfo(0, QPaletteInfo{false, 0, 0, 1, 256});
        circle.setInfo(1, QPaletteInfo{false, 0, 1, 0, 256});
        QVERIFY(circle.colors(0) == nullptr);
        circle.setInfo(1, QPaletteInfo{false, 0, 1, 40, 256});
        QVERIFY(circle.colors(1) == nullptr);
        QRGBPal out = a;
        circle.colorsOrZero(1, &out);
        QVERIFY(out == QRGBPal::zeroed());

        // Merge: the link and the second copy of a go, sprites follow.
        QPaletteList dup;
        dup.add(a, false, 0, 0);
        dup.add(b, false, 0, 1);
        dup.add(a, false, 0, 2);
        auto l3 = std::make_unique<QPaletteItem>();
        l3->hasColors = false;
        l3->link = 2;
        dup.append(std::move(l3));
        QList<int> users{2, 3, 1};
        QVERIFY(dup.mergeDuplicates(&users));
        QCOMPARE(dup.count(), 2);
        QCOMPARE(users, (QList<int>{0, 0, 1}));
        QVERIFY(!dup.mergeDuplicates(&users));

        // Unused palettes go, except the character's group 1.
        QPaletteList unused;
        unused.add(a, false, 0, 0);
        unused.add(b, false, 1, 3);
        unused.add(c, false, 2, 0);
        unused.add(b, false, 5, 0);
        QList<int> used{3, 3};
        QVERIFY(unused.removeUnused(&used));
        QCOMPARE(unused.count(), 2);
        QCOMPARE(unused.info(0).group, qint16(1));
        QCOMPARE(unused.info(1).group, qint16(5));
        QCOMPARE(used, (QList<int>{1, 1}));
    }

    void listMoveOrganizeRemap()
    {
        const QRGBPal a = distinct();
        QRGBPal b = a;
        b[7] = rgb(1, 2, 3);
        auto makeLinked = [&] {
            QPaletteList l;
            l.add(a, false, 0, 0);
            l.add(b, false, 0, 1);
            auto link = std::make_unique<QPaletteItem>();
            link->hasColors = false;
            link->link = 0;
            link->group = 0;
            link->number = 2;
            l.append(std::move(link));
            return l;
        };
        // Moving the owner behind its link hands the colours to the link.
        QPaletteList fwd = makeLinked();
        QList<int> sprites{0, 1, 2};
        QVERIFY(fwd.move(0, 2, &sprites));
        QCOMPARE(fwd.info(0).number, qint16(1));
        QVERIFY(fwd.info(1).hasColors);
        QCOMPARE(fwd.info(1).number, qint16(2));
        QVERIFY(!fwd.info(2).hasColors);
        QCOMPARE(fwd.info(2).link, quint16(1));
        QVERIFY(*fwd.colors(2) == a);
        QCOMPARE(sprites, (QList<int>{2, 0, 1}));

        // Moving the link in front of its owner makes it the owner.
        QPaletteList back = makeLinked();
        sprites = {0, 1, 2};
        QVERIFY(back.move(2, 0, &sprites));
        QVERIFY(back.info(0).hasColors);
        QCOMPARE(back.info(0).number, qint16(2));
        QVERIFY(!back.info(1).hasColors);
        QCOMPARE(back.info(1).link, quint16(0));
        QVERIFY(*back.colors(1) == a);
        QCOMPARE(sprites, (QList<int>{1, 2, 0}));
        QVERIFY(!back.move(1, 1, &sprites));
        QVERIFY(!back.move(1, 3, &sprites));

        QPaletteList org;
        org.add(a, false, 2, 0);
        org.add(b, false, 1, 5);
        org.add(a, false, 1, 0);
        org.setInfo(2, QPaletteInfo{true, 1, -3, 0, 256});
        sprites = {0, 1, 2};
        QVERIFY(org.autoOrganize(&sprites));
        QCOMPARE(org.info(0).number, qint16(-3));
        QCOMPARE(org.info(1).number, qint16(5));
        QCOMPARE(org.info(2).group, qint16(2));
        QCOMPARE(sprites, (QList<int>{2, 1, 0}));
        QCOMPARE(org.previousGroup(2), 0);
        QCOMPARE(org.nextGroup(0), 2);
        QCOMPARE(org.nextGroup(2), 0);
        QCOMPARE(org.previousGroup(99), 0);

        // Remap: first matching row, then the first palette with the destination.
        QRemapModel remap;
        QCOMPARE(org.remappedOrSelf(1, remap), 1); // empty table: unchanged
        QSignalSpy touched(&remap, &QRemapModel::dataChanged);
        remap.addRow();
        QCOMPARE(remap.rows().at(0), (QRemapModel::Row{1, 1, 1, 1}));
        remap.setRow(0, 1, 5, 2, 0);
        QCOMPARE(org.remapped(1, remap), 2);
        QCOMPARE(org.remapped(0, remap), -1);
        remap.setRow(0, 1, 5, 9, 9); // destination missing: no answer
        QCOMPARE(org.remappedOrSelf(1, remap), 1);
        remap.setRow(0, 0, 0, 2, 0); // out-of-range index reads as 0, 0
        QCOMPARE(org.remapped(77, remap), 2);

        // Editing past the end makes one new row; every change announces itself
        // over the invalid index.
        QVERIFY(remap.setData(remap.index(0, 0).sibling(0, 0), 4));
        QVERIFY(!remap.setData(remap.index(0, 0), QStringLiteral("x")));
        remap.setCell(10, 3, 12);
        QCOMPARE(remap.rowCount(), 2);
        QCOMPARE(remap.rows().at(1), (QRemapModel::Row{0, 0, -1, 12}));
        QCOMPARE(remap.data(remap.index(1, 2)).toInt(), -1);
        QCOMPARE(remap.headerData(0, Qt::Horizontal).toString(), QStringLiteral("Src Grp"));
        QCOMPARE(remap.headerData(3, Qt::Horizontal).toString(), QStringLiteral("Dst Num"));
        QVERIFY(remap.flags(remap.index(0, 0)) & Qt::ItemIsEditable);
        bool sawInvalid = false;
        for (const auto &args : touched)
            sawInvalid |= !args.at(0).toModelIndex().isValid();
        QVERIFY(sawInvalid);
        remap.removeRow(5);
        remap.removeRow(0);
        QCOMPARE(remap.rowCount(), 1);
        remap.clear();
        QCOMPARE(remap.rowCount(), 0);
    }
};

QTEST_GUILESS_MAIN(TestPalette)
#include "tst_palette.moc"
