#pragma once

#include "MusicBackendKit/MusicBackendError.h"

/// The failures of a Music Assistant library that are its own, with their sentences. Any thread.
namespace vantor::MusicAssistantBackendErrors {

/// Where the user finds the settings of the servers.
enum class SettingsPage { musicAssistant, library };

// Why there can be no connection.
[[nodiscard]] MusicBackendError noServer(SettingsPage page);
[[nodiscard]] MusicBackendError noServerReachable();
[[nodiscard]] MusicBackendError noToken(SettingsPage page);
[[nodiscard]] MusicBackendError unreadableToken();

// Of this computer as a player.
[[nodiscard]] MusicBackendError localPlayerOff();
[[nodiscard]] MusicBackendError localPlayerComing();
[[nodiscard]] MusicBackendError localPlayerAway();

// Of requests.
[[nodiscard]] MusicBackendError requestFailed();
[[nodiscard]] MusicBackendError notPermitted();
/// More than the server takes in one message.
[[nodiscard]] MusicBackendError tooLarge();
[[nodiscard]] MusicBackendError unreadableAnswer();
[[nodiscard]] MusicBackendError noArtwork();
[[nodiscard]] MusicBackendError artworkSizeRefused();
[[nodiscard]] MusicBackendError newPlaylistWithoutName();
[[nodiscard]] MusicBackendError playlistWithoutName();
[[nodiscard]] MusicBackendError builtInRename();
[[nodiscard]] MusicBackendError builtInDelete();
[[nodiscard]] MusicBackendError readOnlyPlaylist(const QString &name);
[[nodiscard]] MusicBackendError emptyPlaylistFile();
[[nodiscard]] MusicBackendError reorderingUnsupported();
[[nodiscard]] MusicBackendError emptyQueue();
[[nodiscard]] MusicBackendError unusableQueue();
[[nodiscard]] MusicBackendError notInLibrary();

} // namespace vantor::MusicAssistantBackendErrors
