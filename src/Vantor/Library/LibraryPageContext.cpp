#include "Vantor/Library/LibraryPageContext.h"

#include <QMenu>

namespace vantor {

namespace {

QMenu *makeMenu(QWidget &parent) {
    auto *const menu = new QMenu(&parent);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    return menu;
}

void popUp(QMenu &menu, const QPoint &at) {
    if (menu.isEmpty())
        menu.deleteLater();
    else
        menu.popup(at);
}

} // namespace

LibraryGridView *LibraryPageContext::makeGrid(LibraryItemModel &items, const QString &name,
                                              LibraryGridView::Shape shape) const {
    auto *const grid = new LibraryGridView(items, artwork, actions, shape);
    grid->setAccessibleName(name);
    LibraryActions *const does = &actions;
    QObject::connect(grid, &LibraryGridView::opened, does, [grid, does](const QModelIndex &index) {
        if (const LibraryItem *const item = grid->items().item(index.row()))
            Q_EMIT does->opened(*item);
    });
    QObject::connect(grid, &LibraryGridView::menuAsked, does, [grid, does](const QPoint &at) {
        QMenu *const menu = makeMenu(*grid);
        does->fillMenu(*menu, grid->selected());
        popUp(*menu, at);
    });
    return grid;
}

void LibraryPageContext::popUpMenu(QWidget &page, const LibraryItem &item, const QPoint &at) const {
    QMenu *const menu = makeMenu(page);
    actions.fillPageMenu(*menu, item);
    popUp(*menu, at);
}

TrackTable *LibraryPageContext::makeTable(TrackListModel &tracks, const QString &columnsKey,
                                          const std::function<void(QMenu &)> &addMore) const {
    auto *const table = new TrackTable(tracks, actions);
    table->restoreColumns(settings, columnsKey);
    LibraryActions *const does = &actions;
    QObject::connect(table, &TrackTable::opened, does, [table, does](const QModelIndex &index) {
        // A double click may leave others selected, too; then they are what is meant.
        if (const LibraryTrack *const track = table->tracks().track(index.row()))
            does->playTracks(table->tracks(), table->selected().contains(*track)
                                                  ? table->selected()
                                                  : QList<LibraryTrack>{*track});
    });
    QObject::connect(table, &TrackTable::menuAsked, does, [table, does, addMore](const QPoint &at) {
        QMenu *const menu = makeMenu(*table);
        does->fillMenu(*menu, table->tracks(), table->selected());
        if (addMore)
            addMore(*menu);
        popUp(*menu, at);
    });
    return table;
}

} // namespace vantor
