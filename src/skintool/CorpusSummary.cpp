#include "skintool/CorpusSummary.h"

#include "skintool/CorpusSample.h"

#include <QJsonArray>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace vantor {

namespace {

constexpr qsizetype maxText = 200;

QString shortened(const QString &text) {
    return text.size() <= maxText ? text : text.left(maxText) + QChar(u'…');
}

template <typename Value>
std::vector<CorpusResult> top(const std::vector<CorpusResult> &results, Value value) {
    std::vector<CorpusResult> list(std::min(results.size(), CorpusSummary::maxExtremes));
    std::ranges::partial_sort_copy(results, list, [&](const CorpusResult &a, const CorpusResult &b) {
        return std::pair(-value(a), a.path) < std::pair(-value(b), b.path);
    });
    return list;
}

QJsonArray json(const std::vector<CorpusMessageCount> &messages) {
    QJsonArray array;
    for (const auto &[message, skins] : messages)
        array.append(QJsonObject{{QStringLiteral("message"), message},
                                 {QStringLiteral("skins"), static_cast<qint64>(skins)}});
    return array;
}

QJsonObject json(const CorpusPercentiles &values) {
    return {{QStringLiteral("p50"), values.p50},
            {QStringLiteral("p90"), values.p90},
            {QStringLiteral("p95"), values.p95},
            {QStringLiteral("p99"), values.p99},
            {QStringLiteral("max"), values.max}};
}

QJsonArray json(const std::vector<CorpusResult> &results) {
    QJsonArray array;
    for (const CorpusResult &result : results) {
        QJsonObject object = result.toObject();
        object.remove(QStringLiteral("warnings"));
        object.remove(QStringLiteral("fallbacks"));
        array.append(object);
    }
    return array;
}

} // namespace

void CorpusTally::add(const QStringList &messages) {
    QSet<QString> seen;
    for (const QString &message : messages)
        seen.insert(normalized(message));
    for (const QString &message : seen) {
        const bool isKept = m_counts.size() < maxMessages || m_counts.contains(message);
        ++m_counts[isKept ? message : QLatin1String(others)];
    }
}

std::vector<CorpusMessageCount> CorpusTally::commonest(std::size_t most) const {
    std::vector<CorpusMessageCount> list;
    for (auto it = m_counts.cbegin(); it != m_counts.cend(); ++it)
        list.push_back({it.key(), *it});
    std::ranges::sort(list, {},
                      [](const CorpusMessageCount &row) { return std::pair(-row.skins, row.message); });
    list.resize(std::min(list.size(), most));
    return list;
}

QString CorpusTally::normalized(const QString &message) {
    // From the first quote to the last, for what is quoted may hold quotes.
    static const QRegularExpression quoted(QStringLiteral("'.*'"),
                                           QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression file(QStringLiteral("\\S*/\\S+|\\S+\\.(?:wsz|zip)\\b"),
                                         QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression number(QStringLiteral("(?<![\\w.])\\d+(?!\\w)"));
    QString text = message;
    text.replace(quoted, QStringLiteral("'…'"));
    text.truncate(10 * maxText); // before the searches that look at every word
    text.replace(file, QStringLiteral("FILE")).replace(number, QStringLiteral("N"));
    return shortened(text);
}

CorpusPercentiles CorpusPercentiles::of(std::vector<double> values) {
    if (values.empty())
        return {};
    std::ranges::sort(values);
    const auto at = [&](double share) {
        const double rank = std::ceil(share * static_cast<double>(values.size()));
        return values[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
    };
    return {at(0.5), at(0.9), at(0.95), at(0.99), values.back()};
}

void CorpusSummarizer::add(const CorpusResult &result) {
    ++m_summary.total;
    ++m_summary.counts[result.status];
    m_warnings.add(result.warnings);
    m_fallbacks.add(result.fallbacks);
    if (result.status == CorpusStatus::failed)
        m_refusals.add({result.refused});
    CorpusResult kept = result;
    kept.warnings.clear();
    kept.fallbacks.clear();
    kept.refused = shortened(kept.refused);
    if (isLost(kept.status) && m_summary.lost[kept.status].size() < CorpusSummary::maxLost)
        m_summary.lost[kept.status].push_back(kept);
    m_results.push_back(std::move(kept));
}

CorpusSummary CorpusSummarizer::summary(std::int64_t sample, std::int64_t seed) const {
    CorpusSummary result = m_summary;
    result.warnings = m_warnings.commonest(CorpusSummary::maxMessages);
    result.fallbacks = m_fallbacks.commonest(CorpusSummary::maxMessages);
    result.refusals = m_refusals.commonest(CorpusSummary::maxMessages);
    std::vector<double> times, peaks;
    std::vector<CorpusResult> loaded;
    QSet<QString> hashes;
    for (const CorpusResult &skin : m_results) {
        times.push_back(skin.milliseconds);
        peaks.push_back(static_cast<double>(skin.peakKiB));
        if (skin.status == CorpusStatus::ok || skin.status == CorpusStatus::partial)
            loaded.push_back(skin);
        hashes.insert(skin.hash.isEmpty() ? skin.path : skin.hash);
    }
    result.distinct = hashes.size();
    result.milliseconds = CorpusPercentiles::of(std::move(times));
    result.peakKiB = CorpusPercentiles::of(std::move(peaks));
    result.slowest = top(m_results, [](const CorpusResult &skin) { return skin.milliseconds; });
    result.largest = top(m_results, [](const CorpusResult &skin) { return skin.peakKiB; });
    result.seed = seed;
    result.sample = CorpusSample::drawn(loaded, sample, seed, &CorpusResult::path);
    std::ranges::sort(result.sample, {}, &CorpusResult::path);
    return result;
}

QJsonObject CorpusSummary::toJson() const {
    QJsonObject statuses;
    QJsonObject lostSkins;
    for (const CorpusStatus status : allCorpusStatuses) {
        const auto found = counts.find(status);
        const auto skins = found == counts.end() ? 0 : static_cast<qint64>(found->second);
        const double share = total > 0 ? static_cast<double>(skins) / static_cast<double>(total) : 0;
        statuses.insert(rawValue(status),
                        QJsonObject{{QStringLiteral("skins"), skins}, {QStringLiteral("share"), share}});
        if (const auto list = lost.find(status); isLost(status))
            lostSkins.insert(rawValue(status), list == lost.end() ? QJsonArray() : json(list->second));
    }
    return {{QStringLiteral("environment"), environment.isEmpty() ? QJsonValue() : QJsonValue(environment)},
            {QStringLiteral("skins"), static_cast<qint64>(total)},
            {QStringLiteral("distinct"), static_cast<qint64>(distinct)},
            {QStringLiteral("malformed_lines"), static_cast<qint64>(malformed)},
            {QStringLiteral("status"), statuses},
            {QStringLiteral("time_ms"), json(milliseconds)},
            {QStringLiteral("peak_kib"), json(peakKiB)},
            {QStringLiteral("warnings"), json(warnings)},
            {QStringLiteral("fallbacks"), json(fallbacks)},
            {QStringLiteral("refusals"), json(refusals)},
            {QStringLiteral("slowest"), json(slowest)},
            {QStringLiteral("most_memory"), json(largest)},
            {QStringLiteral("lost"), lostSkins},
            {QStringLiteral("sample_seed"), static_cast<qint64>(seed)},
            {QStringLiteral("sample"), json(sample)}};
}

} // namespace vantor
