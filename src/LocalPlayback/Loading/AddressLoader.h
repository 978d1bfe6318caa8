#pragma once

#include "LocalPlayback/Playlists/PlaylistFile.h"

#include <stop_token>

/// What is behind http and https addresses. Worker threads.
namespace vantor::AddressLoader {

inline constexpr qsizetype maxListBytes = 1 << 20;
inline constexpr size_t maxListEntries = 10'000;
inline constexpr int maxLists = 20; ///< fetched for one address

[[nodiscard]] bool isAddress(const QUrl &url);

/// The things to play behind an address: itself, or what the playlist there names, with the lists that that
/// names in their places. Whether it is a list its ending says; where that says nothing the server is asked
/// if `asks` is set, and the entry is music if not, and if there is no answer: whether it plays is the
/// player's to tell. Waits for servers, until told to stop. What was left out is in `skipped` with a sentence
/// that says why.
[[nodiscard]] PlaylistFile::Contents load(const PlaylistEntry &address, bool asks,
                                          const std::stop_token &stop);

/// The last part of the address without an audio file's ending, else the host.
[[nodiscard]] QString titleOf(const QUrl &address);

} // namespace vantor::AddressLoader
