#pragma once

#include "LibraryBrowser/LibraryBrowser.h"

#include <variant>
#include <vector>

namespace vantor {

/// Somewhere in the library that one can go to and come back to.
struct LibraryPlace {
    struct Search {
        QString text;
        bool operator==(const Search &) const = default;
    };
    struct Section {
        bool operator==(const Section &) const = default;
    };

    LibrarySection section = LibrarySection::albums; ///< from where it was gone to
    std::variant<Section, ArtistGroup, LibraryAlbum, LibraryPlaylist, Search> what{};

    bool operator==(const LibraryPlace &) const = default;
};

/// The places that were gone to, and where one is among them. A value.
class LibraryHistory {
  public:
    explicit LibraryHistory(const LibraryPlace &start) : m_places{start} {}

    [[nodiscard]] const LibraryPlace &current() const { return m_places[m_current]; }
    [[nodiscard]] bool canGoBack() const { return m_current > 0; }
    [[nodiscard]] bool canGoForward() const { return m_current + 1 < m_places.size(); }
    void back() { m_current -= canGoBack() ? 1 : 0; }
    void forward() { m_current += canGoForward() ? 1 : 0; }
    /// What lay ahead is forgotten.
    void go(const LibraryPlace &place) {
        if (place == current())
            return;
        m_places.resize(m_current + 1, place);
        if (m_places.size() >= most)
            m_places.erase(m_places.begin());
        m_places.push_back(place);
        m_current = m_places.size() - 1;
    }
    void replaceCurrent(const LibraryPlace &place) { m_places[m_current] = place; }
    /// A playlist has another name now.
    void rename(const MediaID &playlist, const QString &name) {
        for (LibraryPlace &place : m_places) {
            if (auto *const known = std::get_if<LibraryPlaylist>(&place.what); known && known->id == playlist)
                known->name = name;
        }
    }
    /// A playlist is gone: its places lead to where it was found.
    void forget(const MediaID &playlist) {
        for (LibraryPlace &place : m_places) {
            if (const auto *const known = std::get_if<LibraryPlaylist>(&place.what);
                known && known->id == playlist)
                place.what = LibraryPlace::Section();
        }
    }

  private:
    static constexpr std::size_t most = 200;

    std::vector<LibraryPlace> m_places;
    std::size_t m_current = 0;
};

} // namespace vantor
