#include "PlayerFixture.h"

#include <QDataStream>

#include <cmath>

namespace vantor {

QUrl PlayerFixture::writeTone(const char *name, int seconds) const {
    constexpr quint32 rate = 8000;
    const quint32 bytes = rate * 2 * static_cast<quint32>(seconds);
    QByteArray wav;
    QDataStream stream(&wav, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(36 + bytes);
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << quint16(1) << rate << quint32(rate * 2) << quint16(2)
           << quint16(16);
    stream.writeRawData("data", 4);
    stream << bytes;
    for (quint32 i = 0; i < bytes / 2; ++i)
        stream << static_cast<qint16>(8000 * std::sin(i * 0.35));
    return writeFile(name, wav);
}

} // namespace vantor
