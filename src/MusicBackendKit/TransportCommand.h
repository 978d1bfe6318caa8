#pragma once

#include <QtGlobal>

namespace vantor {

/// What can be told to an output. A value; any thread.
struct TransportCommand {
    enum class Kind {
        seek,
        setVolume,
        setBalance,
        setShuffle,
        setRepeat,
        play,
        pause,
        togglePlayPause,
        stop,
        next,
        previous,
    };
    Kind kind = Kind::stop;
    double value = 0;  ///< of `seek` in seconds, of `setVolume` 0…1, of `setBalance` −1…1
    bool isOn = false; ///< of `setShuffle` and `setRepeat`

    [[nodiscard]] static TransportCommand seek(double seconds) { return {Kind::seek, seconds}; }
    [[nodiscard]] static TransportCommand setVolume(double volume) { return {Kind::setVolume, volume}; }
    [[nodiscard]] static TransportCommand setBalance(double balance) { return {Kind::setBalance, balance}; }
    [[nodiscard]] static TransportCommand setShuffle(bool isOn) { return {Kind::setShuffle, 0, isOn}; }
    [[nodiscard]] static TransportCommand setRepeat(bool isOn) { return {Kind::setRepeat, 0, isOn}; }
    [[nodiscard]] static TransportCommand play() { return {Kind::play}; }
    [[nodiscard]] static TransportCommand pause() { return {Kind::pause}; }
    [[nodiscard]] static TransportCommand togglePlayPause() { return {Kind::togglePlayPause}; }
    [[nodiscard]] static TransportCommand stop() { return {Kind::stop}; }
    [[nodiscard]] static TransportCommand next() { return {Kind::next}; }
    [[nodiscard]] static TransportCommand previous() { return {Kind::previous}; }

    bool operator==(const TransportCommand &) const = default;
};

[[nodiscard]] size_t qHash(const TransportCommand &command, size_t seed = 0) noexcept;

} // namespace vantor
