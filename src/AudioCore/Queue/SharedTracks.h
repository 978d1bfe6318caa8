#pragma once

#include "AudioCore/Queue/Track.h"

#include <QSharedData>

#include <vector>

namespace vantor {

/// A list of tracks whose copies share it until one of them is edited, so that a long queue can be handed to
/// another thread at no cost. A value; any thread, each copy on one at a time.
class SharedTracks {
  public:
    SharedTracks() = default;
    explicit SharedTracks(std::vector<Track> tracks) : m_list(new List(std::move(tracks))) {}

    [[nodiscard]] const std::vector<Track> &operator*() const {
        static const std::vector<Track> none;
        return m_list ? m_list->tracks : none;
    }
    [[nodiscard]] const std::vector<Track> *operator->() const { return &**this; }

    /// The list for editing; copies it first if it is shared. Good until this object is copied.
    [[nodiscard]] std::vector<Track> &edit() {
        // With acquire: whoever has let go of it on another thread has done with reading.
        if (!m_list || m_list->ref.loadAcquire() != 1)
            m_list = new List(**this);
        return m_list->tracks;
    }

    bool operator==(const SharedTracks &other) const { return m_list == other.m_list || **this == *other; }

  private:
    struct List : QSharedData {
        explicit List(std::vector<Track> list) : tracks(std::move(list)) {}
        std::vector<Track> tracks;
    };

    QExplicitlySharedDataPointer<List> m_list; ///< null: empty
};

} // namespace vantor
