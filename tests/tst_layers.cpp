#include <QtTest>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLibraryInfo>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

// Holds every #include under src/, app/ and cli/ to the table of layers in
// cmake/layers.txt: a file may include its own layer, the layers its layer
// names and what those name in turn, and only the Qt modules that come with
// them.
class TestLayers : public QObject
{
    Q_OBJECT

    struct Layer
    {
        QStringList uses;
        QStringList qt;
    };
    QMap<QString, Layer> m_table;
    QMap<QString, QSet<QString>> m_layersAllowed;
    QMap<QString, QSet<QString>> m_qtAllowed;
    // Qt header name -> modules that have it ("QWidget" -> {"Widgets"}).
    QHash<QString, QStringList> m_qtHeaders;
    QString m_source;

    void close(const QString &layer, QSet<QString> &layers, QSet<QString> &qt) const
    {
        if (layers.contains(layer))
            return;
        layers.insert(layer);
        const Layer l = m_table.value(layer);
        for (const QString &m : l.qt)
            qt.insert(m);
        for (const QString &used : l.uses)
            close(used, layers, qt);
    }

    // The layer of a file of the tree, from its path below the source folder.
    QString layerOf(const QString &relative) const
    {
        const QStringList parts = relative.split(QLatin1Char('/'));
        if (parts.first() != QLatin1String("src"))
            return parts.first();
        if (parts.size() > 3 && parts.at(2) == QLatin1String("ui"))
            return parts.at(1) + QStringLiteral("/ui");
        return parts.size() > 2 ? parts.at(1) : QString();
    }

    // The layer a quoted include names, or an empty string for a header of
    // the includer's own folder (generated forms, moc files).
    QString layerNamed(const QString &header) const
    {
        const QStringList parts = header.split(QLatin1Char('/'));
        if (parts.size() < 2)
            return QString();
        if (parts.size() > 2 && parts.at(1) == QLatin1String("ui"))
            return parts.at(0) + QStringLiteral("/ui");
        return parts.at(0);
    }

    QStringList qtModulesOf(const QString &header) const
    {
        const qsizetype slash = header.indexOf(QLatin1Char('/'));
        if (header.startsWith(QLatin1String("Qt")) && slash > 2)
            return {header.mid(2, slash - 2)};
        if (slash < 0 && header.startsWith(QLatin1String("Qt")) && !m_qtHeaders.contains(header))
            return {header.mid(2)}; // a module header such as <QtWidgets>
        return m_qtHeaders.value(header);
    }

