#pragma once

#include <QSet>
#include <QString>

#include <optional>

namespace vantor {

/// Something that music can play on: this computer, or a speaker of the source. A value; any thread.
struct OutputDevice {
    struct ID {
        QString rawValue;

        bool operator==(const ID &) const = default;
    };
    enum class Kind { thisMac, remote };

    ID id;
    QString name;
    Kind kind = Kind::remote;
    bool isAvailable = true;
    bool isGroup = false;
    std::optional<QSet<ID>> groupableWith; ///< absent when grouping is not offered

    [[nodiscard]] static ID thisMacID();
    /// The local output.
    [[nodiscard]] static OutputDevice thisMac();

    bool operator==(const OutputDevice &) const = default;
};

/// What can be done to the sound of an output.
struct OutputControls {
    bool canSetVolume = false;
    std::optional<bool> isMuted; ///< none when it cannot be muted

    bool operator==(const OutputControls &) const = default;
};

[[nodiscard]] size_t qHash(const OutputDevice::ID &id, size_t seed = 0) noexcept;
[[nodiscard]] size_t qHash(const OutputDevice &device, size_t seed = 0) noexcept;

} // namespace vantor
