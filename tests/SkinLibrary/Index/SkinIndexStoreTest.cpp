#include "Platform/NativePath.h"
#include "tests/SkinLibrary/LibraryFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <thread>

using namespace vantor;
using namespace vantor::test;

namespace {

class SkinIndexStoreTest : public testing::Test, public LibraryFixture {
  protected:
    std::vector<QString> names(const SkinQuery &query) {
        std::vector<QString> result;
        for (const SkinRecord &skin : store->skins(query))
            result.push_back(skin.name);
        return result;
    }
    void fill(int count, const char *readme) {
        std::vector<IngestOutcome> outcomes;
        for (int i = 0; i < count; ++i) {
            const QByteArray name = QByteArray::number(i).rightJustified(5, '0');
            outcomes.push_back(parsedSkin("/s/" + name + ".wsz", name, QString::fromUtf8(readme)));
        }
        store->apply(outcomes, 1);
    }
};

QString q(const char *text) {
    return QString::fromUtf8(text);
}

} // namespace

TEST_F(SkinIndexStoreTest, BringsAnOlderFileUpToDate) {
    store->apply({parsedSkin("/a.wsz", "a")}, 1);
    const QString md5 = store->skinAtPath(q("/a.wsz"))->md5.value();
    store.reset();
    for (const char *sql :
         {"DROP INDEX skins_md5", "ALTER TABLE skins DROP COLUMN md5", "PRAGMA user_version = 1"})
        SQLiteDatabase(url).execute(sql);

    store = SkinIndexStore::open(url);
    EXPECT_EQ(ask("PRAGMA user_version"), q("2"));
    EXPECT_EQ(ask("SELECT COUNT(*) FROM sqlite_master WHERE name = 'skins_md5'"), q("1"));
    const auto missing = store->skinsMissingMD5(0, 10);
    ASSERT_THAT(missing, testing::SizeIs(1));
    EXPECT_EQ(missing.front().path, q("/a.wsz"));
    store->setMD5s({{missing.front().id, md5}});
    EXPECT_TRUE(store->skins(QStringList{md5}).contains(md5));
}

TEST_F(SkinIndexStoreTest, RefusesFilesThatItCannotRead) {
    store->apply({parsedSkin("/a.wsz", "a")}, 1);
    store.reset();
    SQLiteDatabase(url).execute("PRAGMA user_version = 3");
    const auto newer = errorOf([&] { (void)SkinIndexStore::open(url); });
    ASSERT_TRUE(newer);
    EXPECT_EQ(newer->description(), q("The skin index is from a newer version (3, this build reads 2). "
                                      "Reset it to rebuild."));
    EXPECT_EQ(ask("SELECT COUNT(*) FROM skins") + ask("PRAGMA user_version"), q("13"));

    folder.write("library/index.sqlite", QByteArray(9000, 'x'));
    EXPECT_EQ(errorOf([&] { (void)SkinIndexStore::open(url); }),
              SkinLibraryError::sqlite(26, q("file is not a database")));
    EXPECT_EQ(errorOf([&] { (void)SkinIndexStore::open(QUrl::fromLocalFile(folder.path())); }),
              SkinLibraryError::sqlite(14, q("unable to open database file")));

    EXPECT_EQ(SkinIndexStore::openAfresh(url)->counts(), SkinIndexCounts());
}

TEST_F(SkinIndexStoreTest, KeepsOneSkinForFilesOfTheSameBytes) {
    const ParsedSkin first = parsedSkin("/b/One.two.wsz", "a", q("Zebra"));
    const QString copy = NativePath::text("/a/Bl\xE5.wsz");
    const LinkedSkin linked{{copy, 10, 2.5}, first.digests.sha256};
    EXPECT_EQ(store->apply({first, linked}, 7), (AppliedCounts{.added = 1, .linked = 1, .newFiles = 2}));
    const SkinRecord expected{.id = 1,
                              .hash = first.digests.sha256,
                              .name = q("One.two"),
                              .readme = q("Zebra"),
                              .status = SkinStatus::partial,
                              .warnings = q("Missing a\nMissing b"),
                              .size = 10,
                              .fileCount = 2,
                              .primaryPath = copy,
                              .md5 = first.digests.md5};
    EXPECT_EQ(store->skinWithHash(expected.hash), expected);
    EXPECT_EQ(store->files(1), (std::vector<FileStamp>{linked.stamp, first.stamp}));
    EXPECT_EQ(store->fileStamps().value(copy), (SkinIndexStore::IndexedFile{linked.stamp, 7}));
    EXPECT_EQ(store->knownSkinIDs({expected.hash, q("other")}, 7).size(), 1);
    EXPECT_TRUE(store->knownSkinIDs({expected.hash}, 8).isEmpty());

    store->removeFile(copy, q("another hash"));
    store->removeFile(copy);
    EXPECT_EQ(store->search(q("zeb"), std::nullopt, 9).at(0).fileCount, 1);
    store->removeFile(first.stamp.path, expected.hash);
    EXPECT_EQ(store->counts(), SkinIndexCounts());
    EXPECT_TRUE(store->search(q("zeb"), std::nullopt, 9).empty());
}

