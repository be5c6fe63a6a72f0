#pragma once

#include <QByteArray>
#include <QString>

namespace TestSupport {

// Folder of the engine's sample content shared by the tests, or an empty string
// when it is absent. Tests that need it skip with a visible message through
// BF_REQUIRE_SAMPLE(), or fail in continuous integration (CI=true), where a
// missing sample would hide every test that reads real content.
QString sampleDir();
bool sampleRequired();

// Absolute path of a file under the sample folder.
QString samplePath(const QString &relative);

// Folder of the fixtures kept with the tests (tests/fixtures).
QString fixturesDir();

// The bytes of a file; "<unreadable>" when it can't be read, so that a
// comparison with real content fails.
QByteArray readAll(const QString &path);
// Writes a file, making its folder first; false when that fails.
bool writeAll(const QString &path, const QByteArray &bytes);

} // namespace TestSupport

#define BF_REQUIRE_SAMPLE()                                                                         \
    do {                                                                                            \
        if (TestSupport::sampleDir().isEmpty()) {                                                   \
            if (TestSupport::sampleRequired())                                                      \
                QFAIL("engine sample content not found (../shared/testdata/engine-sample)");        \
            QSKIP("engine sample content not found (../shared/testdata/engine-sample): skipped");  \
        }                                                                                           \
    } while (0)
