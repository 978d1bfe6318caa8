#include "Vantor/Library/LibraryPages.h"

#include "MusicBackendKit/ArtistName.h"

#include <QButtonGroup>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace vantor {

namespace {

QString countOf(int count, const char *one, const char *many) {
    return count == 1 ? QObject::tr(one) : QObject::tr(many).arg(count);
}

/// "47 min", "1 h 12 min"
QString runningTime(double seconds) {
    const int minutes = static_cast<int>(std::lround(std::min(seconds, 1e8) / 60));
    if (minutes < 60)
        return QObject::tr("%1 min").arg(std::max(1, minutes));
    return QObject::tr("%1 h %2 min").arg(minutes / 60).arg(minutes % 60);
}

QString joined(QStringList facts) {
    facts.removeAll(QString());
    return facts.join(QStringLiteral("  ·  "));
}

} // namespace

LibraryGridView *LibraryPageContext::makeGrid(LibraryItemModel &items, const QString &name,
                                              LibraryGridView::Shape shape) const {
    auto *const grid = new LibraryGridView(items, artwork, shape);
    grid->setAccessibleName(name);
    LibraryActions *const does = &actions;
    QObject::connect(grid, &LibraryGridView::opened, does, [grid, does](const QModelIndex &index) {
        if (const LibraryItem *const item = grid->items().item(index.row()))
            Q_EMIT does->opened(*item);
    });
    QObject::connect(grid, &LibraryGridView::menuAsked, does, [grid, does](const QPoint &at) {
        auto *const menu = new QMenu(grid);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        does->fillMenu(*menu, grid->selected());
        menu->popup(at);
    });
    return grid;
}

TrackTable *LibraryPageContext::makeTable(TrackListModel &tracks, const QString &columnsKey) const {
    auto *const table = new TrackTable(tracks);
    table->restoreColumns(settings, columnsKey);
    LibraryActions *const does = &actions;
    QObject::connect(table, &TrackTable::opened, does, [table, does](const QModelIndex &index) {
        // A double click may leave others selected, too; then they are what is meant.
        if (const LibraryTrack *const track = table->tracks().track(index.row()))
            does->playTracks(table->tracks(), table->selected().contains(*track)
                                                  ? table->selected()
                                                  : QList<LibraryTrack>{*track});
    });
    QObject::connect(table, &TrackTable::menuAsked, does, [table, does](const QPoint &at) {
        auto *const menu = new QMenu(table);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        does->fillMenu(*menu, table->tracks(), table->selected());
        menu->popup(at);
    });
    return table;
}

// An artist

ArtistPage::ArtistPage(const LibraryPageContext &context)
    : m_context(context), m_albums(context.browser()), m_header(new LibraryHeader(context.artwork)) {
    auto *const grid = context.makeGrid(m_albums, tr("Albums"));
    grid->setShowsYears(true);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addWidget(new LibraryPane(grid, m_albums, {tr("No albums"), {}}), 1);
    setFocusProxy(grid);
    const auto play = [this](PlayMode::Kind how) { m_context.actions.play({LibraryItem{m_artist}}, how); };
    connect(m_header, &LibraryHeader::playAsked, this, [play] { play(PlayMode::Kind::replace); });
    connect(m_header, &LibraryHeader::appendAsked, this, [play] { play(PlayMode::Kind::append); });
    connect(m_header, &LibraryHeader::favoriteAsked, this,
            [this](bool on) { m_context.browser().setFavorite(m_artist.memberIDs(), on); });
    connect(&m_albums, &LibraryModel::stateChanged, this, &ArtistPage::showDetails);
}

void ArtistPage::show(const ArtistGroup &artist) {
    m_artist = artist;
    const LibraryItem item{artist};
    const bool canBeFavorite = m_context.browser().capabilities().testFlag(MusicBackendCapability::favorites);
    m_header->show({MediaKind::artist,
                    artist.name,
                    {},
                    artist.artwork,
                    canBeFavorite ? std::optional(item.isFavorite().value_or(false)) : std::nullopt});
    m_albums.show(LibraryListModel::Content::albumsOf(artist));
    showDetails();
}

void ArtistPage::showDetails() {
    m_header->setDetails(m_albums.hasAnswer() ? countOf(m_albums.rowCount(), "1 album", "%L1 albums")
                                              : QString());
}

// An album or a playlist

TrackListPage::TrackListPage(const LibraryPageContext &context)
    : m_context(context), m_tracks(context.browser()), m_header(new LibraryHeader(context.artwork)),
      m_table(context.makeTable(m_tracks, QStringLiteral("library/albumColumns"))) {
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addWidget(new LibraryPane(m_table, m_tracks, {tr("No tracks"), {}}), 1);
    setFocusProxy(m_table);
    const auto play = [this](PlayMode::Kind how) { m_context.actions.play({m_item}, how); };
    connect(m_header, &LibraryHeader::playAsked, this, [play] { play(PlayMode::Kind::replace); });
    connect(m_header, &LibraryHeader::appendAsked, this, [play] { play(PlayMode::Kind::append); });
    connect(m_header, &LibraryHeader::favoriteAsked, this,
            [this](bool on) { m_context.browser().setFavorite(m_item.ids(), on); });
    connect(m_header, &LibraryHeader::artistAsked, this, [this] {
        if (const auto *const album = std::get_if<LibraryAlbum>(&m_item.record))
            Q_EMIT artistAsked(*album);
    });
    connect(&m_tracks, &LibraryModel::stateChanged, this, &TrackListPage::showDetails);
}