    QStringList violations(const QString &relative, const QString &text) const
    {
        static const QRegularExpression include(QStringLiteral("^\\s*#\\s*include\\s*([\"<])([^\">]+)[\">]"),
                                                QRegularExpression::MultilineOption);
        const QString layer = layerOf(relative);
        QStringList found;
        if (!m_table.contains(layer)) {
            found << QStringLiteral("%1: the folder is no layer of cmake/layers.txt").arg(relative);
            return found;
        }
        const QSet<QString> &layers = m_layersAllowed[layer];
        const QSet<QString> &qt = m_qtAllowed[layer];
        auto it = include.globalMatch(text);
        while (it.hasNext()) {
            const QRegularExpressionMatch m = it.next();
            const QString header = m.captured(2);
            const int line = int(text.left(m.capturedStart()).count(QLatin1Char('\n'))) + 1;
            if (m.captured(1) == QLatin1String("\"")) {
                const QString named = layerNamed(header);
                if (named.isEmpty() || layers.contains(named))
                    continue;
                found << QStringLiteral("%1(%2): %3 is layer %4, which %5 may not include")
                             .arg(relative).arg(line).arg(header, named.isEmpty() ? QStringLiteral("?") : named, layer);
            } else {
                const QStringList modules = qtModulesOf(header);
                if (modules.isEmpty())
                    continue;
                bool ok = false;
                for (const QString &module : modules)
                    ok = ok || qt.contains(module);
                if (!ok)
                    found << QStringLiteral("%1(%2): <%3> belongs to Qt %4, which %5 may not use")
                                 .arg(relative).arg(line).arg(header, modules.join(QLatin1Char('/')), layer);
            }
        }
        return found;
    }

private slots:
    void initTestCase()
    {
        m_source = QStringLiteral(BF_SOURCE_DIR);
        QFile file(m_source + QStringLiteral("/cmake/layers.txt"));
        QVERIFY2(file.open(QIODevice::ReadOnly | QIODevice::Text), qPrintable(file.fileName()));
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        for (QString line : lines) {
            line = line.section(QLatin1Char('#'), 0, 0);
            const QStringList columns = line.split(QLatin1Char(':'));
            if (columns.size() != 3)
                continue;
            Layer l;
            l.uses = columns.at(1).split(QLatin1Char(' '), Qt::SkipEmptyParts);
            l.qt = columns.at(2).split(QLatin1Char(' '), Qt::SkipEmptyParts);
            m_table.insert(columns.at(0).trimmed(), l);
        }
        QVERIFY(m_table.size() > 10);
        for (auto it = m_table.cbegin(); it != m_table.cend(); ++it) {
            for (const QString &used : it->uses)
                QVERIFY2(m_table.contains(used), qPrintable(it.key() + " names an unknown layer " + used));
            close(it.key(), m_layersAllowed[it.key()], m_qtAllowed[it.key()]);
        }

        const QDir headers(QLibraryInfo::path(QLibraryInfo::HeadersPath));
        for (const QString &module : headers.entryList({QStringLiteral("Qt*")}, QDir::Dirs)) {
            for (const QString &h : QDir(headers.filePath(module)).entryList(QDir::Files))
                m_qtHeaders[h].append(module.mid(2));
        }
        QVERIFY2(m_qtHeaders.contains(QStringLiteral("QWidget")), "the Qt headers were not found");
    }

    void directionHolds()
    {
        QStringList found;
        int files = 0;
        for (const char *top : {"src", "app", "cli"}) {
            QDirIterator it(m_source + QLatin1Char('/') + QLatin1String(top), {QStringLiteral("*.h"), QStringLiteral("*.cpp")},
                            QDir::Files, QDirIterator::Subdirectories);
            while (it.hasNext()) {
                const QString path = it.next();
                QFile f(path);
                QVERIFY(f.open(QIODevice::ReadOnly));
                found << violations(QDir(m_source).relativeFilePath(path), QString::fromUtf8(f.readAll()));
                ++files;
            }
        }
        QVERIFY(files > 100);
        QVERIFY2(found.isEmpty(), qPrintable(found.join(QLatin1Char('\n'))));
    }

    void catchesWrongDirections()
    {
        // The check itself: what a model, a store or the shell must not do.
        QCOMPARE(violations("src/sprites/qsprites.cpp", "#include <QWidget>\n").size(), 1);
        QCOMPARE(violations("src/base/qlog.cpp", "#include <QtWidgets/QDialog>\n").size(), 1);
        QCOMPARE(violations("src/sprites/qsprites.cpp", "#include \"project/qproject.h\"\n").size(), 1);
        QCOMPARE(violations("src/sounds/qsounds.cpp", "#include \"animations/qanimations.h\"\n").size(), 1);
        QCOMPARE(violations("src/shell/qinterface.cpp", "#include \"sprites/ui/qspriteseditor.h\"\n").size(), 1);
        QCOMPARE(violations("cli/main.cpp", "#include \"shell/qinterface.h\"\n").size(), 1);
        QCOMPARE(violations("src/nowhere/x.cpp", "").size(), 1);
        // ... and what they may.
        QVERIFY(violations("src/sprites/ui/qspriteseditor.cpp",
                           "#include \"shell/qinterface.h\"\n#include \"base/qlog.h\"\n#include <QWidget>\n"
                           "#include \"ui_form.h\"\n#include <vector>\n")
                    .isEmpty());
        QVERIFY(violations("app/main.cpp", "#include \"sprites/ui/spriteseditors.h\"\n").isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestLayers)
#include "tst_layers.moc"