TEST_F(SkinIndexStoreTest, NamesSkinsInOldEncodings) {
    store->apply({parsedSkin("/x.wsz", "a")}, 1);
    ParsedSkin odd = parsedSkin("", "b");
    odd.stamp.path = NativePath::text("/Bl\xE5tand.wsz");
    EXPECT_EQ(NativePath::bytes(odd.stamp.path), "/Bl\xE5tand.wsz");
    store->apply({odd}, 1);
    EXPECT_EQ(store->skinAtPath(odd.stamp.path)->name, q("Blåtand"));
    EXPECT_EQ(store->removeFiles({odd.stamp.path, q("/unknown.wsz")}), 1);
    EXPECT_EQ(store->pruneOrphans(), 1);
}

TEST_F(SkinIndexStoreTest, KeepsAKnownMD5) {
    const struct {
        const char *name;
        QString first, second, expected;
    } cases[] = {
        {"known", q("11"), q("22"), q("11")},
        {"known, then none", q("11"), q(""), q("11")},
        {"none, then known", q(""), q("22"), q("22")},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        ParsedSkin skin = parsedSkin("/a.wsz", row.name);
        for (const QString &md5 : {row.first, row.second}) {
            skin.digests.md5 = md5;
            store->apply({skin}, 1);
        }
        EXPECT_EQ(store->skinWithHash(skin.digests.sha256)->md5, row.expected);
    }
}

TEST_F(SkinIndexStoreTest, AppliesAllOfABatchOrNothing) {
    EXPECT_EQ(errorOf([&] {
                  store->apply({parsedSkin("/a.wsz", "a"), LinkedSkin{{q("/b.wsz")}, q("no such")}}, 1);
              }),
              SkinLibraryError::sqlite(1, q("linked a file to an unknown skin")));
    EXPECT_EQ(store->counts(), SkinIndexCounts());

    // A disk that fills up, as far as a process can arrange it for itself.
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit full{200'000, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
    const auto error = errorOf([&] { fill(3000, "far too much"); });
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, before);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->errorCase(), SkinLibraryError::Case::sqlite);
    EXPECT_EQ(store->counts(), SkinIndexCounts());
    fill(3, "room again");
    EXPECT_EQ(store->counts().skins, 3);
}

TEST_F(SkinIndexStoreTest, RanksOnlyWhatIsNotBroad) {
    fill(SkinIndexStore::broadSearchHits - 1, "a common word among many others that say little");
    store->apply({parsedSkin("/Zz common common.wsz", "z", q("common"))}, 1);
    const SkinQuery query{.text = q("COMM"), .limit = 1};
    EXPECT_EQ(names(query), std::vector{q("Zz common common")});
    const std::int64_t best = store->skins(query).front().id;
    EXPECT_EQ(store->position(best, query), 0);
    store->apply({parsedSkin("/one more.wsz", "y", q("common"))}, 1);
    EXPECT_EQ(names(query), std::vector{q("00000")});
    EXPECT_EQ(store->count(query), 2001);
    EXPECT_EQ(store->position(best, query), 2000);
    EXPECT_EQ(names({.text = q("common"), .limit = 5, .offset = 1999}),
              (std::vector{q("one more"), q("Zz common common")}));
}

