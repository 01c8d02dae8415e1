// Runs a fuzz target's entry function over the files given, or over every
// file of the directories given: the checked-in corpus as a plain test,
// where no fuzzing compiler is at hand.
#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {
bool runFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s: %s\n", qPrintable(path), qPrintable(file.errorString()));
        return false;
    }
    const QByteArray bytes = file.readAll();
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(bytes.size()));
    return true;
}
} // namespace

int main(int argc, char** argv)
{
    int files = 0;
    bool ok = true;
    for (int i = 1; i < argc; ++i) {
        const QString given = QString::fromLocal8Bit(argv[i]);
        if (!QFileInfo(given).isDir()) {
            ok = runFile(given) && ok;
            ++files;
            continue;
        }
        QDirIterator it(given, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            ok = runFile(it.next()) && ok;
            ++files;
        }
    }
    std::printf("%d inputs run\n", files);
    if (files == 0) {
        std::fprintf(stderr, "usage: %s FILE-OR-DIRECTORY...; nothing was run\n", argv[0]);
        return 2;
    }
    return ok ? 0 : 1;
}
