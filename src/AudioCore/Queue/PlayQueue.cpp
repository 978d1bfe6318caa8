#include "AudioCore/Queue/PlayQueue.h"

#include "AudioCore/Queue/TextOrder.h"

#include <future>
#include <numeric>
#include <random>
#include <span>
#include <thread>

namespace vantor {

namespace {

std::vector<int> ascending(int count) {
    std::vector<int> indices(static_cast<size_t>(count));
    std::iota(indices.begin(), indices.end(), 0);
    return indices;
}

std::vector<int> randomPermutation(int count, QRandomGenerator &generator) {
    std::vector<int> indices = ascending(count);
    std::shuffle(indices.begin(), indices.end(), generator);
    return indices;
}

/// Adds entries to a pass as if one after the other were inserted at a random place, `first` or later: every
/// order of theirs and every way to mix them with the rest is then equally likely, which is drawn here
/// without moving the rest once for each.
void insertAtRandom(std::vector<int> &pass, size_t first, std::vector<int> added) {
    QRandomGenerator &generator = *QRandomGenerator::global();
    std::shuffle(added.begin(), added.end(), generator);
    const size_t present = pass.size();
    pass.resize(present + added.size());
    // As many different places as there are entries, each set of them as likely as any other (Floyd's way).
    std::vector<bool> isAdded(pass.size());
    for (size_t last = present; last < pass.size(); ++last) {
        const size_t place = std::uniform_int_distribution(std::min(first, present), last)(generator);
        isAdded[isAdded[place] ? last : place] = true;
    }
    auto old = pass.begin() + static_cast<std::ptrdiff_t>(present);
    for (size_t place = pass.size(); !added.empty(); --place) {
        if (isAdded[place - 1]) {
            pass[place - 1] = added.back();
            added.pop_back();
        } else {
            pass[place - 1] = *--old;
        }
    }
}

bool isPermutation(const std::vector<int> &order, int count) {
    std::vector<bool> seen(static_cast<size_t>(count));
    for (const int entry : order) {
        if (entry < 0 || entry >= count || seen[static_cast<size_t>(entry)])
            return false;
        seen[static_cast<size_t>(entry)] = true;
    }
    return order.size() == seen.size();
}

/// Library items have no path and come first.
QString sortText(const Track &track, PlaylistSortKey key) {
    const QUrl *file = std::get_if<QUrl>(&track.source);
    if (!file)
        return {};
    if (key == PlaylistSortKey::fileName)
        return file->fileName();
    return file->isLocalFile() ? file->toLocalFile() : file->toString();
}

// In several threads, because most of the time goes into waiting for the memory where the addresses are.
TextOrder sortTexts(const std::vector<Track> &tracks, PlaylistSortKey key) {
    constexpr size_t leastShare = 10'000; // what a thread is worth being made for
    const size_t threads = std::clamp<size_t>(tracks.size() / leastShare, 1,
                                              std::clamp(std::thread::hardware_concurrency(), 1U, 4U));
    const auto textsOf = [key](std::span<const Track> share) {
        TextOrder texts;
        for (const Track &track : share)
            texts.add(sortText(track, key));
        return texts;
    };
    const std::span<const Track> all(tracks);
    const size_t share = all.size() / threads;
    std::vector<std::future<TextOrder>> others;
    for (size_t thread = 1; thread < threads; ++thread) {
        const auto its =
            thread + 1 < threads ? all.subspan(thread * share, share) : all.subspan(thread * share);
        others.push_back(std::async(std::launch::async, textsOf, its));
    }
    TextOrder texts = textsOf(threads > 1 ? all.first(share) : all);
    for (std::future<TextOrder> &other : others)
        texts.add(other.get());
    return texts;
}

/// Puts the tracks into an order of their old indices without a second list: goes round every ring of tracks
/// that take each other's places.
void rearrange(std::span<Track> tracks, std::vector<int> order) {
    for (size_t start = 0; start < order.size(); ++start) {
        if (order[start] == static_cast<int>(start))
            continue;
        Track first = std::move(tracks[start]);
        size_t place = start;
        for (;;) {
            const auto from = static_cast<size_t>(std::exchange(order[place], static_cast<int>(place)));
            if (from == start)
                break;
            tracks[place] = std::move(tracks[from]);
            place = from;
        }
        tracks[place] = std::move(first);
    }
}

} // namespace

PlayQueue::PlayQueue(std::vector<Track> tracks, std::optional<int> currentIndex, RepeatMode repeatMode,
                     bool isShuffled, std::vector<int> shuffleOrder, int shufflePosition,
                     std::vector<int> nextPass)
    : m_tracks(std::move(tracks)), m_repeatMode(repeatMode) {
    if (currentIndex && *currentIndex >= 0 && *currentIndex < count())
        m_currentIndex = currentIndex;
    if (!isShuffled)
        return;
    const auto isPlace = [&] {
        return shufflePosition >= 0 && shufflePosition < count() &&
               shuffleOrder[static_cast<size_t>(shufflePosition)] == m_currentIndex;
    };
    if (!isPermutation(shuffleOrder, count()) || !isPermutation(nextPass, count()) ||
        !(m_currentIndex ? isPlace() : shufflePosition == -1)) {
        setShuffle(true);
        return;
    }
    m_isShuffled = true;
    m_shuffleOrder = std::move(shuffleOrder);
    m_shufflePosition = shufflePosition;
    m_nextPass = std::move(nextPass);
}

std::optional<Track> PlayQueue::current() const {
    if (!m_currentIndex)
        return std::nullopt;
    return (*m_tracks)[static_cast<size_t>(*m_currentIndex)];
}

void PlayQueue::append(std::vector<Track> tracks) {
    std::vector<int> added = ascending(static_cast<int>(tracks.size()));
    for (int &index : added)
        index += count();
    if (!tracks.empty()) {
        std::vector<Track> &list = m_tracks.edit();
        list.insert(list.end(), std::make_move_iterator(tracks.begin()),
                    std::make_move_iterator(tracks.end()));
    }
    if (!m_isShuffled)
        return;
    insertAtRandom(m_shuffleOrder, static_cast<size_t>(m_shufflePosition + 1), added);
    insertAtRandom(m_nextPass, 0, std::move(added));
}

void PlayQueue::remove(int index) {
    remove(IndexSet{index});
}

// In one go: row by row, clearing half of a long list would take quadratic time.
void PlayQueue::remove(const IndexSet &indices) {
    std::vector<Track> &tracks = m_tracks.edit();
    std::vector<int> newIndices(tracks.size(), -1); // by old index; -1: removed
    std::vector<Track> kept;
    kept.reserve(tracks.size());
    auto removed = indices.lower_bound(0);
    int keptBeforeCurrent = 0;
    for (int old = 0; old < count(); ++old) {
        if (old == m_currentIndex)
            keptBeforeCurrent = static_cast<int>(kept.size());
        if (removed != indices.end() && *removed == old) {
            ++removed;
            continue;
        }
        newIndices[static_cast<size_t>(old)] = static_cast<int>(kept.size());
        kept.push_back(std::move(tracks[static_cast<size_t>(old)]));
    }
    tracks = std::move(kept);

    const auto isRemoved = [&](int old) { return newIndices[static_cast<size_t>(old)] < 0; };
    const bool currentRemoved = m_currentIndex && isRemoved(*m_currentIndex);
    if (m_shufflePosition > 0) {
        const auto played = m_shuffleOrder.begin() + m_shufflePosition;
        m_shufflePosition -= static_cast<int>(std::count_if(m_shuffleOrder.begin(), played, isRemoved));
    }
    for (std::vector<int> *pass : {&m_shuffleOrder, &m_nextPass}) {
        std::erase_if(*pass, isRemoved);
        for (int &entry : *pass)
            entry = newIndices[static_cast<size_t>(entry)];
    }

    if (tracks.empty()) {
        m_currentIndex.reset();
        m_shufflePosition = -1;
    } else if (m_currentIndex && !currentRemoved) {
        m_currentIndex = newIndices[static_cast<size_t>(*m_currentIndex)];
    } else if (currentRemoved && m_isShuffled) {
        m_shufflePosition = std::min(m_shufflePosition, count() - 1);
        m_currentIndex = m_shuffleOrder[static_cast<size_t>(m_shufflePosition)];
    } else if (currentRemoved) {
        m_currentIndex = std::min(keptBeforeCurrent, count() - 1);
    }
}

void PlayQueue::crop(const IndexSet &keeping) {
    IndexSet others;
    for (int index = 0; index < count(); ++index) {
        if (!keeping.contains(index))
            others.insert(others.end(), index);
    }
    remove(others);
}

void PlayQueue::move(const IndexSet &indices, int offset) {
    const IndexSet moved(indices.lower_bound(0), indices.lower_bound(count()));
    if (moved.empty())
        return;
    const int step = std::clamp(offset, -*moved.begin(), count() - 1 - *moved.rbegin());
    // Only what lies between the old places and the new ones changes: rows are dragged through long lists.
    const int first = *moved.begin() + std::min(step, 0);
    const int last = *moved.rbegin() + std::max(step, 0);
    std::vector<int> order(static_cast<size_t>(last - first + 1), -1);
    for (const int index : moved)
        order[static_cast<size_t>(index + step - first)] = index - first;
    int other = first;
    for (int &entry : order) {
        if (entry >= 0)
            continue;
        while (moved.contains(other))
            ++other;
        entry = other++ - first;
    }
    applyPermutation(order, first);
}

bool PlayQueue::reorder(const std::vector<int> &order) {
    if (std::ranges::is_sorted(order) || !isPermutation(order, count()))
        return false;
    applyPermutation(order);
    return true;
}

bool PlayQueue::sort(PlaylistSortKey key) {
    return reorder(sortTexts(*m_tracks, key).sorted());
}

bool PlayQueue::reverse() {
    std::vector<int> order = ascending(count());
    std::reverse(order.begin(), order.end());
    return reorder(order);
}

bool PlayQueue::randomize(QRandomGenerator &generator) {
    return reorder(randomPermutation(count(), generator));
}

void PlayQueue::removeAll() {
    m_tracks = {};
    m_currentIndex.reset();
    m_shuffleOrder.clear();
    m_shufflePosition = -1;
    m_nextPass.clear();
}

void PlayQueue::select(int index) {
    if (index < 0 || index >= count())
        return;
    m_currentIndex = index;
    if (!m_isShuffled)
        return;
    m_shuffleOrder = ascending(count());
    std::rotate(m_shuffleOrder.begin(), m_shuffleOrder.begin() + index, m_shuffleOrder.begin() + index + 1);
    std::shuffle(m_shuffleOrder.begin() + 1, m_shuffleOrder.end(), *QRandomGenerator::global());
    m_shufflePosition = 0;
}

std::optional<Track> PlayQueue::next() {
    const std::optional<Target> target = forwardTarget(wraps());
    if (!target)
        return std::nullopt;
    commit(*target);
    return current();
}

std::optional<Track> PlayQueue::previous() {
    const std::optional<Target> target = backwardTarget(wraps());
    if (!target)
        return std::nullopt;
    commit(*target);
    return current();
}

std::optional<Track> PlayQueue::advanceAfterTrackEnd() {
    if (!m_currentIndex || m_repeatMode == RepeatMode::one)
        return current();
    return next();
}

std::optional<int> PlayQueue::indexAfterCurrentEnds() const {
    if (!m_currentIndex || m_repeatMode == RepeatMode::one)
        return m_currentIndex;
    const std::optional<Target> target = forwardTarget(wraps());
    return target ? std::optional(target->index) : std::nullopt;
}

bool PlayQueue::hasForwardTarget() const {
    return forwardTarget(wraps()).has_value();
}

void PlayQueue::setShuffle(bool on, QRandomGenerator &generator) {
    if (on == m_isShuffled)
        return;
    m_isShuffled = on;
    m_shuffleOrder.clear();
    m_nextPass.clear();
    m_shufflePosition = -1;
    if (!on)
        return;
    m_shuffleOrder = randomPermutation(count(), generator);
    if (m_currentIndex) {
        std::iter_swap(m_shuffleOrder.begin(), std::ranges::find(m_shuffleOrder, *m_currentIndex));
        m_shufflePosition = 0;
    }
    m_nextPass = randomPermutation(count(), generator);
}

std::optional<PlayQueue::Target> PlayQueue::forwardTarget(bool wrap) const {
    if (m_tracks->empty())
        return std::nullopt;
    if (m_isShuffled) {
        const int position = m_shufflePosition + 1;
        if (position < count())
            return Target{m_shuffleOrder[static_cast<size_t>(position)], position, false};
        if (wrap)
            return Target{m_nextPass.front(), 0, true};
        return std::nullopt;
    }
    const int index = m_currentIndex ? *m_currentIndex + 1 : 0;
    if (index < count())
        return Target{index};
    return wrap ? std::optional(Target{}) : std::nullopt;
}

std::optional<PlayQueue::Target> PlayQueue::backwardTarget(bool wrap) const {
    if (!m_currentIndex)
        return std::nullopt;
    const int last = count() - 1;
    if (m_isShuffled) {
        if (m_shufflePosition < 1 && !wrap)
            return std::nullopt;
        // Wrapping backwards stays within this pass.
        const int position = m_shufflePosition < 1 ? last : m_shufflePosition - 1;
        return Target{m_shuffleOrder[static_cast<size_t>(position)], position, false};
    }
    if (*m_currentIndex >= 1)
        return Target{*m_currentIndex - 1};
    return wrap ? std::optional(Target{last}) : std::nullopt;
}

void PlayQueue::commit(const Target &target) {
    if (target.startsNewPass) {
        m_shuffleOrder = std::move(m_nextPass);
        m_nextPass = randomPermutation(count(), *QRandomGenerator::global());
    }
    m_currentIndex = target.index;
    if (m_isShuffled)
        m_shufflePosition = target.shufflePosition;
}

void PlayQueue::applyPermutation(const std::vector<int> &order, int first) {
    std::vector<int> newIndices(order.size());
    for (size_t index = 0; index < order.size(); ++index)
        newIndices[static_cast<size_t>(order[index])] = static_cast<int>(index);
    const auto follow = [&](int &index) {
        if (const auto place = static_cast<size_t>(index - first);
            index >= first && place < newIndices.size())
            index = first + newIndices[place];
    };
    rearrange(std::span(m_tracks.edit()).subspan(static_cast<size_t>(first), order.size()), order);
    if (m_currentIndex)
        follow(*m_currentIndex);
    std::ranges::for_each(m_shuffleOrder, follow);
    std::ranges::for_each(m_nextPass, follow);
}

} // namespace vantor
