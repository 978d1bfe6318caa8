#pragma once

#include "MusicBackendKit/MediaID.h"
#include "MusicBackendKit/MusicBackendCapabilities.h"
#include "MusicBackendKit/OutputDevice.h"

#include <QByteArray>

#include <exception>

namespace vantor {

/// Failures of a music source.
class MusicBackendError : public std::exception {
  public:
    enum class Case {
        notConfigured,
        unreachable,
        notFound,
        unsupported,
        unknownOutput,
        backend,
        forbidden,
        notConnected,
        unauthorized,
    };

    // A `message` is a sentence for the user as it stands.
    [[nodiscard]] static MusicBackendError notConfigured(const QString &message);
    [[nodiscard]] static MusicBackendError unreachable(const QString &message);
    [[nodiscard]] static MusicBackendError notFound(const MediaID &id);
    [[nodiscard]] static MusicBackendError unsupported(MusicBackendCapabilities needed);
    /// With a sentence that says more.
    [[nodiscard]] static MusicBackendError unsupported(MusicBackendCapabilities needed,
                                                       const QString &message);
    [[nodiscard]] static MusicBackendError unknownOutput(const OutputDevice::ID &output);
    [[nodiscard]] static MusicBackendError backend(const QString &message);
    [[nodiscard]] static MusicBackendError forbidden(const QString &message);
    [[nodiscard]] static MusicBackendError notConnected();
    [[nodiscard]] static MusicBackendError unauthorized();

    [[nodiscard]] Case errorCase() const { return m_case; }
    /// Of `unsupported`: what the source would need.
    [[nodiscard]] MusicBackendCapabilities needed() const { return m_needed; }
    /// Of `unknownOutput`.
    [[nodiscard]] OutputDevice::ID output() const { return m_output; }
    /// The sentence for the user.
    [[nodiscard]] QString description() const { return m_description; }
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const MusicBackendError &other) const;

  private:
    MusicBackendError(Case errorCase, const QString &description);

    Case m_case;
    MusicBackendCapabilities m_needed;
    OutputDevice::ID m_output;
    QString m_description;
    QByteArray m_what;
};

} // namespace vantor
