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

    static constexpr std::size_t maxFolders = 256; ///< beyond, the root stands for them all

    PendingChanges(const QByteArray &root, std::chrono::milliseconds quiet, std::chrono::milliseconds longest)
        : m_root(root), m_quiet(quiet), m_longest(longest) {}

    void add(const QByteArray &folder, Clock::time_point now) {
        if (m_folders.empty())
            m_first = now;
        m_last = now;
        if (m_folders.contains(m_root))
            return;
        if (folder == m_root || m_folders.size() >= maxFolders)
            m_folders = {m_root};
        else
            m_folders.insert(folder);
    }

    /// None while there is nothing to tell.
    [[nodiscard]] std::optional<Clock::time_point> due() const {
        if (m_folders.empty())
            return std::nullopt;
        return std::min(m_last + m_quiet, m_first + m_longest);
    }

    [[nodiscard]] std::set<QByteArray> take() { return std::exchange(m_folders, {}); }

  private:
    const QByteArray m_root;
    const std::chrono::milliseconds m_quiet;
    const std::chrono::milliseconds m_longest;
    std::set<QByteArray> m_folders;
    Clock::time_point m_first;
    Clock::time_point m_last;
};

} // namespace vantor
