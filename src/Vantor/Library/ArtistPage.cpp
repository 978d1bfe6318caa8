#include "Vantor/Library/ArtistPage.h"

#include "Vantor/Library/LibraryPane.h"
#include "Vantor/Library/LibraryTexts.h"

#include <QVBoxLayout>

namespace vantor {

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
    connect(m_header, &LibraryHeader::menuAsked, this,
            [this](const QPoint &at) { m_context.popUpMenu(*this, {m_artist}, at); });
    connect(&context.browser(), &LibraryBrowser::changed, this, [this](const LibraryChange &change) {
        LibraryItem item{m_artist};
        if (change.kind == LibraryChange::Kind::favoriteChanged &&
            item.setFavorite(change.id, change.isFavorite)) {
            m_artist = std::get<ArtistGroup>(item.record);
            showHeader();
        }
    });
    connect(&m_albums, &LibraryModel::stateChanged, this, &ArtistPage::showDetails);
}

void ArtistPage::show(const ArtistGroup &artist) {
    m_artist = artist;
    showHeader();
    m_albums.show(LibraryListModel::Content::albumsOf(artist));
    showDetails();
}

void ArtistPage::showHeader() {
    const auto isFavorite = m_context.actions.offersFavorites()
                                ? std::optional(LibraryItem{m_artist}.isFavorite().value_or(false))
                                : std::nullopt;
    m_header->show({MediaKind::artist, m_artist.name, {}, m_artist.artwork, isFavorite});
}

void ArtistPage::showDetails() {
    m_header->setDetails(m_albums.hasAnswer() ? LibraryTexts::count(MediaKind::album, m_albums.rowCount())
                                              : QString());
}

} // namespace vantor
