#include "FolderBackendKit/FolderLibrary.h"

// The search of a library: every word of the query is looked up once in the names of each kind.
namespace vantor {

namespace {

constexpr qsizetype maxWords = 16;

using Strengths = std::vector<WordIndex::Strength>;

/// A query's words, each with where it was found.
using Found = std::vector<Strengths>;

Found findAll(const QList<QByteArray> &words, const WordIndex &index) {
    Found found;
    for (const QByteArray &word : words)
        found.push_back(index.find(word));
    return found;
}

/// An item that holds every word. In the order in which it is to be listed.
struct Match {
    int score = 0; ///< negative, the lower the better
    int place = 0;

    auto operator<=>(const Match &) const = default;
};

/// What a word counts that is in the item's own name, and what it counts in that of its album or artist.
constexpr int ownWeight = 4;
/// For being named by the query and nothing else: more than words can make up for.
constexpr int wholeNameBonus = 1000;

/// `parents(place, word)` is how strongly the album and artist of an item hold a word.
template <class Parents>
std::vector<Match> matches(const Found &own, const WordIndex &names, const Parents &parents) {
    std::vector<Match> list;
    for (std::size_t place = 0; place < names.size(); ++place) {
        int score = 0;
        std::size_t owned = 0;
        std::size_t word = 0;
        for (; word < own.size(); ++word) {
            const WordIndex::Strength strength = own[word][place];
            owned += strength == WordIndex::missing ? 0 : 1;
            const int worth = strength != WordIndex::missing ? ownWeight * strength : parents(place, word);
            if (worth == 0)
                break;
            score += worth * 16;
        }
        if (word < own.size())
            continue;
        // Of equal ones, that with the fewest other words.
        const int count = std::min(names.wordCount(place), 15);
        const bool isWhole = owned == own.size() && static_cast<std::size_t>(count) == owned;
        list.push_back({count - score - (isWhole ? wholeNameBonus : 0), static_cast<int>(place)});
    }
    return list;
}

void keepBest(std::vector<Match> &list, int limit) {
    const auto count = std::min(list.size(), static_cast<std::size_t>(std::max(limit, 0)));
    std::ranges::partial_sort(list, list.begin() + static_cast<std::ptrdiff_t>(count));
    list.resize(count);
}

} // namespace

SearchResults FolderLibrary::search(const QString &text, int limit) const {
    const QList<QByteArray> all = WordIndex::words(text);
    const QList<QByteArray> words = all.first(std::min(all.size(), maxWords));
    if (words.isEmpty())
        return {};
    prepareSearch();
    const Found inArtists = findAll(words, m_artistWords);
    const Found inAlbums = findAll(words, m_albumWords);
    const Found inTracks = findAll(words, m_trackWords);
    const auto noParent = [](std::size_t, std::size_t) { return 0; };
    const auto artistOf = [&](std::size_t album, std::size_t word) {
        return static_cast<int>(inArtists[word][static_cast<std::size_t>(m_artistOf[album])]);
    };
    const Found inTrackArtists = findAll(words, m_trackArtistWords);
    const auto albumAndArtistsOf = [&](std::size_t track, std::size_t word) {
        const auto album = static_cast<std::size_t>(m_index.tracks[track].album);
        return std::max({static_cast<int>(inAlbums[word][album]), artistOf(album, word),
                         static_cast<int>(inTrackArtists[word][track])});
    };
    SearchResults results;
    auto found = matches(inArtists, m_artistWords, noParent);
    keepBest(found, limit);
    for (const Match &match : found)
        results.artists.append(m_index.artists[static_cast<std::size_t>(match.place)]);
    found = matches(inAlbums, m_albumWords, artistOf);
    keepBest(found, limit);
    for (const Match &match : found)
        results.albums.append(m_index.albums[static_cast<std::size_t>(match.place)]);
    found = matches(inTracks, m_trackWords, albumAndArtistsOf);
    keepBest(found, limit);
    for (const Match &match : found)
        results.tracks.append(track(match.place));
    return results;
}

} // namespace vantor
