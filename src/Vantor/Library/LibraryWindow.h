#pragma once

#include "Vantor/Library/LibraryPages.h"
#include "Vantor/Library/LibraryPlace.h"

#include <QTimer>
#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QSplitter;
class QStackedWidget;
class QToolButton;

namespace vantor {

/// The music source as a window: its parts at the left, the one that is chosen beside them, a search above
/// and what the source is doing below. Main thread; nothing blocks. Borrows everything it is given.
class LibraryWindow : public QWidget {
    Q_OBJECT

  public:
    LibraryWindow(LibraryBrowser &browser, ArtworkCache &artwork, QSettings &settings,
                  const LibraryActions::FindFiles &findFiles);
    ~LibraryWindow() override;

    /// Shows the window in front of the others.
    void bringToFront();
    /// What the source is doing, as a sentence; empty when it rests.
    void setSourceStatus(const QString &status);

  Q_SIGNALS:
    void settingsAsked(); ///< those of the library

  protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    [[nodiscard]] QWidget *makeHead();
    [[nodiscard]] QWidget *makeFoot();
    void makePages();
    void addKeys();
    void restore();
    void store() const;

    // Where one is
    void go(const LibraryPlace &place);
    void goTo(LibrarySection section);
    void open(const LibraryItem &item);
    void openArtist(const LibraryAlbum &album);
    void step(bool isForward);
    void showPlace();
    [[nodiscard]] QWidget *pageOf(const LibraryPlace &place);
    [[nodiscard]] QWidget *sectionPage(LibrarySection section);
    void takeSearchText(const QString &text);

    // What is told
    void takeSource();
    void showState();
    void showOutputs();
    void showStatus();
    void tell(const QString &sentence);
    void takeColors();

    LibraryBrowser &m_browser;
    QSettings &m_settings;
    LibraryActions m_actions;
    LibraryPageContext m_context;
    LibrarySearch m_search;
    ArtistListModel m_artists;
    LibraryListModel m_albums;
    TrackListModel m_tracks;
    LibraryListModel m_playlists;
    LibraryListModel m_radios;
    LibraryHistory m_history;

    QToolButton *m_back;
    QToolButton *m_forward;
    QLineEdit *m_searchField;
    QAction *m_searchIcon;
    QListWidget *m_sections;
    QSplitter *m_splitter;
    QStackedWidget *m_pages;
    LibraryMessage *m_message; ///< about the source as a whole
    std::map<LibrarySection, QWidget *> m_sectionPages;
    ArtistPage *m_artistPage;
    TrackListPage *m_trackListPage;
    FavoritesPage *m_favoritesPage;
    RecommendationsPage *m_recommendationsPage;
    SearchPage *m_searchPage;
    QLabel *m_status;
    QComboBox *m_outputs;
    QLabel *m_output; ///< when there is only one
    QString m_sourceStatus;
    QString m_told; ///< what went wrong, for a while
    QTimer m_telling;
};

} // namespace vantor
