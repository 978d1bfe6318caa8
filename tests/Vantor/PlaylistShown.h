#pragma once

#include "Vantor/Model/PlaylistModel.h"

namespace vantor {

/// The rows of a playlist in one word, the selected ones in brackets. By default the titles.
template <class Name = QString (*)(const Track &)>
[[nodiscard]] std::string
shownRows(const PlaylistModel &playlist, Name name = [](const Track &track) { return track.title; }) {
    QString text;
    for (int row = 0; row < playlist.count(); ++row) {
        const QString called = name(*playlist.track(row));
        text += playlist.isSelected(row) ? QLatin1Char('[') + called + QLatin1Char(']') : called;
    }
    return text.toStdString();
}

} // namespace vantor
