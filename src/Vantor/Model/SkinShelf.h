#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

class QSettings;

namespace vantor {

/// The skins worn lately, and where the user keeps skins. Main thread. Borrows the settings.
class SkinShelf : public QObject {
    Q_OBJECT

  public:
    explicit SkinShelf(QSettings &settings, QObject *parent = nullptr)
        : QObject(parent), m_settings(settings) {}

    /// The skin last worn; empty for the default one or when it has gone.
    [[nodiscard]] QUrl lastWorn() const;
    /// The latest first; only those that are still there.
    [[nodiscard]] QList<QUrl> recent() const;
    /// Remembers what is worn now; empty for the default skin.
    void wore(const QUrl &skin);

    /// Empty when none was chosen.
    [[nodiscard]] QString folder() const;
    void setFolder(const QString &path);

  Q_SIGNALS:
    void folderChanged();

  private:
    QSettings &m_settings;
};

/// Whether a folder or file looks like a skin, by its name and what it holds.
[[nodiscard]] bool isSkin(const QUrl &url);

} // namespace vantor
