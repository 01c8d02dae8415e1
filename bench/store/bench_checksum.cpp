// The checksum of a model file: throughput, and peak memory that must not
// grow with the file. A 1 GiB sparse file (holes read as zeros, with a few
// written blocks so that the digest is not that of zeros alone) is hashed by
// computeCheckSum and by the system's md5sum; both digests must agree once
// md5sum's hexadecimal is written in the repository's decimal form.

#include "repository/RepositoryReport.h"
#include "repository/xmlrepository/RepositoryFiles.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <string>

using namespace LibraryBrowser;

namespace {

const qint64 FileSize = qint64(1) << 30;

long peakRssKiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

bool makeSparseFile(const std::string& path)
{
    const int fd = ::open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0644);
    if (fd < 0)
        return false;
    bool ok = ::ftruncate(fd, FileSize) == 0;
    const std::string marker = "tandril model file block ";
    for (qint64 offset : {qint64(0), FileSize / 3, FileSize / 2 + 12345, FileSize - qint64(marker.size())})
        ok = ok && ::pwrite(fd, marker.data(), marker.size(), offset) == ssize_t(marker.size());
    return ::close(fd) == 0 && ok;
}

// md5sum's digest in the repository's form: each byte in decimal, unpadded.
std::string md5sumDecimal(const std::string& path, double& seconds)
{
    QElapsedTimer timer;
    timer.start();
    QProcess process;
    process.start("md5sum", {QString::fromStdString(path)});
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        return std::string();
    seconds = timer.nsecsElapsed() / 1e9;
    const QByteArray digest = QByteArray::fromHex(process.readAllStandardOutput().left(32));
    std::string text;
    for (const char byte : digest)
        text += std::to_string(static_cast<unsigned char>(byte));
    return text;
}

void BM_CheckSumOfSparseGigabyte(benchmark::State& state)
{
    QTemporaryDir dir;
    const std::string path = dir.path().toStdString() + "/sparse model.bin";
    if (!dir.isValid() || !makeSparseFile(path)) {
        state.SkipWithError("cannot make the sparse file");
        return;
    }
    double md5sumSeconds = 0;
    const std::string expected = md5sumDecimal(path, md5sumSeconds);
    if (expected.empty()) {
        state.SkipWithError("md5sum failed");
        return;
    }

    const long baseline = peakRssKiB();
    std::string digest;
    for (auto _ : state) {
        RepositoryReport report;
        digest = computeCheckSum(report, path);
        benchmark::DoNotOptimize(digest);
    }
    if (digest != expected) {
        state.SkipWithError(("digest " + digest + " differs from md5sum's " + expected).c_str());
        return;
    }
    state.SetBytesProcessed(state.iterations() * FileSize);
    state.counters["peak_rss_KiB"] = double(peakRssKiB());
    state.counters["peak_rss_growth_KiB"] = double(peakRssKiB() - baseline);
    state.counters["md5sum_s"] = md5sumSeconds;
}

} // namespace

BENCHMARK(BM_CheckSumOfSparseGigabyte)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

BENCHMARK_MAIN();
