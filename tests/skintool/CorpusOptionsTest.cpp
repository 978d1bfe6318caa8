#include "skintool/CorpusOptions.h"

#include "skintool/SkintoolOptions.h"

#include <gtest/gtest.h>

using namespace vantor;

namespace {

QStringList words(const char *line) {
    return QString::fromLatin1(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

template <typename Options>
QString complaint(const char *line) {
    try {
        (void)Options::parse(words(line));
        return u"none"_qs;
    } catch (const SkintoolOptions::UsageError &error) {
        return error.description();
    }
}

} // namespace

TEST(CorpusOptionsTest, TakesOptionsInAnyOrderAndTheLaterOfTwo) {
    const CorpusOptions plain{.folder = u"in"_qs, .out = u"o"_qs};
    CorpusOptions full = plain;
    full.resume = true;
    full.timeoutSeconds = 86'400;
    full.maxMemoryMiB = 16;
    full.sample = 3;
    full.seed = INT64_MAX;
    full.manifest = u"m"_qs;
    EXPECT_EQ(CorpusOptions::parse(words("in --out o")), plain);
    EXPECT_EQ(CorpusOptions::parse(words("--sample 9 --out x --seed 9223372036854775807 --manifest m in "
                                         "--timeout 86400 --max-memory 16 --resume --out o --sample 3")),
              full);
    const CorpusReportOptions report{
        .results = u"r"_qs, .markdown = u"m"_qs, .json = u"j"_qs, .sample = 5, .seed = 0, .crashes = u"c"_qs};
    EXPECT_EQ(CorpusReportOptions::parse(words("--json j --crashes c r --sample 5 --seed 0 --markdown m")),
              report);
}

TEST(CorpusOptionsTest, RefusesWithTheFirstComplaint) {
    const std::pair<const char *, const char *> rows[] = {
        {"", "missing <dir>"},
        {"a b --out o", "only one <dir> is accepted"},
        {"a", "missing --out <dir>"},
        {"a --out", "--out needs a folder"},
        {"a --out --resume", "--out needs a folder"},
        {"a --out o --verbose", "unknown option: --verbose"},
        {"a --out o --timeout 0", "--timeout needs an integer from 1 to 86400"},
        {"a --out o --timeout 86401", "--timeout needs an integer from 1 to 86400"},
        {"a --out o --timeout 1.5", "--timeout needs an integer from 1 to 86400"},
        {"a --out o --max-memory 15", "--max-memory needs an integer from 16 to 1048576"},
        {"a --out o --sample 0", "--sample needs an integer from 1 to 10000000"},
        {"a --out o --seed -1", "--seed needs an integer of 0 or more"},
        {"a --out o --seed 9223372036854775808", "--seed needs an integer of 0 or more"},
        {"a --manifest", "--manifest needs a file"},
        {"--timeout x --bogus", "--timeout needs an integer from 1 to 86400"},
    };
    for (const auto &[line, expected] : rows)
        EXPECT_EQ(complaint<CorpusOptions>(line), QLatin1String(expected)) << line;
    const std::pair<const char *, const char *> reportRows[] = {
        {"--markdown m --json j", "missing <results.jsonl>"},
        {"r --json j", "missing --markdown <report.md>"},
        {"r --markdown m", "missing --json <summary.json>"},
        {"r --markdown m --json j --env", "--env needs a file"},
        {"r --markdown m --json j --resume", "unknown option: --resume"},
    };
    for (const auto &[line, expected] : reportRows)
        EXPECT_EQ(complaint<CorpusReportOptions>(line), QLatin1String(expected)) << line;
}
