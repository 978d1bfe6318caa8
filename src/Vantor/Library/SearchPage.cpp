#include "Vantor/Library/SearchPage.h"

#include "Vantor/Library/LibraryTexts.h"
#include "Vantor/Windows/MessagePage.h"

namespace vantor {

SearchPage::SearchPage(const LibraryPageContext &context, LibrarySearch &search)
    : m_search(search), m_message(new MessagePage) {
    m_message->setMinimumHeight(260);
    addPart({}, m_message);
    const auto add = [&](const QString &title, QAbstractItemView *list) {
        m_parts.push_back({addPart(title, list), list});
    };
    using Shape = LibraryGridView::Shape;
    add(tr("Artists"), context.makeGrid(search.artists(), tr("Artists found"), Shape::line));
    add(tr("Albums"), context.makeGrid(search.albums(), tr("Albums found"), Shape::line));
    auto *const table = context.makeTable(search.tracks(), QStringLiteral("library/searchColumns"));
    table->setUnneeded({TrackListModel::numberColumn});
    table->setShowsAll();
    add(tr("Tracks"), table);
    connect(&search, &LibrarySearch::changed, this, &SearchPage::showResults);
    showResults();
}

void SearchPage::focusResults() {
    for (const Part &part : m_parts) {
        const QAbstractItemModel &found = *part.list->model();
        if (found.rowCount() == 0)
            continue;
        part.list->setFocus();
        if (!part.list->currentIndex().isValid())
            part.list->setCurrentIndex(found.index(0, found.columnCount() > 1 ? 1 : 0));
        return;
    }
}

QString SearchPage::count() const {
    const auto found = [](MediaKind kind, const LibraryModel &model) {
        return model.rowCount() > 0 ? LibraryTexts::count(kind, model.rowCount()) : QString();
    };
    return LibraryTexts::joined({found(MediaKind::artist, m_search.artists()),
                                 found(MediaKind::album, m_search.albums()),
                                 found(MediaKind::track, m_search.tracks())});
}

void SearchPage::showResults() {
    for (const Part &part : m_parts)
        part.whole->setVisible(part.list->model()->rowCount() > 0);
    if (m_search.failure())
        m_message->say(m_search.failure()->sentence, {}, tr("Try Again"), [this] { m_search.retry(); });
    else if (m_search.isSettled())
        m_message->say(tr("Nothing found"), tr("Nothing in the library matches “%1”.").arg(m_search.text()));
    else
        m_message->say({}, tr("Searching…"));
    m_message->parentWidget()->setVisible(m_search.failure() || !m_search.hasResults());
}

} // namespace vantor
