#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace vantor {

/// Failures of the playback engine that the user is told about.
class AudioCoreError : public std::exception {
  public:
    enum class Case {
        engineStart,
        unresolvableSource,
        outputDevice,
        unsupportedStreamFormat,
        openFailure, ///< not a supported audio file
        readFailure, ///< the file broke off or could not be read
    };

    /// `reason`: the sound system's own words.
    [[nodiscard]] static AudioCoreError engineStart(const QString &reason);
    [[nodiscard]] static AudioCoreError unresolvableSource();
    [[nodiscard]] static AudioCoreError outputDevice(const QString &reason);
    [[nodiscard]] static AudioCoreError unsupportedStreamFormat();
    [[nodiscard]] static AudioCoreError openFailure();
    [[nodiscard]] static AudioCoreError readFailure();

    [[nodiscard]] Case errorCase() const { return m_case; }
    /// True when no other track could play either: the player stops instead of skipping.
    [[nodiscard]] bool isFatal() const { return m_case == Case::engineStart; }
    /// The sentence for the user.
    [[nodiscard]] QString description() const;
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const AudioCoreError &other) const {
        return m_case == other.m_case && m_reason == other.m_reason;
    }

  private:
    explicit AudioCoreError(Case errorCase, const QString &reason = {});

    Case m_case;
    QString m_reason;
    QByteArray m_what;
};

} // namespace vantor
