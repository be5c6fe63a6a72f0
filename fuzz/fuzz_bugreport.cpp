// Feeds arbitrary bytes to the bug-report package reader.
#include "base/qbugreport.h"

#include <QBuffer>
#include <QtGlobal>
#include <QDataStream>

namespace {

// Reads an animation section the way a small store would: a name and a count
// of records, each a string and two ints.
class Section : public QBugReportSection
{
public:
    void writeBugReport(QDataStream &) const override {}
    bool readBugReport(QDataStream &in) override
    {
        QString name;
        qint32 count = 0;
        in >> name >> count;
        for (qint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
            QString text;
            qint32 a = 0, b = 0;
            in >> text >> a >> b;
        }
        return in.status() == QDataStream::Ok;
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // Damaged input makes the library warn on every run; printing it only slows the search.
    static const bool quiet = (qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {}), true);
    (void)quiet;
    QBuffer buffer;
    buffer.setData(reinterpret_cast<const char *>(data), qsizetype(size));
    if (!buffer.open(QIODevice::ReadOnly))
        return 0;
    Section section;
    QBugReport report;
    QString error;
    report.read(buffer, &section, &error);
    return 0;
}
