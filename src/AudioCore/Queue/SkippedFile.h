#pragma once

#include <QString>
#include <QUrl>

namespace vantor {

/// A file that was not added to the queue.
struct SkippedFile {
    QUrl url;
    QString reason;         ///< a sentence for the user
    bool isPartial = false; ///< a list that was taken in but for the part that the reason tells of

    /// As people call it: without its folder, or the whole address.
    [[nodiscard]] QString name() const { return url.isLocalFile() ? url.fileName() : url.toDisplayString(); }

    bool operator==(const SkippedFile &) const = default;
};

} // namespace vantor
