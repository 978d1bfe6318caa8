#pragma once

#include "LibraryBrowser/LibraryListModel.h"
#include "Vantor/Library/LibraryPageContext.h"

class QButtonGroup;
class QStackedWidget;

namespace vantor {

/// The favourites of each kind.
class FavoritesPage : public QWidget {
    Q_OBJECT

  public:
    explicit FavoritesPage(const LibraryPageContext &context);
    /// Asks for what the page shows.
    void open();

  private:
    void showKind(MediaKind kind);

    LibraryPageContext m_context;
    QButtonGroup *m_kinds;
    QStackedWidget *m_lists;
    std::map<MediaKind, std::unique_ptr<LibraryListModel>> m_items;
    TrackListModel m_tracks;
};

} // namespace vantor
