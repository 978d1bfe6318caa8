#pragma once

#include <QString>
#include <QUrl>

namespace vantor {

/// A file that was not added to the queue.
struct SkippedFile {
    QUrl url;
    QString reason; ///< a sentence for the user

    bool operator==(const SkippedFile &) const = default;
};

} // namespace vantor