void TrackListPage::show(const LibraryAlbum &album) {
    open({album}, ArtistName::display(album.artistName.value_or(QString())));
}

void TrackListPage::show(const LibraryPlaylist &playlist) {
    open({playlist}, {});
}

void TrackListPage::open(const LibraryItem &item, const QString &artist) {
    m_item = item;
    const bool canBeFavorite = m_context.browser().capabilities().testFlag(MusicBackendCapability::favorites);
    m_header->show({item.kind().value_or(MediaKind::album), item.title(), artist, item.artwork(),
                    canBeFavorite ? std::optional(item.isFavorite().value_or(false)) : std::nullopt});
    m_tracks.sort(-1);
    m_table->horizontalHeader()->setSortIndicatorShown(false);
    m_tracks.show(TrackListModel::Content::of(item.ids().first()));
    showDetails();
}

void TrackListPage::showDetails() {
    const auto *const album = std::get_if<LibraryAlbum>(&m_item.record);
    QStringList facts{album && album->year ? QString::number(*album->year) : QString()};
    if (m_tracks.isComplete()) {
        const QList<LibraryTrack> tracks = m_tracks.tracks();
        double seconds = 0;
        bool isOfOthers = false;
        for (const LibraryTrack &track : tracks) {
            seconds += std::max(0.0, track.duration.value_or(0));
            isOfOthers = isOfOthers || (album && ArtistName::key(track.artistName) !=
                                                     ArtistName::key(album->artistName.value_or(QString())));
        }
        facts.append(countOf(static_cast<int>(tracks.size()), "1 track", "%L1 tracks"));
        facts.append(seconds > 0 ? runningTime(seconds) : QString());
        // On the page of an album that says who it is by, every line needs not say it again.
        QSet<int> unneeded;
        if (album)
            unneeded = isOfOthers ? QSet<int>{TrackListModel::albumColumn}
                                  : QSet<int>{TrackListModel::albumColumn, TrackListModel::artistColumn};
        m_table->setUnneeded(unneeded);
    }
    m_header->setDetails(joined(facts));
}

// Favourites

FavoritesPage::FavoritesPage(const LibraryPageContext &context)
    : m_context(context), m_kinds(new QButtonGroup(this)), m_lists(new QStackedWidget),
      m_tracks(context.browser()) {
    const std::pair<MediaKind, QString> names[] = {{MediaKind::artist, tr("Artists")},
                                                   {MediaKind::album, tr("Albums")},
                                                   {MediaKind::track, tr("Tracks")},
                                                   {MediaKind::playlist, tr("Playlists")},
                                                   {MediaKind::radio, tr("Radios")}};
    auto *const bar = new QHBoxLayout;
    bar->setContentsMargins(14, 8, 14, 8);
    const LibraryPane::EmptyText empty{tr("No favourites yet"), tr("Add some from the menu of an item.")};
    for (const auto &[kind, name] : names) {
        auto *const button = new QToolButton;
        button->setText(name);
        button->setCheckable(true);
        button->setAutoRaise(true);
        m_kinds->addButton(button, static_cast<int>(kind));
        bar->addWidget(button);
        if (kind == MediaKind::track) {
            m_lists->addWidget(new LibraryPane(
                context.makeTable(m_tracks, QStringLiteral("library/favoriteColumns")), m_tracks, empty));
            continue;
        }
        auto &items =
            m_items.emplace(kind, std::make_unique<LibraryListModel>(context.browser())).first->second;
        m_lists->addWidget(new LibraryPane(context.makeGrid(*items, name), *items, empty));
    }
    bar->addStretch(1);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(bar);
    layout->addWidget(m_lists, 1);
    connect(m_kinds, &QButtonGroup::idClicked, this,
            [this](int id) { showKind(static_cast<MediaKind>(id)); });
}

void FavoritesPage::open() {
    const MusicBackendCapabilities offered = m_context.browser().capabilities();
    m_kinds->button(static_cast<int>(MediaKind::playlist))
        ->setVisible(offered.testFlag(MusicBackendCapability::playlists));
    m_kinds->button(static_cast<int>(MediaKind::radio))
        ->setVisible(offered.testFlag(MusicBackendCapability::radio));
    const QAbstractButton *const chosen = m_kinds->checkedButton();
    showKind(chosen && chosen->isVisibleTo(this) ? static_cast<MediaKind>(m_kinds->checkedId())
                                                 : MediaKind::album);
}

