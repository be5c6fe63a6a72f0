// Replays every file of a corpus folder (or single files) through a fuzz target's
// entry point; used by CTest so that each kept input is exercised on every run.
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char **argv)
{
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        const QString arg = QString::fromLocal8Bit(argv[i]);
        QStringList files;
        if (QFileInfo(arg).isDir()) {
            QDirIterator it(arg, QDir::Files, QDirIterator::Subdirectories);
            while (it.hasNext())
                files << it.next();
        } else {
            files << arg;
        }
        files.sort();
        for (const QString &name : files) {
            QFile f(name);
            if (!f.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(name));
                return 2;
            }
            const QByteArray bytes = f.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.constData()), size_t(bytes.size()));
            ++count;
        }
    }
    std::printf("replayed %d inputs\n", count);
    return 0;
}
