#pragma once

#include <chrono>
#include <optional>

namespace vantor {

/// A value that was asked for and is shown before the server confirms it: until it does, refuses, or lets too
/// much time pass.
template <typename T>
class Expected {
  public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::seconds patience{4};

    void expect(const T &value) {
        m_value = value;
        m_until = Clock::now() + patience;
    }
    void forget() { m_value.reset(); }
    /// What is expected, as long as it is.
    [[nodiscard]] std::optional<T> value() const {
        return m_value && Clock::now() < m_until ? m_value : std::nullopt;
    }

  private:
    std::optional<T> m_value;
    Clock::time_point m_until;
};

} // namespace vantor
