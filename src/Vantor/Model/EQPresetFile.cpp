#include "Vantor/Model/EQPresetFile.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

namespace vantor::EQPresetFile {

namespace {

constexpr QLatin1StringView versionKey("version");
constexpr QLatin1StringView presetsKey("presets");
constexpr int currentVersion = 1;
constexpr qint64 maxBytes = 8'388'608; // several times as much as the most presets take

} // namespace

std::vector<EQPreset> load(const QString &path) {
    QFile file(path);
    if (!QFileInfo(file).isFile() || file.size() > maxBytes || !file.open(QIODevice::ReadOnly))
        return {};
    const QJsonObject object = QJsonDocument::fromJson(file.read(maxBytes)).object();
    std::vector<EQPreset> presets;
    if (object.value(versionKey) != currentVersion)
        return presets;
    for (const QJsonValue stored : object.value(presetsKey).toArray()) {
        const std::optional<EQPreset> preset = EQPreset::fromJson(stored.toObject());
        if (preset && presets.size() < maxPresets)
            presets.push_back(*preset);
    }
    return presets;
}

bool save(const QString &path, std::span<const EQPreset> presets) {
    QJsonArray stored;
    for (const EQPreset &preset : presets)
        stored.append(preset.toJson());
    const QJsonObject object{{versionKey, currentVersion}, {presetsKey, stored}};
    QDir().mkpath(QFileInfo(path).absolutePath()); // a failure shows when the file is opened
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) &&
           file.write(QJsonDocument(object).toJson(QJsonDocument::Compact)) >= 0 && file.commit();
}

} // namespace vantor::EQPresetFile
