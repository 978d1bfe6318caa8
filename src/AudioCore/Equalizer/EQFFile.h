#pragma once

#include "AudioCore/Equalizer/EQPreset.h"

#include <QByteArray>

#include <exception>

/// The classic library of equalizer presets (".eqf"): a preamble of 31 bytes and then 268 bytes for each
/// preset. Levels are stored in the 64 steps of the slider scale.
namespace vantor::EQFFile {

/// The text that every such file begins with.
inline constexpr QByteArrayView header("Winamp EQ library file v1.1");

class ParseError : public std::exception {
  public:
    enum class Case {
        invalidHeader, ///< shorter than the preamble, or without the header text
        truncated,     ///< ends inside an entry
    };

    explicit ParseError(Case errorCase) : m_case(errorCase) {}

    [[nodiscard]] Case errorCase() const { return m_case; }
    /// The sentence for the user.
    [[nodiscard]] QString description() const;
    [[nodiscard]] const char *what() const noexcept override;

  private:
    Case m_case;
};

/// The presets of a whole file, in its order. Throws ParseError; a value out of range is clamped.
[[nodiscard]] std::vector<EQPreset> parse(QByteArrayView data);

/// The bytes of a file with these presets. A name is stored in Windows-1252, cut to 256 bytes, and characters
/// outside that code page become "?".
[[nodiscard]] QByteArray serialize(std::span<const EQPreset> presets);

} // namespace vantor::EQFFile
