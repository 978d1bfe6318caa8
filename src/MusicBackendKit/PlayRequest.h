#pragma once

#include "MusicBackendKit/LibraryItems.h"

#include <QList>
#include <QSet>

namespace vantor {

/// What becomes of an output's queue when items are played.
struct PlayMode {
    enum class Kind { replace, append };
    Kind kind = Kind::replace;
    int startIndex = 0; ///< of `replace`: the item that plays first

    [[nodiscard]] static PlayMode replace(int startIndex) { return {Kind::replace, startIndex}; }
    [[nodiscard]] static PlayMode append() { return {Kind::append, 0}; }

    bool operator==(const PlayMode &) const = default;
};

/// What a browser asks to be played. A value; any thread.
struct PlayRequest {
    QList<MediaID> items;
    PlayMode mode;

    [[nodiscard]] static PlayRequest play(const MediaID &album);
    [[nodiscard]] static PlayRequest append(const MediaID &album);

    /// The selected tracks of a list, in the list's order, or all without a selection; none when that leaves
    /// nothing. In the list of an album a single selected track plays the whole album from there on.
    [[nodiscard]] static std::optional<PlayRequest> play(const std::optional<QSet<MediaID>> &selection,
                                                         const QList<LibraryTrack> &tracks,
                                                         const std::optional<MediaID> &album);
    /// A whole list, from one of its tracks on; of a very long one what follows the track.
    [[nodiscard]] static PlayRequest playFrom(qsizetype place, const QList<LibraryTrack> &tracks);
    /// The longest list that playFrom() takes as a whole.
    static constexpr qsizetype longestList = 2'000;
    [[nodiscard]] static std::optional<PlayRequest> append(const std::optional<QSet<MediaID>> &selection,
                                                           const QList<LibraryTrack> &tracks);

    bool operator==(const PlayRequest &) const = default;
};

[[nodiscard]] size_t qHash(const PlayMode &mode, size_t seed = 0) noexcept;
[[nodiscard]] size_t qHash(const PlayRequest &request, size_t seed = 0) noexcept;

} // namespace vantor
