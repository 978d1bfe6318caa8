#pragma once

#include "LibraryBrowser/LibrarySearch.h"
#include "Vantor/Library/LibraryPageContext.h"
#include "Vantor/Library/LibraryScrollPage.h"

namespace vantor {

class MessagePage;

/// What a search finds.
class SearchPage : public LibraryScrollPage {
    Q_OBJECT

  public:
    SearchPage(const LibraryPageContext &context, LibrarySearch &search);
    /// To the first thing found.
    void focusResults();
    /// How many were found of each kind, as a text.
    [[nodiscard]] QString count() const;

  private:
    struct Part {
        QWidget *whole; ///< with its title
        QAbstractItemView *list;
    };
    void showResults();

    LibrarySearch &m_search;
    MessagePage *m_message;
    std::vector<Part> m_parts;
};

} // namespace vantor
