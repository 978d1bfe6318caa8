#pragma once

#include <QFlags>

/// Of their own, because operators of ours beside everything else would hide those of Qt's keys and the like.
namespace vantor::capabilities {

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

} // namespace vantor::capabilities

namespace vantor {

using capabilities::MusicBackendCapabilities;
using capabilities::MusicBackendCapability;

} // namespace vantor
