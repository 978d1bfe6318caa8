#include "MusicBackendKit/MediaIDTransfer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMimeData>

namespace vantor {

QByteArray MediaIDTransfer::toJson() const {
    QJsonArray array;
    for (const MediaID &id : ids)
        array.append(id.toJson());
    const QJsonObject object{{QStringLiteral("ids"), array}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<MediaIDTransfer> MediaIDTransfer::fromJson(const QByteArray &bytes) {
    if (bytes.size() > maxBytes)
        return std::nullopt;
    const QJsonValue array = QJsonDocument::fromJson(bytes).object().value(QLatin1String("ids"));
    if (!array.isArray())
        return std::nullopt;
    MediaIDTransfer transfer;
    for (const QJsonValue &value : array.toArray()) {
        const std::optional<MediaID> id = MediaID::fromJson(value.toObject());
        if (!id)
            return std::nullopt;
        transfer.ids.append(*id);
    }
    return transfer;
}

void MediaIDTransfer::write(QMimeData &data) const {
    data.setData(QLatin1String(contentType), toJson());
}

std::optional<MediaIDTransfer> MediaIDTransfer::read(const QMimeData &data) {
    return fromJson(data.data(QLatin1String(contentType)));
}

} // namespace vantor
