#pragma once

#include "LibraryBrowser/LibraryListModel.h"
#include "Vantor/Library/LibraryHeader.h"
#include "Vantor/Library/LibraryPageContext.h"

namespace vantor {

/// An artist with all albums.
class ArtistPage : public QWidget {
    Q_OBJECT

  public:
    explicit ArtistPage(const LibraryPageContext &context);
    void show(const ArtistGroup &artist);

  private:
    void showHeader();
    void showDetails();

    LibraryPageContext m_context;
    ArtistGroup m_artist;
    LibraryListModel m_albums;
    LibraryHeader *m_header;
};

} // namespace vantor
