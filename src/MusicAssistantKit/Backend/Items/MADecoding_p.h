#pragma once

#include "MusicAssistantKit/Wire/MAReader.h"

#include <QList>
#include <QStringList>

namespace vantor {

/// An identifier: a text, though some providers count theirs.
[[nodiscard]] inline QString identifier(const MAReader &reader, const char *name) {
    const MAReader member = reader.member(name);
    const auto number = member.value().integer();
    return number ? QString::number(*number) : member.string();
}

/// The entries of an array that can be read; none when there is no array.
template <typename Record>
[[nodiscard]] QList<Record> readableEntries(const MAJSON &json, Record (*decode)(const MAReader &)) {
    QList<Record> records;
    const QJsonArray entries = json.value().toArray();
    records.reserve(entries.size());
    for (const QJsonValue entry : entries) {
        try {
            records.append(decode(MAReader(MAJSON(entry))));
        } catch (const MADecodingError &) {
            // One that cannot be read must not hide the others.
        }
    }
    return records;
}

[[nodiscard]] inline QStringList texts(const MAJSON &json) {
    return readableEntries<QString>(json, [](const MAReader &entry) { return entry.string(); });
}

/// A record that the item may have.
template <typename Record>
[[nodiscard]] std::optional<Record> readable(const MAJSON &json, Record (*decode)(const MAReader &)) {
    if (json.kind() != MAJSON::Kind::object)
        return std::nullopt;
    try {
        return decode(MAReader(json));
    } catch (const MADecodingError &) {
        return std::nullopt;
    }
}

} // namespace vantor
