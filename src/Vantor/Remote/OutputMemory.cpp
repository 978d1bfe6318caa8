#include "Vantor/Remote/OutputMemory.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace vantor {

namespace {

const QString settingsKey = QStringLiteral("library.outputs");
constexpr int version = 1;
constexpr qsizetype mostSources = 50; // of which some have been gone for years

QJsonObject stored(const QSettings &settings) {
    const QByteArray bytes = settings.value(settingsKey).toString().toUtf8();
    const QJsonObject all = QJsonDocument::fromJson(bytes).object();
    return all[QLatin1String("version")].toInt() == version ? all[QLatin1String("outputs")].toObject()
                                                            : QJsonObject();
}

} // namespace

std::optional<OutputMemory::Entry> OutputMemory::of(const QString &sourceID) const {
    const QJsonObject entry = stored(m_settings)[sourceID].toObject();
    const QString id = entry[QLatin1String("id")].toString();
    if (id.isEmpty())
        return std::nullopt;
    return Entry{{id}, entry[QLatin1String("name")].toString()};
}

void OutputMemory::remember(const QString &sourceID, const Entry &entry) {
    QJsonObject outputs = stored(m_settings);
    if (outputs.size() >= mostSources && !outputs.contains(sourceID))
        outputs.erase(outputs.begin());
    outputs[sourceID] =
        QJsonObject{{QStringLiteral("id"), entry.id.rawValue}, {QStringLiteral("name"), entry.name}};
    const QJsonObject all{{QStringLiteral("outputs"), outputs}, {QStringLiteral("version"), version}};
    m_settings.setValue(settingsKey, QString::fromUtf8(QJsonDocument(all).toJson(QJsonDocument::Compact)));
}

} // namespace vantor
