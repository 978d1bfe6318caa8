#pragma once

#include "MusicAssistantKit/Wire/MusicAssistantToken.h"
#include "SendspinKit/Wire/SendspinStream.h"

#include <QUrl>

namespace vantor {

/// What a server is told of this program.
struct SendspinDeviceInfo {
    QString manufacturer;
    QString productName;
    QString softwareVersion;

    bool operator==(const SendspinDeviceInfo &) const = default;
};

/// Where to connect, and as what. A value; its description never shows the token.
struct SendspinConnectionConfiguration {
    /// Of the server; http or https. The Sendspin endpoint is "/sendspin" under it.
    QUrl baseURL;
    /// Signs in before the first message. Empty: the endpoint is the Sendspin server itself, which knows no
    /// sign-in.
    MusicAssistantToken token{QString()};
    QString clientID;
    QString name;
    SendspinDeviceInfo deviceInfo;
    SendspinAudioFormat format; ///< what this player would like best; everything it can decode is offered too
    qint64 bufferCapacity = 0;  ///< bytes of coded sound that the player holds at most
    int requiredLeadTimeMs = 0; ///< from the start of a stream to its first chunk that can still be played
    int minBufferMs = 0;        ///< what should always be buffered

    [[nodiscard]] static QString description();

    bool operator==(const SendspinConnectionConfiguration &) const = default;
};

QDebug operator<<(QDebug debug, const SendspinConnectionConfiguration &configuration);

} // namespace vantor
