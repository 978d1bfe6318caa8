#pragma once

#include <QByteArray>

#include <chrono>
#include <optional>
#include <set>

namespace vantor {

/// The changes that are yet to be told, and when. One thread.
class PendingChanges {
  public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t maxFolders = 256; ///< beyond, it is everything

    PendingChanges(std::chrono::milliseconds quiet, std::chrono::milliseconds longest)
        : m_quiet(quiet), m_longest(longest) {}

    void add(const QByteArray &folder) {
        note();
        m_folders.insert(folder);
        if (m_folders.size() > maxFolders)
            m_isEverything = true;
        if (m_isEverything)
            m_folders.clear();
    }
    void addEverything() {
        note();
        m_isEverything = true;
        m_folders.clear();
    }

    /// None while there is nothing to tell.
    [[nodiscard]] std::optional<Clock::time_point> due() const {
        if (m_folders.empty() && !m_isEverything)
            return std::nullopt;
        return std::min(m_last + m_quiet, m_first + m_longest);
    }

    /// Empty for everything.
    [[nodiscard]] std::set<QByteArray> take() {
        m_isEverything = false;
        return std::exchange(m_folders, {});
    }

  private:
    void note() {
        m_last = Clock::now();
        if (!due())
            m_first = m_last;
    }

    const std::chrono::milliseconds m_quiet;
    const std::chrono::milliseconds m_longest;
    std::set<QByteArray> m_folders;
    bool m_isEverything = false;
    Clock::time_point m_first;
    Clock::time_point m_last;
};

} // namespace vantor
