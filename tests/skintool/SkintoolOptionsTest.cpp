#include "skintool/SkintoolOptions.h"

#include <gtest/gtest.h>

using namespace vantor;

namespace {

QStringList words(const char *line) {
    return QString::fromLatin1(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QString text(const char *latin) {
    return QString::fromLatin1(latin);
}

} // namespace

TEST(SkintoolOptionsTest, TakesOptionsInAnyOrder) {
    const struct {
        const char *arguments;
        SkintoolOptions expected;
    } rows[] = {
        {"a.wsz", {.input = text("a.wsz")}},
        {"-v a.wsz", {.verbose = true, .input = text("a.wsz")}},
        {"a.wsz --verbose", {.verbose = true, .input = text("a.wsz")}},
        {"--png o.png --state webamp --scale 3 --no-region s",
         {.png = text("o.png"),
          .state = SkintoolOptions::State::webamp,
          .scale = 3,
          .noRegion = true,
          .input = text("s")}},
        {"s --scale +2 --png a --png b --state webamp --state idle",
         {.png = text("b"), .state = SkintoolOptions::State::idle, .scale = 2, .input = text("s")}},
        {"--png o --compare refs s", {.png = text("o"), .compare = text("refs"), .input = text("s")}},
        {"--png o --compare refs --scale 1 s",
         {.png = text("o"), .compare = text("refs"), .input = text("s")}},
        {"--png o --compare refs --scale 2 --scale 1 s",
         {.png = text("o"), .compare = text("refs"), .input = text("s")}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.arguments);
        EXPECT_EQ(SkintoolOptions::parse(words(row.arguments)), row.expected);
    }
}

TEST(SkintoolOptionsTest, RefusesWithTheFirstComplaint) {
    const char *const needsPng = "--state, --scale, --compare and --no-region need --png";
    const char *const badScale = "--scale needs an integer of 1 or more";
    const char *const badState = "--state must be webamp or idle";
    const struct {
        const char *arguments;
        const char *expected;
    } rows[] = {
        {"", "missing <skin.wsz | folder>"},
        {"-v", "missing <skin.wsz | folder>"},
        {"a b", "only one <skin.wsz | folder> is accepted"},
        {"a --bogus", "unknown option: --bogus"},
        {"a -", "unknown option: -"},
        {"a --png", "--png needs an output path"},
        {"--png -v a", "--png needs an output path"},
        {"a --png o --compare", "--compare needs a folder"},
        {"a --png o --compare --state", "--compare needs a folder"},
        {"a --png o --state Webamp", badState},
        {"a --png o --state", badState},
        {"a --png o --state -v", badState},
        {"a --png o --scale", badScale},
        {"a --png o --scale 0", badScale},
        {"a --png o --scale -1", badScale},
        {"a --png o --scale two", badScale},
        {"a --png o --scale 2.0", badScale},
        {"a --png o --scale 2x", badScale},
        {"a --png o --scale +", badScale},
        {"a --png o --scale 99999999999999999999", badScale},
        {"a --png o --compare r --scale 2", "--compare needs --scale 1 (the references are 1x)"},
        {"a --state idle", needsPng},
        {"a --scale 1", needsPng},
        {"a --compare r --scale 2", needsPng},
        {"a --no-region", needsPng},
        {"--no-region", "missing <skin.wsz | folder>"},
        {"--scale x --bogus", badScale},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.arguments);
        try {
            (void)SkintoolOptions::parse(words(row.arguments));
            ADD_FAILURE() << "accepted";
        } catch (const SkintoolOptions::UsageError &error) {
            EXPECT_EQ(error.description(), text(row.expected));
        }
    }
    EXPECT_THROW(
        (void)SkintoolOptions::parse({text("a"), text("--png"), text("o"), text("--scale"), text(" 2")}),
        SkintoolOptions::UsageError);
}
