#include "SkinLibrary/Index/SkinRecord.h"

namespace vantor {

QString rawValue(SkinStatus status) {
    switch (status) {
    case SkinStatus::ok:
        return QStringLiteral("ok");
    case SkinStatus::partial:
        return QStringLiteral("partial");
    case SkinStatus::failed:
        break;
    }
    return QStringLiteral("failed");
}

std::optional<SkinStatus> skinStatusFromRawValue(const QString &text) {
    for (const SkinStatus status : allSkinStatuses) {
        if (rawValue(status) == text)
            return status;
    }
    return std::nullopt;
}

} // namespace vantor
