#pragma once

#include <QFlags>

namespace vantor {

enum class MusicBackendCapability {
    favorites = 1 << 0,
    playlistEditing = 1 << 1,
    search = 1 << 2,
    playlists = 1 << 3,
    artwork = 1 << 4,
    localOutput = 1 << 5,
    remoteOutputs = 1 << 6,
    recommendations = 1 << 7,
    radio = 1 << 8,
    queueEditing = 1 << 9,
};
/// What a music source offers; everything else is hidden from the user.
Q_DECLARE_FLAGS(MusicBackendCapabilities, MusicBackendCapability)
Q_DECLARE_OPERATORS_FOR_FLAGS(MusicBackendCapabilities)

} // namespace vantor
