#include "Platform/NativePath.h"
#include "skintool/CorpusResult.h"
#include "skintool/CorpusSample.h"
#include "tests/Support/SkinCollection.h"
#include "tests/Support/TestFolder.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

using namespace vantor;
using namespace vantor::test;

namespace {

using Status = CorpusStatus;

template <typename Condition>
bool waitFor(const Condition &condition) {
    for (int i = 0; i < 6'000 && !condition(); ++i)
        QThread::msleep(5);
    return condition();
}

/// Runs the real tool on skins made in code; of those, number 3 lacks sheets and number 4 is broken.
class CorpusRunTest : public testing::Test, protected TestFolder {
  protected:
    void SetUp() override {
        // The allocator of a sanitizer would end a program that gets no memory.
        qputenv("ASAN_OPTIONS", "allocator_may_return_null=1");
    }
    void TearDown() override {
        qunsetenv("VANTOR_CORPUS_PLANT");
        qunsetenv("ASAN_OPTIONS");
    }

    void fill(int count) const { SkinCollection().write(path("skins"), 0, count); }
    [[nodiscard]] static QString skin(int number) {
        return QStringLiteral("0/%1.wsz").arg(SkinCollection::name(number));
    }
    static void plant(std::initializer_list<std::pair<const char *, int>> faults) {
        QStringList entries;
        for (const auto &[fault, number] : faults)
            entries += QStringLiteral("%1:%2.wsz").arg(QLatin1String(fault), SkinCollection::name(number));
        qputenv("VANTOR_CORPUS_PLANT", entries.join(u',').toUtf8());
    }
    [[nodiscard]] static QStringList words(const char *line) {
        return QString::fromLatin1(line).split(u' ', Qt::SkipEmptyParts);
    }
    [[nodiscard]] ProgramRun run(const char *line) const { return runProgram(SKINTOOL, words(line), *this); }
    void start(QProcess &process, const char *line) const {
        process.setWorkingDirectory(path());
        process.start(QStringLiteral(SKINTOOL), words(line));
        ASSERT_TRUE(process.waitForStarted());
    }
    [[nodiscard]] qsizetype lineCount(const char *file) const {
        return QFile::exists(path(file)) ? read(path(file)).count('\n') : 0;
    }
    /// By path; a path that occurs twice is a failure.
    [[nodiscard]] std::map<QString, CorpusResult> results(const char *out) const {
        QFile file(QDir(path(out)).filePath(u"results.jsonl"_qs));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        std::map<QString, CorpusResult> all;
        const auto malformed = [](qint64 number) { ADD_FAILURE() << "line " << number; };
        const qint64 end = readCorpusResults(
            file,
            [&](const CorpusResult &result) {
                EXPECT_TRUE(all.emplace(result.path, result).second) << result.path.toStdString();
            },
            malformed);
        EXPECT_EQ(end, file.size());
        return all;
    }
    [[nodiscard]] QStringList paths(const char *out) const {
        QStringList list;
        for (const auto &[path, ignored] : results(out))
            list += path;
        return list;
    }
};

} // namespace

TEST_F(CorpusRunTest, GivesEverySkinItsResult) {
    fill(8);
    const QByteArray odd = "caf\xE9 \"|\x01.WSZ";
    std::filesystem::copy_file(path("skins").toStdString() + '/' + skin(0).toStdString(),
                               path("skins").toStdString() + '/' + odd.toStdString());
    plant({{"crash", 0}, {"hang", 1}, {"hog", 2}});
    const ProgramRun run = this->run("corpus skins --out out --timeout 6 --max-memory 256");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, u"9 skins: 4 ok, 1 partial, 1 failed, 1 crashed, 1 timeout, 1 out of memory\n"_qs);

