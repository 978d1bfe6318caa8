#include "Vantor/Model/PlaylistModel.h"

#include "AudioCore/Queue/TrackInfo.h"
#include "MusicBackendKit/MarqueeText.h"
#include "Platform/TextFolding.h"
#include "Vantor/Model/TrackFinder.h"

#include <QScopedValueRollback>
#include <QSettings>

#include <cmath>

namespace vantor {

namespace {

constexpr std::chrono::milliseconds typingPause{1000};
constexpr std::chrono::milliseconds longestSearch{6}; // at a time: windows are painted in between
constexpr const char *sizeKey = "playlist.size";
constexpr QSize firstSize{275, 232};
namespace Layout = PlaylistWindowLayout;

QString titleOf(const Track &track) {
    return track.title.left(TrackFinder::longestField);
}

/// Where a row has gone when `rows` have moved by `step` and the others have closed up around them.
int movedRow(int row, const IndexSet &rows, int step) {
    if (rows.contains(row))
        return row + step;
    int place = row - static_cast<int>(std::distance(rows.begin(), rows.lower_bound(row)));
    for (const int moved : rows)
        place += moved + step <= place ? 1 : 0;
    return place;
}

struct Lengths {
    double seconds = 0;
    bool complete = true;

    void add(const Track &track) {
        seconds += track.duration;
        complete = complete && track.duration > 0;
    }
    [[nodiscard]] QString text() const {
        return TrackInfo::durationText(seconds) + (complete ? QString() : QStringLiteral("+"));
    }
};

} // namespace

PlaylistModel::PlaylistModel(PlayerModel &model, QSettings &settings, QObject *parent)
    : QObject(parent), m_model(model), m_local(model), m_remote(model.remote()), m_settings(settings),
      m_size(Layout::snapped(settings.value(QLatin1String(sizeKey), firstSize).toSize())) {
    m_typing.setSingleShot(true);
    m_typing.setInterval(typingPause);
    connect(&m_typing, &QTimer::timeout, this, &PlaylistModel::endTyping);
    m_searching.setSingleShot(true);
    connect(&m_searching, &QTimer::timeout, this, [this] { searchOn(longestSearch); });
    for (PlaylistQueue *const queue : std::initializer_list<PlaylistQueue *>{&m_local, &m_remote}) {
        connect(queue, &PlaylistQueue::changed, this, [this, queue] {
            if (queue == m_queue)
                takeQueue();
        });
        connect(queue, &PlaylistQueue::currentChanged, this, [this, queue] {
            if (queue == m_queue)
                takeCurrent();
        });
    }
    connect(&model.remote(), &RemoteOutput::selectionChanged, this, &PlaylistModel::chooseQueue);
    showQueue();
}

// Which queue

void PlaylistModel::chooseQueue() {
    if (isRemote() == (m_queue == &m_remote))
        return;
    cancelTyping();
    m_queue = isRemote() ? static_cast<PlaylistQueue *>(&m_remote) : &m_local;
    m_selection = {};
    m_cursor = 0;
    m_cursorTrack = {};
    showQueue();
}

/// What was played last, with what is around it.
void PlaylistModel::showQueue() {
    m_current = m_queue->currentIndex();
    takeQueue();
    scrollTo(m_current.value_or(0) - Layout::visibleRows(m_size) / 2);
}

// What is seen

PlaylistWindowScene PlaylistModel::scene() const {
    const MainWindowScene main = m_model.scene();
    const int lastFirst = Layout::lastFirstRow(count(), m_size);
    PlaylistWindowScene scene;
    scene.size = m_size;
    scene.shaded = m_model.windows().isShaded(WindowKind::playlist);
    if (!m_rows)
        m_rows = shownRows();
    scene.rows = *m_rows;
    scene.scroll = lastFirst > 0 ? static_cast<double>(m_firstRow) / lastFirst : 0;
    scene.runningTime = m_typed ? tr("FIND: %1").arg(*m_typed) : runningTime();
    scene.status = main.status;
    scene.timeLit = main.timeLit;
    if (Layout::hasVisualizer(m_size))
        scene.visualizer = main.visualizer;
    if (const std::optional<int> current = m_queue->currentIndex(); current && scene.shaded) {
        const Track &track = tracks()[static_cast<std::size_t>(*current)];
        scene.shadeTitle = MarqueeText::track(track.artist, track.title, 0, *current + 1);
        scene.shadeLength = track.duration > 0 ? TrackInfo::durationText(track.duration) : QString();
    }
    return scene;
}

std::vector<PlaylistRow> PlaylistModel::shownRows() const {
    const std::optional<int> current = m_queue->currentIndex();
    const int end = std::min(count(), m_firstRow + Layout::visibleRows(m_size));
    std::vector<PlaylistRow> rows;
    for (int row = m_firstRow; row < end; ++row) {
        const Track &track = tracks()[static_cast<std::size_t>(row)];
        rows.push_back({MarqueeText::track(track.artist, track.title, 0, row + 1),
                        track.duration > 0 ? TrackInfo::durationText(track.duration) : QString(),
                        row == current, m_selection.contains(track)});
    }
    return rows;
}

QString PlaylistModel::runningTime() const {
    if (!m_runningTime) {
        Lengths all;
        Lengths selected;
        for (const Track &track : tracks()) {
            all.add(track);
            if (hasSelection() && m_selection.contains(track))
                selected.add(track);
        }
        m_runningTime = selected.text() + QLatin1Char('/') + all.text();
    }
    return *m_runningTime;
}

void PlaylistModel::setSize(QSize size) {
    const QSize snapped = Layout::snapped(size);
    if (snapped == m_size)
        return;
    m_size = snapped;
    m_settings.setValue(QLatin1String(sizeKey), m_size);
    m_rows.reset();
    scrollTo(m_firstRow);
    wantRows();
    Q_EMIT sizeChanged();
}

void PlaylistModel::scrollTo(int firstRow) {
    const int first = std::clamp(firstRow, 0, Layout::lastFirstRow(count(), m_size));
    if (first == m_firstRow)
        return;
    m_firstRow = first;
    wantRows();
    m_rows.reset();
    Q_EMIT changed();
}

void PlaylistModel::scrollToFraction(double fraction) {
    scrollTo(static_cast<int>(std::lround(fraction * Layout::lastFirstRow(count(), m_size))));
}

void PlaylistModel::reveal(int row) {
    const int visible = Layout::visibleRows(m_size);
    if (row < m_firstRow)
        scrollTo(row);
    else if (row >= m_firstRow + visible)
        scrollTo(row - visible + 1);
}

void PlaylistModel::wantRows() {
    m_queue->want(m_firstRow, m_firstRow + Layout::visibleRows(m_size));
}

void PlaylistModel::takeCurrent() {
    m_rows.reset();
    followCurrent();
    Q_EMIT changed();
}

// A list that the user has scrolled elsewhere stays there.
void PlaylistModel::followCurrent() {
    const std::optional<int> before = std::exchange(m_current, m_queue->currentIndex());
    const bool wasSeen =
        !before || (*before >= m_firstRow && *before < m_firstRow + Layout::visibleRows(m_size));
    if (m_current && wasSeen && !m_isMoving)
        reveal(*m_current);
}

void PlaylistModel::takeQueue() {
    if (m_isMoving)
        return;
    if (count() < m_count)
        m_selection.prune(tracks());
    if (m_search)
        m_search = {.wanted = m_search->wanted, .from = m_search->from};
    m_count = count();
    m_cursor = rowOf(m_cursorTrack, m_cursor).value_or(std::clamp(m_cursor, 0, std::max(0, m_count - 1)));
    m_cursorTrack = idAt(m_cursor);
    if (m_selection.anchor)
        m_selection.anchor = rowOf(m_anchorTrack, *m_selection.anchor);
    m_firstRow = std::min(m_firstRow, Layout::lastFirstRow(m_count, m_size));
    wantRows();
    selectionChanged();
}

QUuid PlaylistModel::idAt(int row) const {
    return row >= 0 && row < count() ? tracks()[static_cast<std::size_t>(row)].id : QUuid();
}

/// Where a track is that was at a row before; looked for only if it is there no more.
std::optional<int> PlaylistModel::rowOf(const QUuid &id, int before) const {
    if (id.isNull() || idAt(before) == id)
        return id.isNull() ? std::nullopt : std::optional(before);
    const auto found = std::ranges::find(tracks(), id, &Track::id);
    return found == tracks().end() ? std::nullopt : std::optional(static_cast<int>(found - tracks().begin()));
}

// What is selected

void PlaylistModel::selectionChanged() {
    m_rows.reset();
    m_runningTime.reset();
    m_selectedRows.reset();
    Q_EMIT changed();
}

const IndexSet &PlaylistModel::selectedRows() const {
    if (!m_selectedRows)
        m_selectedRows = m_selection.indices(tracks());
    return *m_selectedRows;
}

void PlaylistModel::select(int row, Selecting how) {
    if (row < 0 || row >= count())
        return;
    switch (how) {
    case Selecting::only:
        m_selection.click(row, tracks());
        break;
    case Selecting::toggling:
        m_selection.commandClick(row, tracks());
        break;
    case Selecting::extending:
        m_selection.shiftClick(row, tracks());
        break;
    }
    m_anchorTrack = m_selection.anchor ? idAt(*m_selection.anchor) : QUuid();
    m_search.reset();
    m_cursor = row;
    m_cursorTrack = idAt(row);
    reveal(row);
    selectionChanged();
}

void PlaylistModel::setCursor(int row) {
    if (row < 0 || row >= count())
        return;
    m_cursor = row;
    m_cursorTrack = idAt(row);
    Q_EMIT changed();
}

void PlaylistModel::moveCursor(int by, Selecting how) {
    if (count() == 0)
        return;
    // With nothing selected the first step shows where the cursor is.
    const int step = !hasSelection() && std::abs(by) == 1 ? 0 : by;
    select(static_cast<int>(std::clamp<qint64>(qint64{m_cursor} + step, 0, count() - 1)), how);
}

std::optional<int> PlaylistModel::cursor() const {
    return count() > 0 ? std::optional(m_cursor) : std::nullopt;
}

bool PlaylistModel::isSelected(int row) const {
    const std::optional<Track> found = track(row);
    return found && m_selection.contains(*found);
}

std::optional<Track> PlaylistModel::track(int row) const {
    if (row < 0 || row >= count())
        return std::nullopt;
    return tracks()[static_cast<std::size_t>(row)];
}

void PlaylistModel::selectAll() {
    m_selection.selectAll(tracks());
    selectionChanged();
}

void PlaylistModel::selectNone() {
    m_selection.selectNone();
    selectionChanged();
}

void PlaylistModel::invertSelection() {
    m_selection.invert(tracks());
    selectionChanged();
}

// Type-ahead

void PlaylistModel::beginTyping() {
    m_typed = QString();
    m_typing.start();
    Q_EMIT changed();
}

void PlaylistModel::endTyping() {
    searchOn(std::chrono::hours(1));
    m_typed.reset();
    m_typing.stop();
    Q_EMIT changed();
}

void PlaylistModel::cancelTyping() {
    m_search.reset();
    endTyping();
}

void PlaylistModel::type(const QString &letters) {
    if (!m_typed)
        beginTyping();
    m_typing.start();
    *m_typed += letters;
    // A further letter may keep the row; a first one moves on, so that it can be pressed again.
    const bool isFirst = m_typed->size() == letters.size();
    const int from = m_search ? m_search->from : m_cursor + (isFirst && hasSelection() ? 1 : 0);
    m_search = {.wanted = TextFolding::folded(*m_typed), .from = from};
    searchOn(longestSearch);
    Q_EMIT changed();
}

void PlaylistModel::searchOn(std::chrono::milliseconds longest) {
    constexpr int betweenLooks = 64; // at the clock
    const QDeadlineTimer end(longest);
    while (m_search) {
        if (m_search->step == count()) {
            if (const std::optional<int> inside = std::exchange(m_search, std::nullopt)->inside)
                select(*inside, Selecting::only);
            break;
        }
        const int row = (m_search->from + m_search->step++) % count();
        const Track &track = tracks()[static_cast<std::size_t>(row)];
        const QString name = TextFolding::folded(TrackFinder::nameOf(track));
        const QString &wanted = m_search->wanted;
        if (name.startsWith(wanted) || TextFolding::folded(titleOf(track)).startsWith(wanted))
            select(row, Selecting::only);
        else if (!m_search->inside && name.contains(wanted))
            m_search->inside = row;
        if (m_search && m_search->step % betweenLooks == 0 && end.hasExpired()) {
            m_searching.start();
            break;
        }
    }
}

// What is done

void PlaylistModel::play(int row) {
    m_queue->play(row);
}

void PlaylistModel::removeSelected() {
    const IndexSet rows = selectedRows();
    if (rows.empty())
        return;
    const int first = *rows.begin();
    m_queue->remove(rows);
    select(std::min(first, count() - 1), Selecting::only);
}

void PlaylistModel::crop() {
    if (hasSelection() && !isRemote())
        m_model.player().cropTracks(IndexSet(selectedRows()));
}

void PlaylistModel::removeAll() {
    m_queue->clear();
}

// Costs what is moved, not how long the list is: a drag does it for every row that the pointer passes.
int PlaylistModel::moveSelected(int by) {
    const IndexSet rows = selectedRows();
    if (rows.empty())
        return 0;
    const int step = std::clamp(by, -*rows.begin(), count() - 1 - *rows.rbegin());
    if (step == 0)
        return 0;
    m_rows.reset();
    {
        const QScopedValueRollback moving(m_isMoving, true);
        m_queue->move(rows, step);
    }
    IndexSet moved;
    for (const int row : rows)
        moved.insert(moved.end(), row + step);
    m_selectedRows = std::move(moved);
    m_cursor = movedRow(m_cursor, rows, step);
    if (m_selection.anchor)
        m_selection.anchor = movedRow(*m_selection.anchor, rows, step);
    Q_EMIT changed();
    return step;
}

} // namespace vantor
