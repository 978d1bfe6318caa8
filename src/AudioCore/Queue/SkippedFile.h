#pragma once

#include <QString>
#include <QUrl>

namespace vantor {

/// A file that was not added to the queue.
struct SkippedFile {
    QUrl url;
    QString reason; ///< a sentence for the user

    /// As people call it: without its folder, or the whole address.
    [[nodiscard]] QString name() const { return url.isLocalFile() ? url.fileName() : url.toDisplayString(); }

    bool operator==(const SkippedFile &) const = default;
};

} // namespace vantor
