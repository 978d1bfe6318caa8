#include "AudioCore/Queue/PlayQueue.h"

#include <numeric>
#include <random>

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

void insertAtRandom(std::vector<int> &pass, int index, int first) {
    const int last = static_cast<int>(pass.size());
    std::uniform_int_distribution<int> places(std::min(first, last), last);
    pass.insert(pass.begin() + places(*QRandomGenerator::global()), index);
}

/// In code points, because QString compares UTF-16 units, among which surrogates lie below the last of the
/// basic plane. Library items have no path and come first.
QList<uint> sortText(const Track &track, PlaylistSortKey key) {
    const QUrl *file = std::get_if<QUrl>(&track.source);
    if (!file)
        return {};
    return (key == PlaylistSortKey::fileName ? file->fileName() : file->toLocalFile()).toUcs4();
}

} // namespace

std::optional<Track> PlayQueue::current() const {
    if (!m_currentIndex)
        return std::nullopt;
    return m_tracks[static_cast<size_t>(*m_currentIndex)];
}

void PlayQueue::append(const std::vector<Track> &tracks) {
    const int firstNew = count();
    m_tracks.insert(m_tracks.end(), tracks.begin(), tracks.end());
    if (!m_isShuffled)
        return;
    for (int index = firstNew; index < count(); ++index) {
        insertAtRandom(m_shuffleOrder, index, m_shufflePosition + 1);
        insertAtRandom(m_nextPass, index, 0);
    }
}

void PlayQueue::remove(int index) {
    remove(IndexSet{index});
}

// In one go: row by row, clearing half of a long list would take quadratic time.
void PlayQueue::remove(const IndexSet &indices) {
    std::vector<int> newIndices(m_tracks.size(), -1); // by old index; -1: removed
    std::vector<Track> kept;
    kept.reserve(m_tracks.size());
    int keptBeforeCurrent = 0;
    for (int old = 0; old < count(); ++old) {
        if (old == m_currentIndex)
            keptBeforeCurrent = static_cast<int>(kept.size());
        if (indices.contains(old))
            continue;
        newIndices[static_cast<size_t>(old)] = static_cast<int>(kept.size());
        kept.push_back(std::move(m_tracks[static_cast<size_t>(old)]));
    }
    m_tracks = std::move(kept);

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

    if (m_tracks.empty()) {
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
    std::vector<int> order(m_tracks.size(), -1);
    for (const int index : moved)
        order[static_cast<size_t>(index + step)] = index;
    int other = 0;
    for (int &entry : order) {
        if (entry >= 0)
            continue;
        while (moved.contains(other))
            ++other;
        entry = other++;
    }
    applyPermutation(order);
}

bool PlayQueue::reorder(const std::vector<int> &order) {
    const std::vector<int> unchanged = ascending(count());
    if (order == unchanged ||
        !std::is_permutation(order.begin(), order.end(), unchanged.begin(), unchanged.end()))
        return false;
    applyPermutation(order);
    return true;
}

bool PlayQueue::sort(PlaylistSortKey key) {
    std::vector<QList<uint>> texts;
    texts.reserve(m_tracks.size());
    for (const Track &track : m_tracks)
        texts.push_back(sortText(track, key));
    std::vector<int> order = ascending(count());
    std::ranges::sort(order, [&](int left, int right) {
        const QList<uint> &leftText = texts[static_cast<size_t>(left)];
        const QList<uint> &rightText = texts[static_cast<size_t>(right)];
        return leftText == rightText ? left < right
                                     : std::ranges::lexicographical_compare(leftText, rightText);
    });
    return reorder(order);
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
    m_tracks.clear();
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
    if (m_tracks.empty())
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

void PlayQueue::applyPermutation(const std::vector<int> &order) {
    std::vector<int> newIndices(order.size());
    std::vector<Track> tracks;
    tracks.reserve(order.size());
    for (const int old : order) {
        newIndices[static_cast<size_t>(old)] = static_cast<int>(tracks.size());
        tracks.push_back(std::move(m_tracks[static_cast<size_t>(old)]));
    }
    m_tracks = std::move(tracks);
    if (m_currentIndex)
        m_currentIndex = newIndices[static_cast<size_t>(*m_currentIndex)];
    for (std::vector<int> *pass : {&m_shuffleOrder, &m_nextPass}) {
        for (int &entry : *pass)
            entry = newIndices[static_cast<size_t>(entry)];
    }
}

} // namespace vantor
