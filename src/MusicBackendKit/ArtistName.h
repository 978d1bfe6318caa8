#pragma once

#include <QString>

/// When two ways of writing an artist's name mean the same artist. Pure functions.
namespace vantor::ArtistName {

/// "Unknown Artist"
[[nodiscard]] QString unknown();
/// Single spaces between the words, none around them, and no semicolons at the end.
[[nodiscard]] QString clean(const QString &name);
/// As clean(), or unknown() for nothing.
[[nodiscard]] QString display(const QString &name);
/// Equal for the same artist: without regard to case, to the width of letters, and to "and" or "&". Accents
/// count. Empty when there is no name, and never ArtistGroup::unknownID().
[[nodiscard]] QString key(const QString &name);

} // namespace vantor::ArtistName
