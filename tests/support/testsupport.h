#pragma once

#include <QByteArray>
#include <QImage>
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
// Largest difference of one channel between two images of one size; -1 when
// the sizes differ or either is null.
int imageDifference(const QImage &a, const QImage &b);

// Compares `image` with the stored picture tests/fixtures/<name>, channel by
// channel within `tolerance`. With BF_UPDATE_FIXTURES set in the environment
// the picture is written instead. On a mismatch, `why` says how, and the
// image drawn is left beside the test for a look.
bool matchesFixture(const QImage &image, const QString &name, int tolerance = 0, QString *why = nullptr);
// Folder of the engine's documentation beside the sample content, or an
// empty string when it is absent.
QString engineDocsDir();

} // namespace TestSupport

#define BF_REQUIRE_SAMPLE()                                                                         \
    do {                                                                                            \
        if (TestSupport::sampleDir().isEmpty()) {                                                   \
            if (TestSupport::sampleRequired())                                                      \
                QFAIL("engine sample content not found (../shared/testdata/engine-sample)");        \
            QSKIP("engine sample content not found (../shared/testdata/engine-sample): skipped");  \
        }                                                                                           \
    } while (0)
