#include "SkinLibrary/Ingest/SkinIndexer.h"

#include "tests/SkinLibrary/LibraryFixture.h"
#include "tests/Support/AudioFileBuilder.h"

#include <QDir>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>

using namespace vantor;
using namespace vantor::test;

namespace {

using Phase = SkinIndexProgress::Phase;

/// Everything of a summary but the time.
struct Counts {
    std::int64_t skins, added, updated, linked, removed, unchanged;
    bool cancelled = false;

    bool operator==(const Counts &) const = default;
};

void PrintTo(const Counts &c, std::ostream *out) {
    *out << c.skins << " skins, +" << c.added << " *" << c.updated << " =" << c.linked << " -" << c.removed
         << " ." << c.unchanged << (c.cancelled ? " cancelled" : "");
}

/// Two sound skins, one of them twice, and a broken one.
struct FilledLibrary : LibraryFixture {
    FilledLibrary() {
        write("a.wsz", soundSkin(1));
        write("b.wsz", soundSkin(2));
        write("deep/copy.wsz", soundSkin(1));
        write("broken.wsz", "no archive");
    }

    void write(const QByteArray &name, const QByteArray &bytes) const {
        folder.write("skins/" + name, bytes);
    }
    [[nodiscard]] QString path(const QByteArray &name) const { return folder.path("skins/" + name); }

    Counts pass(const SkinIndexer::Progress &progress = {}, int batch = 64, int parserVersion = 1,
                bool full = false) {
        SkinIndexer made(skins(), *store, {}, parserVersion, 2, batch, std::chrono::milliseconds(0));
        indexer = &made;
        return counts(made.run(full, progress));
    }
    static Counts counts(const SkinIndexSummary &s) {
        return {s.totalSkins, s.added, s.updated, s.linked, s.removed, s.unchanged, s.cancelled};
    }

    SkinIndexer *indexer = nullptr; ///< the running one
};

class SkinIndexerTest : public testing::Test, public FilledLibrary {};

} // namespace

TEST_F(SkinIndexerTest, IndexesAFolder) {
    std::vector<Phase> phases;
    const Counts first = pass(
        [&](const SkinIndexProgress &progress) {
            if (phases.empty() || phases.back() != progress.phase)
                phases.push_back(progress.phase);
        },
        1);
    EXPECT_EQ(first, (Counts{3, 3, 0, 1, 0, 0}));
    EXPECT_EQ(phases,
              (std::vector{Phase::scanning, Phase::indexing, Phase::pruning, Phase::hashing, Phase::done}));
    EXPECT_EQ(store->counts(), (SkinIndexCounts{4, 3, {{SkinStatus::ok, 2}, {SkinStatus::failed, 1}}}));
    const std::optional<SkinRecord> skin = store->skinAtPath(path("deep/copy.wsz"));
    ASSERT_TRUE(skin);
    EXPECT_EQ(skin->name, QStringLiteral("a"));
    EXPECT_EQ(skin->readme, QStringLiteral("Read me.1"));
    EXPECT_EQ(store->skinAtPath(path("broken.wsz"))->warnings,
              QStringLiteral("Unreadable archive: Not a zip archive"));
    EXPECT_EQ(store->meta(QStringLiteral("folder")), path("").chopped(1));
    EXPECT_EQ(store->meta(QStringLiteral("last_summary")),
              QStringLiteral("4 files, 3 skins, 3 added, 0 updated, 1 linked, 0 removed, 1 failed"));
    EXPECT_EQ(QFileInfo(url.toLocalFile() + QStringLiteral("-wal")).size(), 0);
}

TEST_F(SkinIndexerTest, ReadsOnlyWhatChanged) {
    const auto nothing = [](FilledLibrary &) {};
    const struct {
        const char *name;
        std::function<void(FilledLibrary &)> change;
        Counts expected;
        int parserVersion = 1;
        bool full = false;
    } cases[] = {
        {"nothing", nothing, {3, 0, 0, 0, 0, 4}},
        {"a new time", [](auto &t) { t.write("b.wsz", soundSkin(2)); }, {3, 0, 0, 1, 0, 3}},
        {"new bytes", [](auto &t) { t.write("b.wsz", soundSkin(3)); }, {3, 1, 0, 0, 1, 3}},
        {"one of two copies gone", [](auto &t) { QFile::remove(t.path("a.wsz")); }, {3, 0, 0, 0, 1, 3}},
        {"the last copy gone", [](auto &t) { QFile::remove(t.path("b.wsz")); }, {2, 0, 0, 0, 2, 3}},
        {"a new parser", nothing, {3, 0, 4, 0, 0, 0}, 2},
        {"all asked for", nothing, {3, 0, 0, 4, 0, 0}, 1, true},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        FilledLibrary fresh;
        fresh.pass();
        row.change(fresh);
        EXPECT_EQ(fresh.pass({}, 64, row.parserVersion, row.full), row.expected);
    }
}

