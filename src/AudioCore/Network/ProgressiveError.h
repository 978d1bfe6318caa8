#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace vantor {

/// Why music that is played while it downloads does not play.
class ProgressiveError : public std::exception {
  public:
    enum class Case {
        notStreamable,     ///< what its format wants first comes last, and the server only sends it all
        cannotOpen,        ///< not an audio file
        readFailure,       ///< the server does not give it, or not all of it
        formatUnsupported, ///< an audio file of a kind that cannot be decoded
    };

    [[nodiscard]] static ProgressiveError notStreamable() { return ProgressiveError(Case::notStreamable); }
    [[nodiscard]] static ProgressiveError cannotOpen() { return ProgressiveError(Case::cannotOpen); }
    /// `reason`: for the log.
    [[nodiscard]] static ProgressiveError readFailure(const QString &reason = {}) {
        return ProgressiveError(Case::readFailure, reason);
    }
    [[nodiscard]] static ProgressiveError formatUnsupported() {
        return ProgressiveError(Case::formatUnsupported);
    }

    [[nodiscard]] Case errorCase() const { return m_case; }
    /// The sentence for the user.
    [[nodiscard]] QString description() const;
    /// The same and the reason.
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const ProgressiveError &other) const { return m_case == other.m_case; }

  private:
    explicit ProgressiveError(Case errorCase, const QString &reason = {});

    Case m_case;
    QByteArray m_what;
};

} // namespace vantor