void FavoritesPage::showKind(MediaKind kind) {
    m_kinds->button(static_cast<int>(kind))->setChecked(true);
    m_lists->setCurrentIndex(static_cast<int>(kind));
    if (kind == MediaKind::track)
        m_tracks.show(TrackListModel::Content::favorites());
    else
        m_items.at(kind)->show(LibraryListModel::Content::favoritesOf(kind));
    setFocusProxy(m_lists->currentWidget());
}

// Pages of several parts

LibraryScrollPage::LibraryScrollPage(QWidget *parent) : QScrollArea(parent), m_layout(new QVBoxLayout) {
    setFrameShape(NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *const content = new QWidget;
    content->setBackgroundRole(QPalette::Base);
    m_layout->setContentsMargins(0, 8, 0, 12);
    m_layout->setSpacing(4);
    auto *const outer = new QVBoxLayout(content);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addLayout(m_layout);
    outer->addStretch(1);
    setWidget(content);
    viewport()->setBackgroundRole(QPalette::Base);
}

QWidget *LibraryScrollPage::addPart(const QString &title, QWidget *content) {
    auto *const part = new QWidget;
    auto *const layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 6);
    layout->setSpacing(2);
    if (!title.isEmpty()) {
        auto *const heading = new QLabel(title);
        heading->setTextFormat(Qt::PlainText);
        QFont font = heading->font();
        font.setPointSizeF(font.pointSizeF() * 1.2);
        font.setBold(true);
        heading->setFont(font);
        heading->setContentsMargins(14, 6, 14, 0);
        layout->addWidget(heading);
    }
    layout->addWidget(content);
    m_layout->addWidget(part);
    return part;
}

void LibraryScrollPage::removeParts() {
    while (QLayoutItem *const item = m_layout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

SearchPage::SearchPage(const LibraryPageContext &context, LibrarySearch &search)
    : m_search(search), m_message(new LibraryMessage) {
    m_message->setMinimumHeight(260);
    addPart({}, m_message);
    const auto add = [&](const QString &title, QWidget *list, LibraryModel &model) {
        m_parts.emplace(addPart(title, list), &model);
    };
    using Shape = LibraryGridView::Shape;
    add(tr("Artists"), context.makeGrid(search.artists(), tr("Artists found"), Shape::line),
        search.artists());
    add(tr("Albums"), context.makeGrid(search.albums(), tr("Albums found"), Shape::line), search.albums());
    auto *const table = context.makeTable(search.tracks(), QStringLiteral("library/searchColumns"));
    table->setUnneeded({TrackListModel::numberColumn});
    table->setShowsAll();
    add(tr("Tracks"), table, search.tracks());
    connect(&search, &LibrarySearch::changed, this, &SearchPage::showResults);
    showResults();
}

void SearchPage::showResults() {
    for (const auto &[part, model] : m_parts)
        part->setVisible(model->rowCount({}) > 0);
    if (m_search.failure())
        m_message->say(m_search.failure()->sentence, {}, tr("Try Again"), [this] { m_search.retry(); });
    else if (m_search.isSettled())
        m_message->say(tr("Nothing found"), tr("Nothing in the library matches “%1”.").arg(m_search.text()));
    else
        m_message->say({}, tr("Searching…"));
    m_message->parentWidget()->setVisible(m_search.failure() || !m_search.hasResults());
}

RecommendationsPage::RecommendationsPage(const LibraryPageContext &context)
    : m_context(context), m_recommendations(context.browser()) {
    connect(&m_recommendations, &LibraryRecommendations::changed, this, &RecommendationsPage::showShelves);
    connect(&m_recommendations, &LibraryRecommendations::resolved, this,
            [this](const RecommendationItem &item) {
                Q_EMIT m_context.actions.opened(LibraryItem::recommended(item));
            });
}

void RecommendationsPage::showShelves() {
    removeParts();
    auto &shelves = m_recommendations.shelves();
    for (const LibraryRecommendations::Shelf &shelf : shelves) {
        auto *const line = m_context.makeGrid(*shelf.items, shelf.row.name, LibraryGridView::Shape::line);
        connect(line, &LibraryGridView::opened, this,
                [this, references = shelf.references](const QModelIndex &index) {
                    const RecommendationItem item = references.value(index.row());
                    if (item.isMapping())
                        m_recommendations.resolve(item);
                });
        addPart(shelf.row.name, line);
    }
    if (!shelves.empty())
        return;
    auto *const message = new LibraryMessage;
    message->setMinimumHeight(260);
    if (const auto &failure = m_recommendations.failure())
        message->say(failure->sentence, {}, tr("Try Again"), [this] {
            // The button is gone by the time that the answer comes.
            QMetaObject::invokeMethod(
                &m_recommendations, [this] { m_recommendations.retry(); }, Qt::QueuedConnection);
        });
    else
        message->say({}, m_recommendations.isLoading() ? tr("Loading…")
                                                       : tr("Nothing is recommended right now."));
    addPart({}, message);
}

} // namespace vantor