TEST_F(SkinIndexerTest, TriesUnreadableFilesAgain) {
    chmod(qPrintable(folder.path()), 0755);
    chmod(qPrintable(path("b.wsz")), 0);
    {
        const OrdinaryUser user;
        EXPECT_EQ(pass(), (Counts{3, 3, 1, 0, 0, 0}));
        EXPECT_EQ(store->skinAtPath(path("b.wsz"))->warnings, QStringLiteral("Permission denied"));
        EXPECT_EQ(pass(), (Counts{3, 0, 1, 0, 0, 3}));
    }
    chmod(qPrintable(path("b.wsz")), 0644);
    EXPECT_EQ(pass(), (Counts{3, 1, 0, 0, 1, 3}));
}

TEST_F(SkinIndexerTest, GoesOnWhereACancelledPassEnded) {
    const Counts first = pass(
        [&](const SkinIndexProgress &progress) {
            if (progress.phase == Phase::indexing && progress.processed == 2)
                indexer->cancel();
        },
        2);
    EXPECT_EQ(first, (Counts{2, 2, 0, 0, 0, 0, true}));
    EXPECT_TRUE(store->meta(QStringLiteral("last_summary"))->endsWith(QStringLiteral("(cancelled)")));
    EXPECT_EQ(pass(), (Counts{3, 1, 0, 1, 0, 2}));
}

TEST_F(SkinIndexerTest, FillsMissingMD5s) {
    pass();
    const QString md5 = store->skinAtPath(path("a.wsz"))->md5.value();
    SQLiteDatabase(url).execute("UPDATE skins SET md5 = NULL");
    pass(
        [&](const SkinIndexProgress &progress) {
            if (progress.phase == Phase::hashing && progress.processed == 1)
                indexer->cancel();
        },
        1);
    EXPECT_EQ(store->skinsMissingMD5(0, 9).size(), 2U);
    pass();
    EXPECT_TRUE(store->skinsMissingMD5(0, 9).empty());
    EXPECT_EQ(store->skinAtPath(path("a.wsz"))->md5, md5);
}

TEST_F(SkinIndexerTest, RefusesWhatWouldLoseSkins) {
    pass();
    const SkinIndexCounts before = store->counts();
    const auto vanished = errorOf([&] {
        pass(
            [&](const SkinIndexProgress &progress) {
                if (progress.phase == Phase::indexing) {
                    EXPECT_EQ(errorOf([&] { indexer->run(); }), SkinLibraryError::passAlreadyRunning());
                    QDir().rename(folder.path("skins"), folder.path("elsewhere"));
                }
            },
            64, 1, true);
    });
    EXPECT_EQ(vanished, SkinLibraryError::folderUnreadable(QStringLiteral("not a folder")));
    EXPECT_EQ(errorOf([&] { pass(); }), vanished);
    EXPECT_EQ(store->counts(), before);
    QDir().rename(folder.path("elsewhere"), folder.path("skins"));
    EXPECT_EQ(pass().unchanged, 4);
}

TEST_F(SkinIndexerTest, AddsGivenFiles) {
    SkinIndexer single(skins(), *store);
    EXPECT_EQ(counts(single.add({path("a.wsz"), path("deep/copy.wsz"), path("gone.wsz")})),
              (Counts{2, 2, 1, 0, 0, 0}));
    EXPECT_EQ(store->skinAtPath(path("gone.wsz"))->warnings, QStringLiteral("No such file or directory"));
    EXPECT_EQ(pass(), (Counts{3, 2, 0, 0, 2, 2}));
}

TEST_F(SkinIndexerTest, SurvivesBeingKilled) {
    for (int i = 0; i < 200; ++i)
        folder.write(("other/" + QByteArray::number(i) + ".wsz").constData(), soundSkin(i % 150));
    store.reset();
    const QString log = url.toLocalFile() + QStringLiteral("-wal");
    std::set<QString> seen;
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        const pid_t runner = spawn({PASS_RUNNER, url.toLocalFile().toStdString(), path("").toStdString(),
                                    folder.path("other").toStdString()});
        for (int i = 0; i < 20'000 && QFileInfo(log).size() == 0; ++i)
            QThread::msleep(1);
        const int pace = round < 50 || seen.size() > 5 ? 3 : 30; // on a busy machine passes take long
        QThread::msleep(static_cast<unsigned long>(pace * (round % 50)));
        kill(runner, SIGKILL);
        ASSERT_EQ(waitpid(runner, nullptr, 0), runner);
        ASSERT_EQ(ask("PRAGMA integrity_check"), QStringLiteral("ok"));
        ASSERT_EQ(ask("SELECT COUNT(*) FROM files WHERE skin_id NOT IN (SELECT id FROM skins)"),
                  QStringLiteral("0"));
        SQLiteDatabase(url).execute("INSERT INTO skins_fts(skins_fts) VALUES ('integrity-check')");
        seen.insert(ask("SELECT COUNT(*) FROM files"));
    }
    EXPECT_GT(seen.size(), 5U); // else no pass went on when it was killed
    store = SkinIndexStore::open(url);
    pass();
    EXPECT_EQ(store->counts(), (SkinIndexCounts{4, 3, {{SkinStatus::ok, 2}, {SkinStatus::failed, 1}}}));
}
