#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace vantor {

/// Failures of the queue file and of playlist files.
class LocalPlaybackError : public std::exception {
  public:
    enum class Case {
        unknownSourceKind, ///< an item of the queue file that is not played from a plain file
        queueTooLarge,
        queueWrite,
        playlistTooLarge,
        playlistWrite,
    };

    [[nodiscard]] static LocalPlaybackError unknownSourceKind();
    [[nodiscard]] static LocalPlaybackError queueTooLarge();
    /// `reason`: the system's own words.
    [[nodiscard]] static LocalPlaybackError queueWrite(const QString &reason);
    [[nodiscard]] static LocalPlaybackError playlistTooLarge();
    [[nodiscard]] static LocalPlaybackError playlistWrite(const QString &reason);

    [[nodiscard]] Case errorCase() const { return m_case; }
    /// The sentence for the user.
    [[nodiscard]] QString description() const;
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const LocalPlaybackError &other) const {
        return m_case == other.m_case && m_reason == other.m_reason;
    }

  private:
    explicit LocalPlaybackError(Case errorCase, const QString &reason = {});

    Case m_case;
    QString m_reason;
    QByteArray m_what;
};

} // namespace vantor
