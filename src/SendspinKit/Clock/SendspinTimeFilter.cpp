#include "SendspinKit/Clock/SendspinTimeFilter.h"

#include <cmath>

namespace vantor {

namespace {

/// 2^62: far beyond every instant, and fits. What is no number becomes one, too.
constexpr double largest = 4611686018427387904.0;

std::int64_t rounded(double instant) {
    return std::llround(std::min(largest, std::max(-largest, instant)));
}

double squared(double value) {
    return value * value;
}

} // namespace

SendspinTimeFilter::SendspinTimeFilter() : SendspinTimeFilter(Config()) {}

SendspinTimeFilter::SendspinTimeFilter(const Config &config)
    : m_config(config), m_processVariance(squared(config.processStdDev)),
      m_driftProcessVariance(squared(config.driftProcessStdDev)) {}

void SendspinTimeFilter::reset() {
    *this = SendspinTimeFilter(m_config);
}

void SendspinTimeFilter::update(double measurement, std::int64_t maxError, std::int64_t timeAdded) {
    if (timeAdded <= m_lastUpdate || maxError < 1)
        return;
    const auto elapsed = static_cast<double>(timeAdded - m_lastUpdate);
    m_lastUpdate = timeAdded;
    const double variance = squared(m_config.maxErrorScale * static_cast<double>(maxError));
    if (m_sampleCount == 0) {
        m_offset = measurement;
        m_offsetVariance = variance;
        m_drift = 0;
        m_sampleCount = 1;
    } else if (m_sampleCount == 1) {
        m_drift = (measurement - m_offset) / elapsed;
        m_driftVariance = (variance + m_offsetVariance) / squared(elapsed);
        m_offset = measurement;
        m_offsetVariance = variance;
        m_sampleCount = 2;
    } else {
        correct(measurement, maxError, elapsed, variance);
    }
    m_useDrift = squared(m_drift) > squared(m_config.driftSignificanceThreshold) * m_driftVariance;
}

void SendspinTimeFilter::correct(double measurement, std::int64_t maxError, double elapsed, double variance) {
    const double predicted = m_offset + m_drift * elapsed;
    double offsetVariance = m_offsetVariance + 2 * m_covariance * elapsed +
                            m_driftVariance * squared(elapsed) + m_processVariance * elapsed;
    double covariance = m_covariance + m_driftVariance * elapsed;
    double driftVariance = m_driftVariance + m_driftProcessVariance * elapsed;
    const double residual = measurement - predicted;

    if (m_sampleCount < m_config.minSamples) {
        ++m_sampleCount;
    } else if (std::abs(residual) > m_config.adaptiveCutoff * static_cast<double>(maxError)) {
        // The clocks or the way between them have changed: what was known counts for less.
        const double inflation = squared(m_config.forgetFactor);
        offsetVariance *= inflation;
        covariance *= inflation;
        driftVariance *= inflation;
    }

    const double offsetGain = offsetVariance / (offsetVariance + variance);
    const double driftGain = covariance / (offsetVariance + variance);
    m_offset = predicted + offsetGain * residual;
    m_drift += driftGain * residual;
    m_driftVariance = driftVariance - driftGain * covariance;
    m_covariance = covariance - driftGain * offsetVariance;
    m_offsetVariance = offsetVariance - offsetGain * offsetVariance;
}

std::int64_t SendspinTimeFilter::computeServerTime(std::int64_t client) const {
    const double sinceUpdate = static_cast<double>(client) - static_cast<double>(m_lastUpdate);
    std::int64_t server = 0;
    const std::int64_t ahead = rounded(m_offset + (m_useDrift ? m_drift : 0) * sinceUpdate);
    if (__builtin_add_overflow(client, ahead, &server))
        return client < 0 ? std::numeric_limits<std::int64_t>::min()
                          : std::numeric_limits<std::int64_t>::max();
    return server;
}

std::int64_t SendspinTimeFilter::computeClientTime(std::int64_t server) const {
    const double drift = m_useDrift ? m_drift : 0;
    return rounded((static_cast<double>(server) - m_offset + drift * static_cast<double>(m_lastUpdate)) /
                   (1 + drift));
}

std::int64_t SendspinTimeFilter::error() const {
    if (!std::isfinite(m_offsetVariance))
        return std::numeric_limits<std::int64_t>::max();
    return rounded(std::sqrt(m_offsetVariance));
}

} // namespace vantor
