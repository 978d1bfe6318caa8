#pragma once

#include "MusicBackendKit/NowPlaying.h"

#include <QString>

#include <optional>

/// The sentences of the main window's scrolling title line. Pure functions.
namespace vantor::MarqueeText {

/// What shows while nothing is loaded.
[[nodiscard]] QString idle();
[[nodiscard]] QString buffering();
/// "Artist - Title", or the title alone when the artist is empty.
[[nodiscard]] QString name(const QString &artist, const QString &title);
/// "m:ss"; minutes may exceed 59, negative and non-finite values count as 0.
[[nodiscard]] QString time(double seconds);
/// "12. Artist - Title (3:45)"; the parts that are unknown (no number, no duration) are left out.
[[nodiscard]] QString track(const QString &artist, const QString &title, double duration,
                            std::optional<int> number);
/// What an output plays: as track(), but idle() without a title and buffering() while an item loads.
[[nodiscard]] QString display(const NowPlaying &playing, std::optional<int> number);
/// `volume` 0…1.
[[nodiscard]] QString volume(double volume);
/// `balance` −1…1.
[[nodiscard]] QString balance(double balance);
/// `fraction` 0…1 of `duration` seconds.
[[nodiscard]] QString seek(double fraction, double duration);
/// A band by its centre in Hz, without one the preamp; `gain` in decibels, shown to a tenth.
[[nodiscard]] QString equalizer(std::optional<int> bandHz, double gain);

} // namespace vantor::MarqueeText
