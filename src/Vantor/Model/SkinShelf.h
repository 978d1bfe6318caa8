#pragma once

#include <QList>
#include <QUrl>

class QSettings;

namespace vantor {

/// The skins at hand: those worn lately and those in the user's skins folder. Main thread. Borrows the
/// settings.
class SkinShelf {
  public:
    explicit SkinShelf(QSettings &settings) : m_settings(settings) {}

    /// The skin last worn; empty for the default one or when it has gone.
    [[nodiscard]] QUrl lastWorn() const;
    /// The latest first; only those that are still there.
    [[nodiscard]] QList<QUrl> recent() const;
    /// Remembers what is worn now; empty for the default skin.
    void wore(const QUrl &skin);

    /// Empty when none was chosen.
    [[nodiscard]] QString folder() const;
    void setFolder(const QString &path);
    /// The archives and skin folders right inside it, by name, as many as a menu can bear.
    [[nodiscard]] QList<QUrl> inFolder() const;

  private:
    QSettings &m_settings;
};

/// Whether a folder or file looks like a skin, by its name and what it holds.
[[nodiscard]] bool isSkin(const QUrl &url);

} // namespace vantor
