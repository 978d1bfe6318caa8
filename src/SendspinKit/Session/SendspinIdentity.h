#pragma once

#include <QString>

class QSettings;

namespace vantor {

/// Who this player is to servers. A value.
struct SendspinIdentity {
    QString clientID; ///< the same in every run, so that a server recognises the player
    QString name;     ///< what people see: "Vantor (" and the computer's name ")"

    /// The ID is kept in `defaults` under "sendspin.clientID"; the first time one is made and stored.
    [[nodiscard]] static SendspinIdentity load(QSettings &defaults, const QString &hostName);

    bool operator==(const SendspinIdentity &) const = default;
};

} // namespace vantor
