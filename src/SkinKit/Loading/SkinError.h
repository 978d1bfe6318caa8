#pragma once

#include <QString>

#include <exception>

namespace vantor {

/// The only reasons to refuse a skin. Everything else is filled by a fallback and reported.
class SkinError : public std::exception {
  public:
    enum class Case { unreadableArchive, modernSkin, noBitmaps };

    /// `reason`: what the ZIP library or the file system said.
    [[nodiscard]] static SkinError unreadableArchive(const QString &reason);
    /// An unreadable archive, for want of memory to read it into.
    [[nodiscard]] static SkinError notEnoughMemory();
    [[nodiscard]] static SkinError modernSkin();
    [[nodiscard]] static SkinError noBitmaps();

    [[nodiscard]] Case errorCase() const { return m_case; }
    /// The sentence for the user.
    [[nodiscard]] QString description() const;
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

    bool operator==(const SkinError &other) const {
        return m_case == other.m_case && m_reason == other.m_reason;
    }

  private:
    explicit SkinError(Case errorCase, const QString &reason = {});

    Case m_case;
    QString m_reason;
    QByteArray m_what;
};

} // namespace vantor
