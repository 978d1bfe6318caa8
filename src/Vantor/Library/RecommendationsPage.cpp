#include "Vantor/Library/RecommendationsPage.h"

#include "Vantor/Windows/MessagePage.h"

namespace vantor {

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
    auto *const message = new MessagePage;
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