TEST_F(SkinIndexStoreTest, AnswersQueries) {
    std::vector<IngestOutcome> outcomes;
    for (const char *name : {"beta", "Alpha", "alpha", "gamma 7\"rock", "Épée"})
        outcomes.push_back(parsedSkin(("/" + QByteArray(name) + ".wsz").constData(), name));
    std::get<ParsedSkin>(outcomes[3]).inspection.status = SkinStatus::ok;
    store->apply(outcomes, 1);
    const std::vector all{q("Alpha"), q("alpha"), q("beta"), q("gamma 7\"rock"), q("Épée")};
    const struct {
        const char *name;
        SkinQuery query;
        std::vector<QString> expected;
        std::int64_t count;
    } cases[] = {
        {"all", {.limit = 9}, all, 5},
        {"a page", {.limit = 2, .offset = 1}, {q("alpha"), q("beta")}, 5},
        {"past the end", {.limit = 2, .offset = 5}, {}, 5},
        {"no statuses", {.statuses = {}, .limit = 9}, {}, 0},
        {"no room", {.limit = 0}, {}, 5},
        {"one status", {.statuses = {SkinStatus::ok}, .limit = 9}, {q("gamma 7\"rock")}, 1},
        {"punctuation", {.text = q("!!!"), .limit = 9}, all, 5},
        {"one character", {.text = q("b"), .limit = 9}, all, 5},
        {"a prefix without its accents", {.text = q("epe"), .limit = 9}, {q("Épée")}, 1},
        {"a quote", {.text = q("7\"rock"), .limit = 9}, {q("gamma 7\"rock")}, 1},
        {"operators are words", {.text = q("alpha OR beta"), .limit = 9}, {}, 0},
        {"text and status", {.text = q("alpha"), .statuses = {SkinStatus::ok}, .limit = 9}, {}, 0},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(names(row.query), row.expected);
        EXPECT_EQ(store->count(row.query), row.count);
        for (std::size_t at = 0; at < row.expected.size(); ++at) {
            const auto id = store->skins(row.query)[at].id;
            EXPECT_EQ(store->position(id, row.query), static_cast<std::int64_t>(at) + row.query.offset);
        }
    }
    const std::int64_t ok = store->random(SkinStatus::ok)->id;
    EXPECT_FALSE(store->position(ok, {.statuses = {SkinStatus::partial}}));
    EXPECT_FALSE(store->position(ok, {.text = q("beta")}));
    EXPECT_FALSE(store->position(999, {}));
    EXPECT_EQ(store->skins(SkinStatus::partial, 9, 0).size(), 4U);
    EXPECT_EQ(store->random(std::set{SkinStatus::ok})->name, all[3]);
    EXPECT_FALSE(store->random(SkinStatus::failed));
    EXPECT_FALSE(store->random(std::set<SkinStatus>{}));

    const std::set<SkinStatus> partial{SkinStatus::partial};
    std::vector<QString> steps{q("Alpha")};
    for (auto at = store->skinAtPath(q("/Alpha.wsz")); at;) {
        at = store->neighbor(at->id, SkinNeighborDirection::next, partial);
        steps.push_back(at ? at->name : QString());
    }
    EXPECT_EQ(steps, (std::vector{q("Alpha"), q("alpha"), q("beta"), q("Épée"), QString()}));
    const std::int64_t last = store->skinAtPath(q("/Épée.wsz"))->id;
    EXPECT_EQ(store->neighbor(last, SkinNeighborDirection::previous, partial)->name, q("beta"));
}

TEST_F(SkinIndexStoreTest, InterruptsASearchAndNothingElse) {
    fill(3000, "common");
    std::atomic_bool ended = false;
    std::optional<SkinLibraryError> error;
    std::thread typing([&] {
        error = errorOf([&] {
            for (int i = 0; i < 500; ++i)
                (void)store->skins(SkinQuery{.text = q("common"), .limit = 3000});
        });
        ended = true;
    });
    while (!ended) {
        store->interrupt();
        store->setMeta(q("key"), q("written all the same"));
    }
    typing.join();
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->isInterruption());
    EXPECT_EQ(store->count({.text = q("common")}), 3000);
}

TEST_F(SkinIndexStoreTest, ReadsWhileAnotherConnectionWrites) {
    fill(3, "before");
    SQLiteDatabase writer(url);
    writer.transaction([&] {
        writer.execute("DELETE FROM files");
        EXPECT_EQ(SkinIndexStore::open(url)->counts().files, 3);
        EXPECT_EQ(errorOf([&] { store->removeFiles({q("/s/00000.wsz")}); }),
                  SkinLibraryError::sqlite(5, q("database is locked")));
    });
    EXPECT_EQ(store->counts().files, 0);
}

TEST_F(SkinIndexStoreTest, OpensAFreshFileTwiceAtOnce) {
    for (int round = 0; round < 20; ++round) {
        const QUrl fresh = QUrl::fromLocalFile(folder.path(QByteArray::number(round)));
        std::thread other(
            [&] { EXPECT_EQ(errorOf([&] { (void)SkinIndexStore::open(fresh); }), std::nullopt); });
        EXPECT_EQ(errorOf([&] { (void)SkinIndexStore::open(fresh); }), std::nullopt);
        other.join();
    }
}

TEST_F(SkinIndexStoreTest, LeavesAReadOnlyFileAsItIs) {
    fill(3, "before");
    store.reset();
    for (const QString &path : {folder.path(), folder.path("library")})
        chmod(qPrintable(path), 0755);
    chmod(qPrintable(url.toLocalFile()), 0444);
    {
        const OrdinaryUser user;
        const auto error = errorOf([&] { SkinIndexStore::open(url)->removeFiles({q("/s/00000.wsz")}); });
        ASSERT_TRUE(error);
        EXPECT_EQ(error->errorCase(), SkinLibraryError::Case::sqlite);
    }
    chmod(qPrintable(url.toLocalFile()), 0644);
    store = SkinIndexStore::open(url);
    EXPECT_EQ(store->counts().files, 3);
    store->reset();
    EXPECT_EQ(store->counts(), SkinIndexCounts());
    fill(1, "after");
    EXPECT_EQ(ask("PRAGMA integrity_check"), q("ok"));
}
