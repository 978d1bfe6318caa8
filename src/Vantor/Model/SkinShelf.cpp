#include "Vantor/Model/SkinShelf.h"

#include <QDir>
#include <QSettings>

namespace vantor {

namespace {

constexpr qsizetype recentCount = 8;
const QString lastKey = QStringLiteral("skin");
const QString recentKey = QStringLiteral("skins.recent");
const QString folderKey = QStringLiteral("SkinsFolderPath");

} // namespace

bool isSkin(const QUrl &url) {
    const QFileInfo file(url.toLocalFile());
    if (!file.isDir())
        return file.suffix().compare(QLatin1String("wsz"), Qt::CaseInsensitive) == 0;
    const QDir folder(file.filePath());
    return !folder.entryList({QStringLiteral("main.bmp"), QStringLiteral("main.png")}, QDir::Files).isEmpty();
}

QUrl SkinShelf::lastWorn() const {
    const QString path = m_settings.value(lastKey).toString();
    return !path.isEmpty() && QFileInfo::exists(path) ? QUrl::fromLocalFile(path) : QUrl();
}

QList<QUrl> SkinShelf::recent() const {
    QList<QUrl> skins;
    for (const QString &path : m_settings.value(recentKey).toStringList().mid(0, recentCount)) {
        if (!path.isEmpty() && QFileInfo::exists(path))
            skins.append(QUrl::fromLocalFile(path));
    }
    return skins;
}

void SkinShelf::wore(const QUrl &skin) {
    const QString path = skin.toLocalFile();
    m_settings.setValue(lastKey, path);
    if (path.isEmpty())
        return;
    QStringList paths = m_settings.value(recentKey).toStringList();
    paths.removeAll(path);
    paths.prepend(path);
    m_settings.setValue(recentKey, paths.mid(0, recentCount));
}

QString SkinShelf::folder() const {
    return m_settings.value(folderKey).toString();
}

void SkinShelf::setFolder(const QString &path) {
    if (path == folder())
        return;
    m_settings.setValue(folderKey, path);
    Q_EMIT folderChanged();
}

} // namespace vantor
