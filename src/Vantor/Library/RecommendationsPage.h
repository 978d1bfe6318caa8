#pragma once

#include "LibraryBrowser/LibraryRecommendations.h"
#include "Vantor/Library/LibraryPageContext.h"
#include "Vantor/Library/LibraryScrollPage.h"

namespace vantor {

/// What the source recommends: a line of items for each row.
class RecommendationsPage : public LibraryScrollPage {
    Q_OBJECT

  public:
    explicit RecommendationsPage(const LibraryPageContext &context);
    void open() { m_recommendations.open(); }

  private:
    void showShelves();

    LibraryPageContext m_context;
    LibraryRecommendations m_recommendations;
};

} // namespace vantor
