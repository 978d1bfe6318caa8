#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace vantor {

/// Failures of the museum and of its downloads.
class MuseumError : public std::exception {
  public:
    enum class Case { http, graphQL, offline, decoding, checksumMismatch, tooLarge, noFolder, notSaved };

    [[nodiscard]] static MuseumError http(int status);
    /// `message`: the museum's own words, which are cut when they are long.
    [[nodiscard]] static MuseumError graphQL(const QString &message);
    [[nodiscard]] static MuseumError offline() { return MuseumError(Case::offline); }
    [[nodiscard]] static MuseumError decoding() { return MuseumError(Case::decoding); }
    [[nodiscard]] static MuseumError checksumMismatch() { return MuseumError(Case::checksumMismatch); }
    [[nodiscard]] static MuseumError tooLarge() { return MuseumError(Case::tooLarge); }
    [[nodiscard]] static MuseumError noFolder() { return MuseumError(Case::noFolder); }
    /// The skins folder does not take the file. `message`: the system's own words.
    [[nodiscard]] static MuseumError notSaved(const QString &message);

    [[nodiscard]] Case errorCase() const { return m_case; }
    /// The sentence for the user.
    [[nodiscard]] QString description() const;
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const MuseumError &other) const {
        return m_case == other.m_case && m_status == other.m_status && m_message == other.m_message;
    }

  private:
    explicit MuseumError(Case errorCase, int status = 0, const QString &message = {});

    Case m_case;
    int m_status;
    QString m_message;
    QByteArray m_what;
};

} // namespace vantor
