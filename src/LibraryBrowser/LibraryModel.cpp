#include "LibraryBrowser/LibraryModel.h"

#include "MusicBackendKit/MediaIDTransfer.h"

#include <QMimeData>

namespace vantor {

int LibraryItemModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : 1;
}

QVariant LibraryItemModel::data(const QModelIndex &index, int role) const {
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole && role != Qt::AccessibleTextRole)
        return {};
    const LibraryItem *const found = index.isValid() ? item(index.row()) : nullptr;
    if (!found)
        return {};
    if (role == Qt::DisplayRole)
        return found->title();
    const QString subtitle = found->subtitle();
    const QString separator = role == Qt::ToolTipRole ? QStringLiteral("\n") : QStringLiteral(", ");
    return subtitle.isEmpty() ? found->title() : found->title() + separator + subtitle;
}

Qt::ItemFlags LibraryItemModel::flags(const QModelIndex &index) const {
    const Qt::ItemFlags flags = LibraryModel::flags(index);
    return index.isValid() ? flags | Qt::ItemIsDragEnabled : flags;
}

QStringList LibraryItemModel::mimeTypes() const {
    return {QLatin1String(MediaIDTransfer::contentType)};
}

QMimeData *LibraryItemModel::mimeData(const QModelIndexList &indexes) const {
    MediaIDTransfer transfer;
    for (const QModelIndex &index : indexes) {
        if (const LibraryItem *const found = item(index.row()))
            transfer.ids += found->ids();
    }
    auto *const data = new QMimeData;
    transfer.write(*data);
    return data;
}

} // namespace vantor
