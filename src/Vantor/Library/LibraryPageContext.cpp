#include "Vantor/Library/LibraryPageContext.h"

#include <QMenu>

namespace vantor {

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

} // namespace vantor
