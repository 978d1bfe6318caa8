#include "Vantor/Library/FavoritesPage.h"

#include "Vantor/Library/LibraryPane.h"

#include <QButtonGroup>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace vantor {

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
    const LibraryPane::EmptyText empty{tr("No favourites yet"),
                                       tr("A click on the heart of anything adds it.")};
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

} // namespace vantor
