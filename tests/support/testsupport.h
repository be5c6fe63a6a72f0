#pragma once

#include <QString>

namespace TestSupport {

// Folder of the engine's sample content shared by the tests, or an empty string
// when it is absent. Tests that need it skip with a visible message through
// BF_REQUIRE_SAMPLE().
QString sampleDir();

// Absolute path of a file under the sample folder.
QString samplePath(const QString &relative);

// Folder of the fixtures kept with the tests (tests/fixtures).
QString fixturesDir();

// Folder of the engine's documentation beside the sample content, or an
// empty string when it is absent.
QString engineDocsDir();

} // namespace TestSupport

#define BF_REQUIRE_SAMPLE()                                                                        \
    do {                                                                                           \
        if (TestSupport::sampleDir().isEmpty())                                                    \
            QSKIP("engine sample content not found (../shared/testdata/engine-sample): skipped"); \
    } while (0)
