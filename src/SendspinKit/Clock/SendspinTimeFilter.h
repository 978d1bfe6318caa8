#pragma once

#include <cstdint>
#include <limits>

namespace vantor {

/// Maps the server's clock to the local one: a Kalman filter of two states, the offset of the clocks and its
/// drift. A value of plain numbers without pointers: a copy is a snapshot that another thread may use for as
/// long as it likes.
///
/// All instants are microseconds. The offset is the server's clock less the client's.
class SendspinTimeFilter {
  public:
    struct Config {
        double processStdDev = 0.0;        ///< process noise of the offset, per microsecond gone by
        double driftProcessStdDev = 1e-11; ///< process noise of the drift
        double forgetFactor = 2.0;         ///< how much the covariance grows on an outlier; applied squared
        double adaptiveCutoff = 3.0;       ///< an outlier is off by more than this many times the error
        int minSamples = 100;              ///< that many are taken before anything counts as an outlier
        double driftSignificanceThreshold = 2.0; ///< in standard deviations of the drift
        double maxErrorScale = 0.5; ///< the standard deviation of a measurement, in its maximal errors

        bool operator==(const Config &) const = default;
    };

    SendspinTimeFilter();
    explicit SendspinTimeFilter(const Config &config);

    /// A measured offset that is wrong by `maxError` at most, as of the client's instant `timeAdded`. Without
    /// effect when that is not later than lastUpdate() or `maxError` is below 1.
    void update(double measurement, std::int64_t maxError, std::int64_t timeAdded);
    /// As new, with the same configuration.
    void reset();

    /// What the server's clock shows when the local one shows `client`.
    [[nodiscard]] std::int64_t computeServerTime(std::int64_t client) const;
    /// The reverse. Instants beyond 64 bits become the nearest that fits.
    [[nodiscard]] std::int64_t computeClientTime(std::int64_t server) const;
    /// The standard deviation of the offset; the largest number before the first sample.
    [[nodiscard]] std::int64_t error() const;

    [[nodiscard]] std::int64_t lastUpdate() const { return m_lastUpdate; } ///< the client's clock; 0: never
    [[nodiscard]] double offset() const { return m_offset; }
    [[nodiscard]] double drift() const { return m_drift; } ///< microseconds in a microsecond
    /// Whether the drift is significant enough for the conversions to go by it.
    [[nodiscard]] bool useDrift() const { return m_useDrift; }
    [[nodiscard]] int sampleCount() const { return m_sampleCount; } ///< counted up to `minSamples`

    bool operator==(const SendspinTimeFilter &) const = default;

  private:
    void correct(double measurement, std::int64_t maxError, double elapsed, double variance);

    Config m_config;
    double m_processVariance = 0;
    double m_driftProcessVariance = 0;
    std::int64_t m_lastUpdate = 0;
    double m_offset = 0;
    double m_drift = 0;
    double m_offsetVariance = std::numeric_limits<double>::infinity();
    double m_covariance = 0; ///< of the offset and the drift
    double m_driftVariance = 0;
    int m_sampleCount = 0;
    bool m_useDrift = false;
};

} // namespace vantor
