#pragma once

#include "LocalPlayback/Queue/QueueSnapshot.h"

#include <QUrl>

namespace vantor {

/// Keeps the play queue in one JSON file. A value; any thread.
class QueueStore {
  public:
    struct Loaded {
        QueueSnapshot snapshot;
        bool operator==(const Loaded &) const = default;
    };

    explicit QueueStore(QUrl fileURL) : m_fileURL(std::move(fileURL)) {}

    /// "queue.json" in the program's data folder, or in that of another bundle identifier.
    [[nodiscard]] static QUrl defaultURL(const QString &bundleIdentifier = {});

    [[nodiscard]] const QUrl &fileURL() const { return m_fileURL; }

    /// Replaces the file in one step, making its folder when there is none; whatever goes wrong, the previous
    /// file stays. Throws LocalPlaybackError.
    void save(const QueueSnapshot &snapshot) const;

    /// None without a readable file. Items that cannot be decoded are left out and logged; the same item
    /// stays current.
    [[nodiscard]] std::optional<QueueSnapshot> load() const;
    [[nodiscard]] std::optional<Loaded> loadQueue() const;

  private:
    QUrl m_fileURL;
};

} // namespace vantor
