#pragma once

#include "MusicAssistantKit/Backend/Items/MADecoding_p.h"
#include "MusicAssistantKit/Backend/LibraryMapping.h"

#include <QCoroFuture>
#include <QCoroTask>
#include <QtConcurrentRun>

namespace vantor {

/// The entries of an array that can be read.
template <typename Record>
QList<Record> decodedEntries(const MAJSON &list, Record (*decode)(const MAReader &)) {
    QList<Record> records = readableEntries(list, decode);
    if constexpr (std::is_same_v<Record, LibraryTrack>)
        malibrary::shareTexts(records);
    return records;
}

/// The same on a thread of its own, unless there are so few that they take less than a millisecond.
template <typename Record>
QCoro::Task<QList<Record>> decodedAside(MAJSON list, Record (*decode)(const MAReader &)) {
    constexpr qsizetype mostHere = 32;
    if (list.size() <= mostHere)
        co_return decodedEntries(list, decode);
    const auto future = QtConcurrent::run(&decodedEntries<Record>, list, decode);
    const QList<Record> records = co_await future;
    co_return records;
}

} // namespace vantor