    auto all = results("out");
    const std::pair<QString, Status> expected[] = {
        {skin(0), Status::crashed}, {skin(1), Status::timeout}, {skin(2), Status::outOfMemory},
        {skin(3), Status::partial}, {skin(4), Status::failed},  {skin(5), Status::ok},
        {skin(6), Status::ok},      {skin(7), Status::ok},      {NativePath::text(odd), Status::ok}};
    ASSERT_EQ(all.size(), std::size(expected));
    for (const auto &[name, status] : expected) {
        SCOPED_TRACE(name.toStdString());
        const CorpusResult &result = all[name];
        EXPECT_EQ(rawValue(result.status), rawValue(status));
        const QByteArray bytes =
            SkinCollection().archive(name.startsWith(u"0/") ? name.mid(name.size() - 9, 5).toInt() : 0);
        EXPECT_EQ(result.hash.toLatin1(),
                  QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
        EXPECT_EQ(result.size, bytes.size());
        EXPECT_EQ(result.signal, status == Status::crashed ? u"SIGABRT"_qs : QString());
        EXPECT_EQ(result.warnings.isEmpty(), status != Status::partial);
        EXPECT_EQ(result.refused.startsWith(u"Unreadable archive: "), status == Status::failed);
        EXPECT_EQ(result.milliseconds >= 6000, status == Status::timeout) << result.milliseconds;
        EXPECT_EQ(result.peakKiB > 128 * 1024, status == Status::outOfMemory) << result.peakKiB;
        const QString copy = path("out/crashes/") + result.hash.left(16) + u'-' + name.section(u'/', -1);
        EXPECT_EQ(QFile::exists(copy) && read(copy) == bytes, isLost(status));
    }
    const QJsonObject environment = QJsonDocument::fromJson(read(path("out/env.json"))).object();
    EXPECT_EQ(environment[u"options"][u"max-memory"].toInt(), 256);
    EXPECT_EQ(this->run("corpus skins --out out --timeout 2 --max-memory 256 --resume").status, 1)
        << "losses of before count";
    EXPECT_EQ(results("out"), all);
    std::filesystem::remove(path("skins").toStdString() + '/' + odd.toStdString()); // QTemporaryDir cannot
}

TEST_F(CorpusRunTest, GoesOnAfterBeingKilled) {
    fill(60);
    plant({{"hang", 40}});
    QProcess runner;
    start(runner, "corpus skins --out out --manifest list");
    const qint64 process = runner.processId();
    const QString children = QStringLiteral("/proc/%1/task/%1/children").arg(process);
    const auto hanging = [&] { return lineCount("out/results.jsonl") >= 20 && !read(children).isEmpty(); };
    ASSERT_TRUE(waitFor(hanging));
    const ProgramRun second = run("corpus skins --out out --manifest list --resume");
    EXPECT_EQ(second.err, u"Another run is writing to out\n"_qs);
    const QList<QByteArray> workers = read(children).simplified().split(' ');
    runner.kill();
    ASSERT_TRUE(runner.waitForFinished());
    for (const QByteArray &worker : workers) {
        EXPECT_TRUE(waitFor([&] { return kill(worker.toInt(), 0) != 0; })) << "a worker outlived the runner";
    }
    EXPECT_FALSE(QFile::exists(path("list")));
    QFile torn(path("out/results.jsonl"));
    ASSERT_TRUE(torn.resize(torn.size() - 20));

    qunsetenv("VANTOR_CORPUS_PLANT");
    const ProgramRun last = run("corpus skins --out out --manifest list --resume");
    EXPECT_EQ(last.status, 0) << last.err.toStdString();
    EXPECT_EQ(last.out, u"60 skins: 56 ok, 2 partial, 2 failed\n"_qs);
    EXPECT_EQ(results("out").size(), 60U);
    EXPECT_EQ(lineCount("list"), 60);
}

TEST_F(CorpusRunTest, EndsAfterTheRunningSkinsWhenInterrupted) {
    fill(12);
    plant({{"hang", 11}});
    for (const bool isTwice : {false, true}) {
        const char *const line =
            isTwice ? "corpus skins --out b --timeout 60" : "corpus skins --out a --timeout 3";
        QProcess runner;
        start(runner, line);
        const char *const file = isTwice ? "b/results.jsonl" : "a/results.jsonl";
        ASSERT_TRUE(waitFor([&] { return lineCount(file) >= 1; }));
        kill(static_cast<pid_t>(runner.processId()), SIGINT);
        if (isTwice) {
            QThread::msleep(20);
            kill(static_cast<pid_t>(runner.processId()), SIGINT);
        }
        ASSERT_TRUE(runner.waitForFinished(30'000));
        if (runner.exitStatus() == QProcess::NormalExit) {
            EXPECT_EQ(runner.exitCode(), 1);
            EXPECT_TRUE(runner.readAllStandardError().contains("of 12 skins; go on with --resume"));
        }
        EXPECT_LT(paths(isTwice ? "b" : "a").size(), 12);
    }
}

TEST_F(CorpusRunTest, DrawsTheSameSampleEverywhere) {
    fill(20);
    EXPECT_EQ(run("corpus skins --out a --sample 6 --seed 7").status, 0);
    EXPECT_EQ(run("corpus skins --out b --sample 6 --seed 8").status, 0);
    std::vector<QString> all;
    for (int number = 19; number >= 0; --number)
        all.push_back(skin(number));
    QStringList seven(QList<QString>(6));
    std::ranges::copy(CorpusSample::drawn(all, 6, 7, [](const QString &p) { return p; }), seven.begin());
    seven.sort();
    EXPECT_EQ(paths("a"), seven);
    EXPECT_NE(paths("b"), seven);
    EXPECT_EQ(CorpusSample::rank(7, u"0/é.wsz"_qs).toHex().left(16), "47530556108638ea");
}

TEST_F(CorpusRunTest, AManifestNamesTheSkins) {
    fill(6);
    EXPECT_EQ(run("corpus skins --out a --sample 4 --manifest list").status, 0);
    const QStringList chosen = paths("a");
    EXPECT_EQ(chosen.size(), 4);
    EXPECT_EQ(run("corpus skins --out b --manifest list").status, 0);
    EXPECT_EQ(paths("b"), chosen);

    QByteArray bytes = read(path("skins/") + chosen.front());
    bytes.back() = static_cast<char>(bytes.back() + 1);
    write(("skins/" + chosen.front().toUtf8()).constData(), bytes);
    const ProgramRun changed = run("corpus skins --out c --manifest list");
    EXPECT_EQ(changed.status, 1);
    EXPECT_EQ(changed.err.split(u'\n').value(0), u"1 skins differ from the manifest"_qs);
    EXPECT_EQ(results("c")[chosen.front()].refused, u"Differs from the manifest"_qs);

    QFile::remove(path("skins/") + chosen.back());
    const ProgramRun missing = run("corpus skins --out d --manifest list");
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.startsWith(u"1 of the manifest's 4 skins are missing from "_qs));
    EXPECT_TRUE(missing.err.endsWith(u"the first is %1\n"_qs.arg(chosen.back())));
    EXPECT_FALSE(QFile::exists(path("d"))) << "nothing was begun";
}

TEST_F(CorpusRunTest, SaysWhatKeepsItFromRunning) {
    fill(2);
    write("file", "text");
    write("bad-manifest", "{\"path\":\"a.wsz\"}\n");
    write("no-env/results.jsonl", {});
    ASSERT_EQ(run("corpus skins --out done --sample 1").status, 0);
    QFile::copy(path("done/env.json"),
                write("malformed/results.jsonl", "{}\n").replace(u"results.jsonl"_qs, u"env.json"_qs));
    const std::pair<const char *, const char *> rows[] = {
        {"nowhere --out o", "The skins folder cannot be read: not a folder"},
        {"file --out o", "The skins folder cannot be read: not a folder"},
        {"skins --out file/o", "Could not create the folder file/o"},
        {"skins --out /proc/o", "Could not create the folder /proc/o"},
        {"skins --out o --manifest bad-manifest", "Could not read bad-manifest: line 1 does not name a skin"},
        {"skins --out done --sample 1",
         "done already holds results; go on with --resume or take another --out"},
        {"skins --out done --resume", "The run in done was begun with --sample 1, now it has none; resume it "
                                      "with the same options or take "
                                      "another --out"},
        {"skins --out done --resume --sample 1 --seed 2",
         "The run in done was begun with --seed 1, now it has 2; resume it with the same options or take "
         "another --out"},
        {"skins --out malformed --resume --sample 1",
         "Could not read malformed/results.jsonl: line 1 is not a result"},
        {"skins --out no-env --resume", "Could not read no-env/env.json: No such file or directory"},
    };
    for (const auto &[arguments, sentence] : rows) {
        const ProgramRun result = run((QByteArray("corpus ") + arguments).constData());
        EXPECT_EQ(result.status, 1) << arguments;
        EXPECT_EQ(result.err, QLatin1String(sentence) + u'\n') << arguments;
    }
    EXPECT_EQ(run("corpus skins").status, 2);
    plant({{"crash", 0}});
    for (const char *line : {"corpus . --out inside", "corpus . --out inside --resume"})
        EXPECT_EQ(run(line).out, u"2 skins: 1 ok, 1 crashed\n"_qs) << "the run's own copy is no skin";
}
