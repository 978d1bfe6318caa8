#include "Vantor/Model/TrackFinder.h"

#include "MusicBackendKit/MarqueeText.h"
#include "Platform/TextFolding.h"

#include <QStringMatcher>

#include <numeric>

namespace vantor {

namespace {

constexpr qsizetype longestField = TrackFinder::longestField;

QString searchText(const Track &track) {
    QString text = track.artist.left(longestField) + QLatin1Char('\n') + track.title.left(longestField);
    if (track.album)
        text += QLatin1Char('\n') + track.album->left(longestField);
    if (const QUrl *file = std::get_if<QUrl>(&track.source))
        text += QLatin1Char('\n') + file->fileName().left(longestField);
    return text;
}

} // namespace

QString TrackFinder::nameOf(const Track &track) {
    return MarqueeText::name(track.artist.left(longestField), track.title.left(longestField));
}

TrackFinder::TrackFinder(const std::vector<Track> &tracks) : m_found(tracks.size()) {
    m_texts.reserve(tracks.size());
    for (const Track &track : tracks)
        m_texts.push_back(TextFolding::folded(searchText(track)));
    std::iota(m_found.begin(), m_found.end(), 0);
}

const std::vector<int> &TrackFinder::find(const QString &query) {
    const QString wanted = TextFolding::folded(query.simplified());
    if (!wanted.startsWith(m_query)) {
        m_found.resize(m_texts.size());
        std::iota(m_found.begin(), m_found.end(), 0);
    }
    m_query = wanted;
    for (const QString &word : wanted.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QStringMatcher matcher(word);
        std::erase_if(m_found,
                      [&](int row) { return matcher.indexIn(m_texts[static_cast<std::size_t>(row)]) < 0; });
    }
    return m_found;
}

} // namespace vantor
