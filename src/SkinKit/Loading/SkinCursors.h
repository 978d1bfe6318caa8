#pragma once

#include "SkinKit/Decoding/SkinCursor.h"

#include <QMap>
#include <QString>
#include <QStringList>

namespace vantor {

class SkinArchive;

/// The mouse pointers of a skin.
struct SkinCursors {
    QMap<QString, SkinCursor> cursors; ///< by upper-case name ("NORMAL", "TITLEBAR" …)
    QStringList unreadable;            ///< files that were there and did not decode ("normal.cur")

    /// The names sought, in the order in which they are looked up.
    [[nodiscard]] static const QStringList &names();
    [[nodiscard]] static SkinCursors load(const SkinArchive &archive);

    bool operator==(const SkinCursors &) const = default;
};

} // namespace vantor
