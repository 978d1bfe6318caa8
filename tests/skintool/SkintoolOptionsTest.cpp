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
    using State = SkintoolOptions::State;
    const std::pair<const char *, SkintoolOptions> rows[] = {
        {"a.wsz", {.input = text("a.wsz")}},
        {"a.wsz --verbose", {.verbose = true, .input = text("a.wsz")}},
        {"--png o --state webamp --scale 3 --no-region s",
         {.png = text("o"), .state = State::webamp, .scale = 3, .noRegion = true, .input = text("s")}},
        {"s --scale +2 --png a --png b --state webamp --state idle",
         {.png = text("b"), .state = State::idle, .scale = 2, .input = text("s")}},
        {"--png o --compare refs s", {.png = text("o"), .compare = text("refs"), .input = text("s")}},
        {"--png o --compare refs --scale 2 --scale 1 s",
         {.png = text("o"), .compare = text("refs"), .input = text("s")}},
    };
    for (const auto &[arguments, expected] : rows)
        EXPECT_EQ(SkintoolOptions::parse(words(arguments)), expected) << arguments;
}

TEST(SkintoolOptionsTest, RefusesWithTheFirstComplaint) {
    const char *const needsPng = "--state, --scale, --compare and --no-region need --png";
    const char *const badScale = "--scale needs an integer of 1 or more";
    const char *const badState = "--state must be webamp or idle";
    const std::pair<const char *, const char *> rows[] = {
        {"", "missing <skin.wsz | folder>"},
        {"a b", "only one <skin.wsz | folder> is accepted"},
        {"a --bogus", "unknown option: --bogus"},
        {"a -", "unknown option: -"},
        {"--png -v a", "--png needs an output path"},
        {"a --png o --compare --state", "--compare needs a folder"},
        {"a --png o --state Webamp", badState},
        {"a --png o --state -v", badState},
        {"a --png o --scale", badScale},
        {"a --png o --scale 0", badScale},
        {"a --png o --scale two", badScale},
        {"a --png o --scale 2.0", badScale},
        {"a --png o --scale 99999999999999999999", badScale},
        {"a --png o --compare r --scale 2", "--compare needs --scale 1 (the references are 1x)"},
        {"a --state idle", needsPng},
        {"a --scale 1", needsPng},
        {"a --no-region", needsPng},
        {"--no-region", "missing <skin.wsz | folder>"},
        {"--scale x --bogus", badScale},
    };
    for (const auto &[arguments, expected] : rows) {
        try {
            (void)SkintoolOptions::parse(words(arguments));
            ADD_FAILURE() << arguments;
        } catch (const SkintoolOptions::UsageError &error) {
            EXPECT_EQ(error.description(), text(expected)) << arguments;
        }
    }
}
