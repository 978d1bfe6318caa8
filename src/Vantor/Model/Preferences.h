#pragma once

#include <QObject>
#include <QString>

class QSettings;

namespace vantor {

/// What the user has chosen once and for all, as far as nothing else keeps it. Every change is kept at once.
/// Main thread. Borrows the settings.
class Preferences : public QObject {
    Q_OBJECT

  public:
    explicit Preferences(QSettings &settings) : m_settings(settings) {}

    /// Where the user's music is; empty when none was chosen.
    [[nodiscard]] QString libraryFolder() const;
    void setLibraryFolder(const QString &path);

    /// A start goes on with what played when the program was closed.
    [[nodiscard]] bool resumesOnStart() const;
    void setResumesOnStart(bool resumes);

    /// Whether the online museum shows skins that are not for everybody's eyes.
    [[nodiscard]] bool showsNSFWMuseumSkins() const;
    void setShowsNSFWMuseumSkins(bool shows);

    [[nodiscard]] bool wasWelcomed() const;
    void setWelcomed();

  Q_SIGNALS:
    void libraryFolderChanged();
    void showsNSFWMuseumSkinsChanged();

  private:
    QSettings &m_settings;
};

} // namespace vantor
