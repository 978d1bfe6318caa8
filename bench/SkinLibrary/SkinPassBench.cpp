#include "Platform/ParallelMap.h"
#include "SkinLibrary/Ingest/FolderScanner.h"
#include "SkinLibrary/Ingest/SkinIndexer.h"
#include "tests/Support/SkinCollection.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <openssl/evp.h>
#include <sys/resource.h>
#include <zip.h>

#include <cstdio>
#include <optional>

using namespace vantor;
using namespace std::chrono;

// bench-skin-pass <folder> <skins> <threads>: fills the folder with made skins if it is empty and says how a
// pass over it compares with a program of as many threads that only hashes, inflates and decodes the same
// files; how one over the unchanged folder compares with `find -printf`; and how much memory a pass takes.
namespace {

struct Cost {
    double wall = 0;
    double processor = 0;
};

double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

template <class Work>
Cost costOf(const Work &work) {
    const auto start = steady_clock::now();
    const double before = processorSeconds();
    work();
    return {duration<double>(steady_clock::now() - start).count(), processorSeconds() - before};
}

void keepLeast(Cost &least, const Cost &cost) {
    if (least.wall == 0 || cost.wall < least.wall)
        least = cost;
}

void digest(const QByteArray &bytes, const EVP_MD *kind) {
    unsigned char result[EVP_MAX_MD_SIZE];
    EVP_Digest(bytes.constData(), static_cast<std::size_t>(bytes.size()), result, nullptr, kind, nullptr);
}

void inflateAndDecode(zip_t *archive, zip_uint64_t entry) {
    zip_stat_t stat;
    if (zip_stat_index(archive, entry, 0, &stat) != 0)
        return;
    QByteArray bytes(static_cast<qsizetype>(stat.size), Qt::Uninitialized);
    zip_file_t *file = zip_fopen_index(archive, entry, 0);
    if (file && zip_fread(file, bytes.data(), stat.size) >= 0 && QByteArrayView(stat.name).endsWith("BMP"))
        (void)QImage::fromData(bytes);
    if (file)
        zip_fclose(file);
}

/// What the reference does with one file.
int readOnce(const FileStamp &stamp) {
    QFile file(stamp.path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray bytes = file.readAll();
    digest(bytes, EVP_sha256());
    digest(bytes, EVP_md5());
    zip_error_t error;
    zip_source_t *source =
        zip_source_buffer_create(bytes.constData(), static_cast<zip_uint64_t>(bytes.size()), 0, &error);
    zip_t *archive = zip_open_from_source(source, ZIP_RDONLY, &error);
    if (!archive) {
        zip_source_free(source);
        return 0;
    }
    for (zip_int64_t entry = 0; entry < zip_get_num_entries(archive, 0); ++entry)
        inflateAndDecode(archive, static_cast<zip_uint64_t>(entry));
    zip_discard(archive);
    return 1;
}

/// A line of /proc/self/status, in MiB.
double memory(const char *field) {
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray status = file.readAll();
    return status.mid(status.indexOf(field)).split(':').value(1).trimmed().split(' ').value(0).toDouble() /
           1024;
}

class Bench {
  public:
    Bench(const QString &folder, int threads) : m_folder(QUrl::fromLocalFile(folder)), m_threads(threads) {}

    void measureFirstPass(int rounds) {
        const double before = memory("VmRSS");
        Cost pass;
        Cost reference;
        for (int round = 0; round < rounds; ++round) {
            m_store.reset();
            m_store =
                SkinIndexStore::openAfresh(QUrl::fromLocalFile(m_index.filePath(QStringLiteral("i.sqlite"))));
            keepLeast(pass, costOf([&] { runPass(); }));
            if (round == 0)
                std::printf("memory: grows by %.1f MiB\n", memory("VmHWM") - before);
            keepLeast(reference, costOf([&] {
                          (void)parallelMap(FolderScanner::list(m_folder, {QStringLiteral("wsz")}), m_threads,
                                            readOnce, [] {});
                      }));
        }
        std::printf("first pass: %.2f s (processor %.2f), reference %.2f s (%.2f), ratio %.2f (%.2f)\n",
                    pass.wall, pass.processor, reference.wall, reference.processor,
                    pass.wall / reference.wall, pass.processor / reference.processor);
    }

    void measureUnchangedPass(int rounds) {
        Cost pass;
        Cost find;
        for (int round = 0; round < rounds; ++round) {
            keepLeast(pass, costOf([&] { runPass(); }));
            keepLeast(find, costOf([&] {
                          QProcess process;
                          process.setStandardOutputFile(QProcess::nullDevice());
                          process.start(QStringLiteral("find"),
                                        {m_folder.toLocalFile(), QStringLiteral("-printf"),
                                         QStringLiteral("%p %s %T@\\n")});
                          process.waitForFinished();
                      }));
        }
        std::printf("unchanged pass: %.1f ms, find %.1f ms, ratio %.2f\n", 1000 * pass.wall, 1000 * find.wall,
                    pass.wall / find.wall);
    }

  private:
    void runPass() { SkinIndexer(m_folder, *m_store, {}, SkinIngester::parserVersion, m_threads).run(); }

    const QUrl m_folder;
    const int m_threads;
    const QTemporaryDir m_index;
    std::unique_ptr<SkinIndexStore> m_store;
};

} // namespace

int main(int argc, char **argv) {
    if (argc != 4) {
        std::fputs("usage: bench-skin-pass <folder> <skins> <threads>\n", stderr);
        return 2;
    }
    const QString folder = QFile::decodeName(argv[1]);
    if (!QDir(folder).exists())
        test::SkinCollection().write(folder, 0, QByteArray(argv[2]).toInt());
    Bench bench(folder, QByteArray(argv[3]).toInt());
    bench.measureFirstPass(3);
    bench.measureUnchangedPass(20);
    return 0;
}
