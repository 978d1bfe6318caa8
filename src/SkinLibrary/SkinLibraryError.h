#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <exception>

namespace vantor {

/// Failures of the skin index and of the passes that fill it.
class SkinLibraryError : public std::exception {
  public:
    enum class Case { sqlite, incompatibleDatabase, folderUnreadable, passAlreadyRunning };

    /// `code`: SQLite's result code; `message`: its own words.
    [[nodiscard]] static SkinLibraryError sqlite(std::int32_t code, const QString &message);
    /// What a question fails with that is no longer wanted.
    [[nodiscard]] static SkinLibraryError interruption();
    [[nodiscard]] static SkinLibraryError incompatibleDatabase(std::int32_t found, std::int32_t supported);
    [[nodiscard]] static SkinLibraryError folderUnreadable(const QString &message);
    [[nodiscard]] static SkinLibraryError passAlreadyRunning();

    [[nodiscard]] Case errorCase() const { return m_case; }
    /// A query that was interrupted; nothing to tell the user.
    [[nodiscard]] bool isInterruption() const;
    /// The file is damaged or from a newer version: only an index made afresh will help.
    [[nodiscard]] bool isUnusableIndex() const;
    /// The sentence for the user.
    [[nodiscard]] QString description() const;
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const SkinLibraryError &other) const {
        return m_case == other.m_case && m_code == other.m_code && m_supported == other.m_supported &&
               m_message == other.m_message;
    }

  private:
    explicit SkinLibraryError(Case errorCase, std::int32_t code = 0, std::int32_t supported = 0,
                              const QString &message = {});

    Case m_case;
    std::int32_t m_code;      ///< SQLite's, or the version found
    std::int32_t m_supported; ///< the version that this build reads
    QString m_message;
    QByteArray m_what;
};

} // namespace vantor
