#include "Platform/TextDecoding.h"

#include "Platform/Windows1252.h"

#include <QUtf8StringView>

namespace vantor::TextDecoding {

std::optional<QString> utf8(QByteArrayView bytes) {
    if (!QUtf8StringView(bytes.data(), bytes.size()).isValidUtf8())
        return std::nullopt;
    return QString::fromUtf8(bytes);
}

QString lenient(QByteArrayView bytes) {
    if (auto text = utf8(bytes))
        return *text;
    if (auto text = Windows1252::decode(bytes))
        return *text;
    return QString::fromLatin1(bytes);
}

} // namespace vantor::TextDecoding
