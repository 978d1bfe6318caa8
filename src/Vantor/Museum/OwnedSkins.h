#pragma once

#include <QFuture>
#include <QHash>
#include <QObject>
#include <QUrl>

#include <cstdint>
#include <optional>

namespace vantor {

class SkinLibraryModel;
class SkinSwitcher;

/// Which of the museum's skins the user has, by their MD5, as the index of the skins folder knows it. Main
/// thread; nothing blocks. Borrows both.
class OwnedSkins : public QObject {
    Q_OBJECT

  public:
    struct Skin {
        std::optional<std::int64_t> id; ///< none until the index knows it
        QUrl file;
        bool isBroken = false; ///< and cannot be worn
    };

    OwnedSkins(SkinLibraryModel &library, SkinSwitcher &switcher, QObject *parent = nullptr);

    /// Asks about these from now on; changed() follows.
    void watch(const QStringList &md5s);
    /// One that has just come, which the index will know in a moment.
    void note(const QString &md5, const QUrl &file);
    /// None for a skin that the user does not have, or that is not watched.
    [[nodiscard]] const Skin *find(const QString &md5) const;
    /// Where the skin's file is, asked right now; an empty address when there is none. For any MD5.
    [[nodiscard]] QFuture<QUrl> locate(const QString &md5);

  Q_SIGNALS:
    void changed();

  private:
    void ask();

    SkinSwitcher &m_switcher;
    QStringList m_md5s;
    QHash<QString, Skin> m_known;
    QHash<QString, QUrl> m_noted;
    bool m_isAsking = false;
    bool m_asksAgain = false;
};

} // namespace vantor
