#include "FolderWatching/FolderWatcher.h"

#include "tests/Support/TestFolder.h"
#include "tests/Support/WaitFor.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSet>
#include <QThread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

using namespace vantor;
using namespace std::chrono_literals;

namespace {

constexpr FolderWatcher::Settings quick{.quiet = 60ms, .longest = 400ms, .poll = 300ms, .presence = 50ms};
/// Nothing that is to be told takes longer.
constexpr auto aWhile = 300ms;
/// For writers that a busy machine holds up: no pause of theirs counts as the end.
constexpr FolderWatcher::Settings patient{.quiet = 390ms, .longest = 400ms, .poll = 300ms, .presence = 50ms};

const QString everything = QStringLiteral("*");

class FolderWatcherTest : public testing::Test {
  protected:
    [[nodiscard]] QString path(const QByteArray &name = {}) const {
        return m_folder.path(("root/" + name).constData());
    }
    void write(const QByteArray &name, const QByteArray &bytes = "x") const {
        m_folder.write(("root/" + name).constData(), bytes);
    }
    void move(const QByteArray &from, const QByteArray &to) const {
        ASSERT_TRUE(QDir().rename(m_folder.path(from.constData()), m_folder.path(to.constData())));
    }

    /// Begins with a signal, so that every folder is known to be watched.
    void watch(const FolderWatcher::Settings &settings = quick) {
        m_watcher = std::make_unique<FolderWatcher>(m_folder.path("root"), settings);
        QObject::connect(m_watcher.get(), &FolderWatcher::changed, [this](const QStringList &folders) {
            ++m_signals;
            if (folders.isEmpty())
                m_told.insert(everything);
            for (const QString &folder : folders)
                m_told.insert(QDir(m_folder.path()).relativeFilePath(folder));
        });
        write("begin");
        ASSERT_TRUE(waitFor([&] { return m_signals > 0; }));
        (void)waitFor([] { return false; }, aWhile);
        forget();
    }
    void forget() {
        m_signals = 0;
        m_told.clear();
    }
    [[nodiscard]] bool tells(const char *folder) {
        return waitFor([&] { return m_told.contains(QString::fromUtf8(folder)); });
    }
    [[nodiscard]] QSet<QString> toldInAWhile() {
        (void)waitFor([] { return false; }, aWhile);
        return m_told;
    }

    TestFolder m_folder;
    QSet<QString> m_told;
    int m_signals = 0;
    std::unique_ptr<FolderWatcher> m_watcher;
};

} // namespace

