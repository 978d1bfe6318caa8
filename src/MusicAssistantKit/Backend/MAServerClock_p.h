#pragma once

#include <QDateTime>

#include <algorithm>
#include <limits>
#include <optional>

namespace vantor {

/// Since 1970, of this computer's clock.
inline double secondsNow() {
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
}

/// How far the server's clock is ahead of ours, as far as its words tell. A value. Instants are seconds since
/// 1970, `there` of the server's clock and otherwise of ours.
///
/// What the server tells has happened on its side already, so that its clock is ahead by the difference at
/// least: the newest of its instants tells most. What it says the time is gives both limits.
class MAServerClock {
  public:
    /// An instant of the past, told `now`.
    void hear(double there, double now) {
        constexpr double worthIt = 0.05; // or everything would move a little with every word
        if (there - now > m_heard + worthIt)
            m_heard = there - now;
    }
    /// The time of the server's clock in whole seconds, at a moment between two.
    void read(double there, double from, double to) {
        m_least = there - to;
        m_most = std::max(there + 1 - from, m_least);
    }
    /// What was told at `told`: never later than that, and just then when the instant makes no sense.
    [[nodiscard]] double here(const std::optional<double> &there, double told) const {
        constexpr double oldest = 3600;
        const double ahead = std::clamp(m_heard, m_least, m_most);
        const double instant = there ? *there - ahead : told;
        return instant <= told && told - instant <= oldest ? instant : told;
    }

    bool operator==(const MAServerClock &) const = default;

  private:
    static constexpr double unknown = std::numeric_limits<double>::infinity();
    double m_heard = -unknown;
    double m_least = -unknown;
    double m_most = unknown;
};

} // namespace vantor
