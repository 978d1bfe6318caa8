#pragma once

#include "Vantor/Library/LibraryActions.h"
#include "Vantor/Library/LibraryGridView.h"
#include "Vantor/Library/TrackTable.h"

namespace vantor {

/// What all pages share. Main thread; outlives its pages.
struct LibraryPageContext {
    LibraryActions &actions;
    ArtworkCache &artwork;
    QSettings &settings;

    [[nodiscard]] LibraryBrowser &browser() const { return actions.browser(); }
    /// A grid or a line of items that opens, plays and asks as everywhere in the window.
    [[nodiscard]] LibraryGridView *
    makeGrid(LibraryItemModel &items, const QString &name,
             LibraryGridView::Shape shape = LibraryGridView::Shape::grid) const;
    /// `addMore`: adds what else can be done with the selected tracks to their menu.
    [[nodiscard]] TrackTable *makeTable(TrackListModel &tracks, const QString &columnsKey,
                                        const std::function<void(QMenu &)> &addMore = {}) const;
    /// What can be done with the item whose page this is, beside its buttons.
    void popUpMenu(QWidget &page, const LibraryItem &item, const QPoint &at) const;
};

} // namespace vantor
