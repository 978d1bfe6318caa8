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
    m_header->setDetails(m_albums.hasAnswer() ? LibraryTexts::count(MediaKind::album, m_albums.rowCount())
                                              : QString());
}

} // namespace vantor
