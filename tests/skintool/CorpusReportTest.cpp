#include "skintool/CorpusMarkdown.h"
#include "skintool/CorpusSummary.h"
#include "tests/Support/TestFolder.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace vantor;

namespace {

CorpusResult made(int number, CorpusStatus status) {
    return {.path = u"skin %1.wsz"_qs.arg(number, 3, 10, QChar(u'0')),
            .hash = QString(64, QChar(u'a' + number % 3)),
            .size = 5,
            .status = status,
            .milliseconds = number + 0.5,
            .peakKiB = 1024 * (200 - number)};
}

class CorpusReportTest : public testing::Test, protected TestFolder {
  protected:
    [[nodiscard]] ProgramRun run(const char *arguments) const {
        return runProgram(SKINTOOL, (u"corpus-report "_qs + QLatin1String(arguments)).split(u' '), *this);
    }
    [[nodiscard]] QJsonObject summary() const {
        return QJsonDocument::fromJson(read(path("s.json"))).object();
    }
};

} // namespace

TEST(CorpusTallyTest, CountsWhatSkinsHaveInCommon) {
    const std::pair<QString, QString> rows[] = {
        {u"Missing main.bmp"_qs, u"Missing main.bmp"_qs},
        {u"nums_ex.bmp missing; digits use numbers.bmp"_qs,
         u"nums_ex.bmp missing; digits use numbers.bmp"_qs},
        {u"gen.bmp missing (not used in v1)"_qs, u"gen.bmp missing (not used in v1)"_qs},
        {u"viscolor.txt has 7 of 24 colours; defaults for 7–23"_qs,
         u"viscolor.txt has N of N colours; defaults for N–N"_qs},
        {u"pledit.txt normal 'it's\n#12' unusable; default"_qs,
         u"pledit.txt normal '…' unusable; default"_qs},
        {u"Unreadable archive: /home/me/my.wsz: error 12"_qs, u"Unreadable archive: FILE error N"_qs},
        {u"Broken My.WSZ found"_qs, u"Broken FILE found"_qs},
        {QString(5000, u'x'), QString(200, u'x') + u'…'},
    };
    for (const auto &[message, normal] : rows)
        EXPECT_EQ(CorpusTally::normalized(message), normal);
    CorpusTally tally;
    tally.add({u"row 1"_qs, u"row 2"_qs, u"b"_qs});
    tally.add({u"row 3"_qs});
    tally.add({u"a"_qs});
    EXPECT_EQ(tally.commonest(2), (std::vector<CorpusMessageCount>{{u"row N"_qs, 2}, {u"a"_qs, 1}}));
    for (int i = 0; i < 3 * CorpusTally::maxMessages; ++i)
        tally.add({u"m%1m"_qs.arg(i)});
    EXPECT_EQ(tally.commonest(1).front().message, QLatin1String(CorpusTally::others));
    EXPECT_LE(tally.commonest(100'000).size(), CorpusTally::maxMessages + 1U);
}

TEST(CorpusMarkdownTest, NothingForeignIsMarkup) {
    const std::pair<QString, QString> rows[] = {
        {u"plain name-1.2.wsz"_qs, u"plain name-1.2.wsz"_qs},
        {u"a|b*c_d`e<f>[g](h)#~&\\"_qs, u"a\\|b\\*c\\_d\\`e\\<f\\>\\[g\\]\\(h\\)\\#\\~\\&\\\\"_qs},
        {u"two\nlines\x1B[31m\u202E"_qs, u"two\uFFFDlines\uFFFD\\[31m\uFFFD"_qs},
        {u"caf"_qs + QChar(0xDCE9), u"caf\\\\xE9"_qs},
        {u"\U0001F3B5"_qs, u"\U0001F3B5"_qs},
        {QString(161, u'x'), QString(160, u'x') + u'…'},
    };
    for (const auto &[text, expected] : rows)
        EXPECT_EQ(CorpusMarkdown::escaped(text), expected);
}

TEST(CorpusResultTest, LinesKeepEveryByteOfAName) {
    CorpusResult result = made(1, CorpusStatus::outOfMemory);
    result.path = u"d/caf"_qs + QChar(0xDCE9) + u"\"\n\u00e9\U0001F3B5.wsz"_qs;
    result.warnings = {u"w"_qs, QString()};
    result.fallbacks = {u"f"_qs};
    result.refused = u"why"_qs;
    result.signal = u"SIGSEGV"_qs;
    EXPECT_EQ(result.toLine().count('\n'), 1);
    EXPECT_TRUE(result.toLine().contains("caf\\udce9"));
    EXPECT_EQ(CorpusResult::fromLine(result.toLine()), result);
    for (const char *line : {"", "{", "[]", "{\"path\":\"a\"}", "{\"path\":\"\",\"status\":\"ok\"}",
                             "{\"path\":\"a\",\"status\":\"fine\"}", "{\"path\":3,\"status\":\"ok\"}"})
        EXPECT_FALSE(CorpusResult::fromLine(line)) << line;
}

TEST_F(CorpusReportTest, SumsUpARun) {
    QByteArray lines;
    for (int number = 1; number <= 100; ++number) {
        CorpusResult result = made(number, number <= 80 ? CorpusStatus::ok : CorpusStatus::partial);
        result.fallbacks = {u"viscolor.txt has %1 of 24 colours; defaults for %1–23"_qs.arg(number % 20)};
        if (number > 80)
            result.warnings = {u"Missing main.bmp"_qs};
        lines += result.toLine();
    }
    CorpusResult lost = made(101, CorpusStatus::crashed);
    lost.path = u"evil | name.wsz"_qs;
    lost.signal = u"SIGSEGV"_qs;
    CorpusResult refused = made(102, CorpusStatus::failed);
    refused.refused = u"No classic skin bitmaps found"_qs;
    lines += lost.toLine() + refused.toLine();
    write("r", lines + "{\"path\":\"torn");
    write("env", "{\"version\":\"9.9\",\"options\":{\"seed\":4}}");
    const QByteArray copy = "crashes/" + lost.hash.left(16).toUtf8() + "-evil | name.wsz";
    write(copy.constData(), {});
    const ProgramRun result =
        run("r --markdown r.md --json s.json --env env --sample 10 --seed 3 --crashes crashes");
    ASSERT_EQ(result.status, 0) << result.err.toStdString();

    const QJsonObject json = summary();
    EXPECT_EQ(json[u"skins"], 102);
    EXPECT_EQ(json[u"distinct"], 3);
    EXPECT_EQ(json[u"environment"][u"version"], u"9.9"_qs);
    EXPECT_EQ(json[u"status"][u"ok"][u"skins"], 80);
    EXPECT_NEAR(json[u"status"][u"partial"][u"share"].toDouble(), 20 / 102.0, 1e-9);
    const QJsonObject times{
        {u"p50"_qs, 51.5}, {u"p90"_qs, 92.5}, {u"p95"_qs, 97.5}, {u"p99"_qs, 101.5}, {u"max"_qs, 102.5}};
    EXPECT_EQ(json[u"time_ms"].toObject(), times);
    const QJsonArray fallbacks = json[u"fallbacks"].toArray();
    ASSERT_EQ(fallbacks.size(), 1);
    EXPECT_EQ(fallbacks[0][u"skins"], 100);
    EXPECT_EQ(json[u"slowest"].toArray().size(), 20);
    EXPECT_EQ(json[u"slowest"][0][u"path"], refused.path);
    EXPECT_EQ(json[u"most_memory"][0][u"path"], u"skin 001.wsz"_qs);
    EXPECT_EQ(json[u"lost"][u"crashed"][0][u"signal"], u"SIGSEGV"_qs);
    EXPECT_EQ(json[u"sample"].toArray().size(), 10);

    const QStringList markdown = QString::fromUtf8(read(path("r.md"))).split(u'\n');
    for (const char *line :
         {"| version | 9.9 |", "| options seed | 4 |", "| ok | 80 | 78.43 % |",
          "| 20 | 19.61 % | Missing main.bmp |", "| 1 | 0.98 % | No classic skin bitmaps found |",
          "| time in ms | 51.5 | 92.5 | 97.5 | 101.5 | 102.5 |"})
        EXPECT_TRUE(markdown.contains(QLatin1String(line))) << line;
    const QString crash = u"| evil \\| name.wsz | SIGSEGV | "_qs + lost.hash + u" | "_qs +
                          lost.hash.left(16) + u"-evil \\| name.wsz |  |"_qs;
    EXPECT_TRUE(markdown.contains(crash));
    EXPECT_EQ(
        markdown.filter(u"|  | ok | skin"_qs).size() + markdown.filter(u"|  | partial | skin"_qs).size(), 10);
}

TEST_F(CorpusReportTest, SaysWhatIsAmiss) {
    write("good", made(1, CorpusStatus::ok).toLine());
    write("mixed", "nonsense\n" + made(1, CorpusStatus::ok).toLine() + "{}\n");
    write("empty", {});
    write("env", "[]");
    const std::pair<const char *, const char *> rows[] = {
        {"nowhere --markdown m --json j", "Could not read nowhere: No such file or directory"},
        {"empty --markdown m --json j", "empty holds no results"},
        {"good --markdown m --json j --env env", "Could not read env: it is not a JSON object"},
        {"good --markdown no/m --json j", "Could not write no/m: No such file or directory"},
        {"mixed --markdown m --json s.json", "2 lines of mixed are not results"},
    };
    for (const auto &[arguments, sentence] : rows) {
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.status, 1) << arguments;
        EXPECT_EQ(result.err, QLatin1String(sentence) + u'\n') << arguments;
    }
    EXPECT_EQ(summary()[u"malformed_lines"], 2) << "written all the same";
    EXPECT_EQ(run("good --markdown m").status, 2);
}
