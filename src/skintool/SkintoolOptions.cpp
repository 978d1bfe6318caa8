#include "skintool/SkintoolOptions.h"

#include "skintool/ArgumentWalk.h"

#include <climits>
#include <cstdint>

namespace vantor {

namespace {

using UsageError = SkintoolOptions::UsageError;

SkintoolOptions::State stateFrom(ArgumentWalk &walk) {
    constexpr auto complaint = "--state must be webamp or idle";
    const auto state = skintoolStateFromRawValue(walk.value(complaint));
    if (!state)
        throw UsageError(QString::fromLatin1(complaint));
    return *state;
}

// What exceeds an int is as good as its largest value.
int scaleFrom(ArgumentWalk &walk) {
    return static_cast<int>(
        std::min<std::int64_t>(walk.number(1, INT64_MAX, "--scale needs an integer of 1 or more"), INT_MAX));
}

void check(const SkintoolOptions &options, bool scaleGiven) {
    const bool needsPng = options.state || scaleGiven || options.compare || options.noRegion;
    if (options.png && options.compare && options.scale != 1)
        throw UsageError(QStringLiteral("--compare needs --scale 1 (the references are 1x)"));
    if (!options.png && needsPng)
        throw UsageError(QStringLiteral("--state, --scale, --compare and --no-region need --png"));
}

} // namespace

std::optional<SkintoolOptions::State> skintoolStateFromRawValue(const QString &text) {
    if (text == QStringLiteral("webamp"))
        return SkintoolOptions::State::webamp;
    if (text == QStringLiteral("idle"))
        return SkintoolOptions::State::idle;
    return std::nullopt;
}

SkintoolOptions SkintoolOptions::parse(const QStringList &arguments) {
    SkintoolOptions result;
    bool scaleGiven = false;
    const std::vector<ArgumentWalk::Option> known{
        {"-v", [&](ArgumentWalk &) { result.verbose = true; }},
        {"--verbose", [&](ArgumentWalk &) { result.verbose = true; }},
        {"--no-region", [&](ArgumentWalk &) { result.noRegion = true; }},
        {"--png", [&](ArgumentWalk &walk) { result.png = walk.value("--png needs an output path"); }},
        {"--compare", [&](ArgumentWalk &walk) { result.compare = walk.value("--compare needs a folder"); }},
        {"--state", [&](ArgumentWalk &walk) { result.state = stateFrom(walk); }},
        {"--scale",
         [&](ArgumentWalk &walk) {
             result.scale = scaleFrom(walk);
             scaleGiven = true;
         }},
    };
    result.input = ArgumentWalk(arguments, known).run("<skin.wsz | folder>");
    check(result, scaleGiven);
    return result;
}

} // namespace vantor
