#pragma once

#include "skintool/CorpusResult.h"

#include <chrono>
#include <cstdio>
#include <map>

namespace vantor {

/// "1 ok, 2 partial, …": those that occur.
[[nodiscard]] QString corpusCounts(const std::map<CorpusStatus, std::int64_t> &counts);

/// How far a run is, on standard error: a line that is rewritten on a terminal, else one now and then.
class CorpusProgress {
  public:
    /// `before`: how many of the `total` skins earlier runs have done.
    CorpusProgress(std::int64_t total, std::int64_t before);

    /// Says something if it is time to.
    void update(const std::map<CorpusStatus, std::int64_t> &counts, std::int64_t done);
    /// A line of its own.
    void say(const QString &line);
    /// Takes the rewritten line away.
    void end();

  private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] QString line(const std::map<CorpusStatus, std::int64_t> &counts, std::int64_t done) const;

    const bool m_isTerminal;
    const std::int64_t m_total;
    const std::int64_t m_before;
    const Clock::time_point m_start = Clock::now();
    Clock::time_point m_last = m_start;
};

} // namespace vantor
