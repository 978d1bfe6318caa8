#include "skintool/CorpusOptions.h"

#include "skintool/ArgumentWalk.h"
#include "skintool/SkintoolOptions.h"

namespace vantor {

namespace {

constexpr std::int64_t maxSample = 10'000'000;

std::int64_t sampleFrom(ArgumentWalk &walk) {
    return walk.number(1, maxSample, "--sample needs an integer from 1 to 10000000");
}

std::int64_t seedFrom(ArgumentWalk &walk) {
    return walk.number(0, INT64_MAX, "--seed needs an integer of 0 or more");
}

void require(const QString &value, const char *option) {
    if (value.isEmpty())
        throw SkintoolOptions::UsageError(QStringLiteral("missing ") + QLatin1String(option));
}

} // namespace

CorpusOptions CorpusOptions::parse(const QStringList &arguments) {
    CorpusOptions result;
    const std::vector<ArgumentWalk::Option> known{
        {"--out", [&](ArgumentWalk &walk) { result.out = walk.value("--out needs a folder"); }},
        {"--resume", [&](ArgumentWalk &) { result.resume = true; }},
        {"--timeout",
         [&](ArgumentWalk &walk) {
             result.timeoutSeconds = walk.number(1, 86'400, "--timeout needs an integer from 1 to 86400");
         }},
        {"--max-memory",
         [&](ArgumentWalk &walk) {
             result.maxMemoryMiB =
                 walk.number(16, 1'048'576, "--max-memory needs an integer from 16 to 1048576");
         }},
        {"--sample", [&](ArgumentWalk &walk) { result.sample = sampleFrom(walk); }},
        {"--seed", [&](ArgumentWalk &walk) { result.seed = seedFrom(walk); }},
        {"--manifest", [&](ArgumentWalk &walk) { result.manifest = walk.value("--manifest needs a file"); }},
    };
    result.folder = ArgumentWalk(arguments, known).run("<dir>");
    require(result.out, "--out <dir>");
    return result;
}

CorpusReportOptions CorpusReportOptions::parse(const QStringList &arguments) {
    CorpusReportOptions result;
    const std::vector<ArgumentWalk::Option> known{
        {"--markdown",
         [&](ArgumentWalk &walk) { result.markdown = walk.value("--markdown needs an output path"); }},
        {"--json", [&](ArgumentWalk &walk) { result.json = walk.value("--json needs an output path"); }},
        {"--env", [&](ArgumentWalk &walk) { result.env = walk.value("--env needs a file"); }},
        {"--sample", [&](ArgumentWalk &walk) { result.sample = sampleFrom(walk); }},
        {"--seed", [&](ArgumentWalk &walk) { result.seed = seedFrom(walk); }},
        {"--crashes", [&](ArgumentWalk &walk) { result.crashes = walk.value("--crashes needs a folder"); }},
    };
    result.results = ArgumentWalk(arguments, known).run("<results.jsonl>");
    require(result.markdown, "--markdown <report.md>");
    require(result.json, "--json <summary.json>");
    return result;
}

} // namespace vantor
