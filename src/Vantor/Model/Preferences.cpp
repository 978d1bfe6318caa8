#include "Vantor/Model/Preferences.h"

#include "Vantor/Model/StoredValue.h"

#include <QSettings>

namespace vantor {

namespace {

const QString libraryFolderKey = QStringLiteral("LibraryFolderPath");
const QString nsfwKey = QStringLiteral("skins.museum.nsfw");
const QString resumesKey = QStringLiteral("resumeOnStart");
const QString welcomedKey = QStringLiteral("welcomed");

} // namespace

QString Preferences::libraryFolder() const {
    return m_settings.value(libraryFolderKey).toString();
}

void Preferences::setLibraryFolder(const QString &path) {
    if (path == libraryFolder())
        return;
    m_settings.setValue(libraryFolderKey, path);
    Q_EMIT libraryFolderChanged();
}

bool Preferences::resumesOnStart() const {
    return StoredValue::boolean(m_settings, resumesKey, false);
}

void Preferences::setResumesOnStart(bool resumes) {
    m_settings.setValue(resumesKey, resumes);
}

bool Preferences::showsNSFWMuseumSkins() const {
    return StoredValue::boolean(m_settings, nsfwKey, false);
}

void Preferences::setShowsNSFWMuseumSkins(bool shows) {
    m_settings.setValue(nsfwKey, shows);
    Q_EMIT showsNSFWMuseumSkinsChanged();
}

bool Preferences::wasWelcomed() const {
    return StoredValue::boolean(m_settings, welcomedKey, false);
}

void Preferences::setWelcomed() {
    m_settings.setValue(welcomedKey, true);
}

} // namespace vantor
