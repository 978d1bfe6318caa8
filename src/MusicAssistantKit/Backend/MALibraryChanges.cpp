#include "MusicAssistantKit/Backend/LibraryMapping.h"
#include "MusicAssistantKit/Backend/MALibraryChanges_p.h"

#include <algorithm>

namespace vantor {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// What belongs to one action of a user arrives within this time.
constexpr auto gatheringTime = 150ms;
/// More than this at once is a library being read anew: lists had better be read again when that pauses.
constexpr qsizetype mostSingleChanges = 64;
constexpr auto reloadPause = 1s;
constexpr int mostDelays = 10; ///< then it is announced while it goes on

std::optional<bool> favoriteOf(const MAJSON &item) {
    return MAReader(item).optionalBoolean("favorite");
}

} // namespace

void MALibraryChanges::take(const MAServerEvent &event, const std::optional<QString> &userID) {
    if (event.event == "media_item_played"_L1) {
        // While an item plays its progress is told every half minute; older servers tell the end only.
        const bool isReport = event.data.kind() == MAJSON::Kind::object;
        if (isReport && !MAReader(event.data).optionalBoolean("fully_played").value_or(false))
            return;
        m_played = true;
        announceSoon();
        return;
    }
    const auto id = malibrary::mediaID(event.objectID.value_or(QString()));
    if (!id)
        return;
    if (event.event != "favorite_updated"_L1) {
        takeItem(event.event, *id, event.data);
        return;
    }
    const auto user = MAReader(event.data).optionalString("user_id");
    if (user && userID && user != userID)
        return;
    // Told, but null: neither liked nor disliked.
    const bool isTold = event.data.hasMember("favorite"_L1);
    const auto favorite = favoriteOf(event.data);
    add(LibraryChange::favoriteChanged(*id, isTold ? favorite.value_or(false) : favorite));
}

void MALibraryChanges::takeItem(const QString &event, const MediaID &id, const MAJSON &item) {
    const bool isAdded = event == "media_item_added"_L1;
    const bool isDeleted = event == "media_item_deleted"_L1;
    if (id.kind == MediaKind::playlist)
        add(isAdded     ? LibraryChange::playlistAdded(id)
            : isDeleted ? LibraryChange::playlistDeleted(id)
                        : LibraryChange::playlistUpdated(id));
    else if ((isAdded || isDeleted) && id.kind != MediaKind::track)
        announceReloadSoon(); // every list of that kind has another length now
    else
        add(LibraryChange::favoriteChanged(id, isDeleted ? false : favoriteOf(item)));
}

void MALibraryChanges::add(const LibraryChange &change) {
    const auto known = std::ranges::find(m_gathered, change.id, &LibraryChange::id);
    if (known != m_gathered.end()) {
        using Kind = LibraryChange::Kind;
        if (known->kind == Kind::playlistAdded && change.kind == Kind::playlistUpdated)
            return; // it is as new as before
        m_gathered.erase(known);
    } else if (m_gathered.size() >= mostSingleChanges) {
        announceReloadSoon();
        return;
    }
    m_gathered.append(change);
    announceSoon();
}

void MALibraryChanges::announceReloadSoon() {
    if (!m_needsReload)
        m_announcing.reset();
    m_needsReload = true;
    m_hasNews = true;
    announceSoon();
}

void MALibraryChanges::announceSoon() {
    if (!m_announcing)
        m_announcing = m_clock.after(m_needsReload ? reloadPause : gatheringTime, [this] { announce(); });
}

void MALibraryChanges::announce() {
    const auto timer = std::move(m_announcing);
    if (m_needsReload && std::exchange(m_hasNews, false) && ++m_delays < mostDelays) {
        announceSoon(); // it goes on
        return;
    }
    m_delays = 0;
    if (std::exchange(m_needsReload, false)) {
        m_gathered.clear();
        m_played = false;
        announceReload();
        return;
    }
    for (const LibraryChange &change : std::exchange(m_gathered, {}))
        m_streams.send(change);
    if (std::exchange(m_played, false))
        m_streams.send(LibraryChange::played());
}

void MALibraryChanges::announceReload() {
    m_streams.skip();
    m_streams.send(LibraryChange::played());
}

void MALibraryChanges::end() {
    m_announcing.reset();
    m_gathered.clear();
    m_played = m_needsReload = m_hasNews = false;
    m_streams = {};
}

} // namespace vantor
