#pragma once

#include "skintool/CorpusResult.h"

#include <QHash>
#include <QJsonObject>

#include <map>
#include <vector>

namespace vantor {

/// A message and how many skins have it.
struct CorpusMessageCount {
    QString message;
    std::int64_t skins = 0;

    bool operator==(const CorpusMessageCount &) const = default;
};

/// Messages of many skins, counted with what is only one skin's own taken out. Holds a bounded number of
/// different ones.
class CorpusTally {
  public:
    static constexpr qsizetype maxMessages = 10'000;
    static constexpr auto others = "(other messages)";

    /// A message that occurs several times in one skin counts once.
    void add(const QStringList &messages);
    /// The commonest first.
    [[nodiscard]] std::vector<CorpusMessageCount> commonest(std::size_t most) const;

    /// Quoted values become '…', numbers that stand alone N, paths and archives' names FILE. At most 200
    /// characters.
    [[nodiscard]] static QString normalized(const QString &message);

  private:
    QHash<QString, std::int64_t> m_counts;
};

/// Nearest rank: the smallest value that this share of all does not exceed.
struct CorpusPercentiles {
    double p50 = 0, p90 = 0, p95 = 0, p99 = 0, max = 0;

    [[nodiscard]] static CorpusPercentiles of(std::vector<double> values);
    bool operator==(const CorpusPercentiles &) const = default;
};

/// A run's results in short. Lists are bounded; see the constants.
struct CorpusSummary {
    static constexpr std::size_t maxMessages = 50;
    static constexpr std::size_t maxExtremes = 20;
    static constexpr std::size_t maxLost = 1'000;

    QJsonObject environment; ///< env.json, empty when it was not given
    std::int64_t total = 0;
    std::int64_t distinct = 0;  ///< skins with different bytes
    std::int64_t malformed = 0; ///< lines that are no result
    std::map<CorpusStatus, std::int64_t> counts;
    std::vector<CorpusMessageCount> warnings, fallbacks, refusals;
    CorpusPercentiles milliseconds, peakKiB;
    std::vector<CorpusResult> slowest, largest;             ///< without their messages
    std::map<CorpusStatus, std::vector<CorpusResult>> lost; ///< crashed, timeout, out of memory
    std::int64_t seed = 1;
    std::vector<CorpusResult> sample; ///< of the skins that loaded, to be looked at

    [[nodiscard]] QJsonObject toJson() const;
};

/// Takes results one by one and keeps of each only what the summary needs.
class CorpusSummarizer {
  public:
    void add(const CorpusResult &result);
    void addMalformed() { ++m_summary.malformed; }

    [[nodiscard]] CorpusSummary summary(std::int64_t sample, std::int64_t seed) const;

  private:
    CorpusSummary m_summary;
    CorpusTally m_warnings, m_fallbacks, m_refusals;
    std::vector<CorpusResult> m_results;
};

} // namespace vantor