TEST_F(FolderWatcherTest, TellsWhereSomethingChanged) {
    write("a/file");
    write("b/deep/file");
    m_folder.write("outside/inner/file", "x");
    watch();
    const struct {
        const char *name;
        std::function<void()> change;
        std::vector<const char *> folders;
    } rows[] = {
        {"a new file", [&] { write("new"); }, {"root"}},
        {"rewritten in place",
         [&] {
             QFile file(path("a/file"));
             ASSERT_TRUE(file.open(QIODevice::ReadWrite));
             file.write("y");
         },
         {"root/a"}},
        {"touched",
         [&] { ASSERT_EQ(utimensat(AT_FDCWD, qPrintable(path("a/file")), nullptr, 0), 0); },
         {"root/a"}},
        {"renamed", [&] { move("root/a/file", "root/b/renamed"); }, {"root/a", "root/b"}},
        {"removed", [&] { QFile::remove(path("b/renamed")); }, {"root/b"}},
        {"a new folder with another one", [&] { write("c/d/file"); }, {"root"}},
        {"in the new folder", [&] { write("c/d/more"); }, {"root/c/d"}},
        {"a folder moved within", [&] { move("root/b", "root/c/b"); }, {"root", "root/c"}},
        {"below the moved folder", [&] { write("c/b/deep/more"); }, {"root/c/b/deep"}},
        {"a folder moved in", [&] { move("outside", "root/inside"); }, {"root"}},
        {"below the one moved in", [&] { write("inside/inner/more"); }, {"root/inside/inner"}},
        {"a tree removed", [&] { QDir(path("c")).removeRecursively(); }, {"root"}},
        {"made again under its old name", [&] { write("c/b/deep/again"); }, {"root"}},
        {"below the one made again", [&] { write("c/b/deep/more"); }, {"root/c/b/deep"}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        (void)toldInAWhile();
        forget();
        row.change();
        for (const char *folder : row.folders)
            EXPECT_TRUE(tells(folder)) << folder;
        EXPECT_EQ(m_signals, 1);
    }
    EXPECT_FALSE(m_watcher->isPolling());
}

TEST_F(FolderWatcherTest, SaysNothingOfWhatIsNotInTheFolder) {
    m_folder.write("elsewhere/file", "x");
    ASSERT_TRUE(QDir().mkpath(path(".hidden")));
    ASSERT_TRUE(QFile::link(m_folder.path("elsewhere"), path("link")));
    write("leaving/deep/file");
    watch();
    move("root/leaving", "left");
    ASSERT_TRUE(tells("root"));
    forget();
    m_folder.write("elsewhere/new", "x");
    m_folder.write("left/deep/new", "x");
    write(".hidden/file");
    write(".part");
    QFile(path("begin")).open(QIODevice::ReadOnly);
    EXPECT_EQ(toldInAWhile(), QSet<QString>());
}

TEST_F(FolderWatcherTest, ALongCopyIsToldOfNowAndThen) {
    watch(patient);
    QElapsedTimer time;
    time.start();
    for (int i = 0; time.elapsed() < 1500; ++i) {
        write(QByteArray::number(i));
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    EXPECT_GE(m_signals, 2);
    EXPECT_LE(m_signals, time.elapsed() / 390 + 1);
    ASSERT_TRUE(tells("root"));
    EXPECT_EQ(m_told.size(), 1);
}

TEST_F(FolderWatcherTest, ManyFoldersAreToldOfAsOne) {
    for (int i = 0; i < 300; ++i)
        write("folder" + QByteArray::number(i) + "/file");
    watch({.quiet = 900ms, .longest = 10s, .poll = 300ms, .presence = 50ms});
    for (int i = 0; i < 300; ++i)
        write("folder" + QByteArray::number(i) + "/file", "y");
    EXPECT_TRUE(waitFor([&] { return m_told.contains(everything); }));
    EXPECT_LT(toldInAWhile().size(), 280);
}

TEST_F(FolderWatcherTest, TheFolderMayGoAndComeBack) {
    write("a/file");
    watch();
    const std::pair<const char *, std::function<void()>> changes[] = {
        {"removed", [&] { QDir(path()).removeRecursively(); }},
        {"made again", [&] { write("a/file"); }},
        {"moved away", [&] { move("root", "away"); }},
        {"moved back", [&] { move("away", "root"); }},
        {"replaced",
         [&] {
             m_folder.write("other/a/file", "x");
             move("root", "away");
             move("other", "root");
         }},
    };
    for (const auto &[name, change] : changes) {
        SCOPED_TRACE(name);
        change();
        EXPECT_TRUE(waitFor([&] { return m_told.contains(everything); }));
        (void)toldInAWhile();
        forget();
    }
    write("a/more");
    EXPECT_TRUE(tells("root/a"));
}

TEST_F(FolderWatcherTest, LooksNowAndThenWhenThereIsTooMuchToWatch) {
    for (const char *folder : {"a/x", "b/x", "c/x"})
        write(folder);
    FolderWatcher::Settings settings = quick;
    settings.maxFolders = 3;
    watch(settings);
    EXPECT_TRUE(m_watcher->isPolling());
    EXPECT_FALSE(m_watcher->pollingReason().isEmpty());
    forget();
    ASSERT_TRUE(waitFor([&] { return m_signals >= 3; }));
    EXPECT_EQ(m_told, QSet<QString>{everything});
    QDir(path("a")).removeRecursively();
    QDir(path("b")).removeRecursively();
    EXPECT_TRUE(waitFor([&] { return !m_watcher->isPolling(); }));
    (void)toldInAWhile();
    forget();
    EXPECT_EQ(toldInAWhile(), QSet<QString>());
    write("c/more");
    EXPECT_TRUE(tells("root/c"));
}

TEST_F(FolderWatcherTest, EndsInTheMiddleOfALargeTree) {
    for (int i = 0; i < 600; ++i)
        ASSERT_TRUE(QDir().mkpath(path("folder" + QByteArray::number(i))));
    std::vector<qint64> times; // milliseconds
    for (unsigned i = 0; i < 20; ++i) {
        auto watcher = std::make_unique<FolderWatcher>(path());
        QThread::usleep(500 * i);
        QElapsedTimer time;
        time.start();
        watcher.reset();
        times.push_back(time.elapsed());
    }
    std::ranges::sort(times);
    EXPECT_LT(times[times.size() / 2], 20); // a busy machine delays some of them
}
