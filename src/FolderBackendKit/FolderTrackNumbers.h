#pragma once

#include <QString>

#include <optional>

namespace vantor {

struct FileMetadata;

/// Track and disc numbers of a file. Any thread.
struct FolderTrackNumbers {
    std::optional<int> track;
    std::optional<int> disc;

    /// "3/12" is 3; none for what is no number.
    [[nodiscard]] static std::optional<int> parse(const QString &text);
    /// From the tags.
    [[nodiscard]] static FolderTrackNumbers read(const FileMetadata &metadata);

    struct Stem {
        QString title;
        std::optional<int> track;

        bool operator==(const Stem &) const = default;
    };
    /// What the name of an untagged file says, its extension left out.
    [[nodiscard]] static Stem parseStem(const QString &stem);

    bool operator==(const FolderTrackNumbers &) const = default;
};

} // namespace vantor
