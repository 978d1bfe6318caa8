#include "Platform/NativePath.h"

namespace vantor::NativePath {

namespace {

constexpr char16_t escape = 0xDC00; ///< plus the byte

/// The length of the sound character at the front, 0 if there is none.
qsizetype characterLength(QByteArrayView bytes) {
    for (qsizetype length = 1; length <= std::min<qsizetype>(bytes.size(), 4); ++length) {
        if (bytes.first(length).isValidUtf8())
            return length;
    }
    return 0;
}

bool isEscape(QChar unit) {
    return unit.unicode() >= escape + 0x80 && unit.unicode() <= escape + 0xFF;
}

} // namespace

QString text(QByteArrayView bytes) {
    if (bytes.isValidUtf8())
        return QString::fromUtf8(bytes);
    QString result;
    while (!bytes.isEmpty()) {
        const qsizetype length = characterLength(bytes);
        if (length > 0)
            result += QString::fromUtf8(bytes.first(length));
        else
            result += QChar(static_cast<char16_t>(escape + static_cast<unsigned char>(bytes.front())));
        bytes = bytes.sliced(std::max<qsizetype>(length, 1));
    }
    return result;
}

QByteArray bytes(const QString &text) {
    if (text.isValidUtf16())
        return text.toUtf8();
    QByteArray result;
    for (qsizetype at = 0; at < text.size();) {
        const QChar unit = text[at];
        const bool isPair = unit.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
        if (isEscape(unit))
            result += static_cast<char>(unit.unicode() - escape);
        else
            result += text.mid(at, isPair ? 2 : 1).toUtf8();
        at += isPair ? 2 : 1;
    }
    return result;
}

QUrl url(const QString &text) {
    if (text.isValidUtf16())
        return QUrl::fromLocalFile(text);
    return QUrl::fromEncoded("file://" + bytes(text).toPercentEncoding("/"));
}

QString fromUrl(const QUrl &url) {
    return text(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
}

} // namespace vantor::NativePath
