#pragma once

#include "SkinBrowser/SkinListModel.h"
#include "SkinBrowser/ThumbnailCache.h"
#include "Vantor/Windows/SkinDetails.h"
#include "Vantor/Windows/SkinGridView.h"

#include <QWidget>

#include <map>

class QSettings;
class QSplitter;
class QStackedWidget;
class QTabWidget;
class QToolButton;

namespace vantor {

class GridSearchField;
class MessagePage;
struct MuseumSetup;
class MuseumTab;
class PlayerModel;
class SkinBrowserFoot;
class SkinLibraryModel;

/// The skins folder as a window: a grid of pictures with a search and a filter, and what is known of the skin
/// that is selected; in a second tab, the online museum. Main thread; nothing blocks. Borrows everything it
/// is given.
class SkinBrowserWindow : public QWidget {
    Q_OBJECT

  public:
    SkinBrowserWindow(PlayerModel &model, SkinLibraryModel &library, SkinSwitcher &switcher,
                      ThumbnailCache &thumbnails, QSettings &settings);
    ~SkinBrowserWindow() override;

    /// Adds the museum, which is asked once its tab is chosen; it is now, when it was the last time.
    void addMuseum(const MuseumSetup &setup);

    /// Shows the window in front of the others; the first time where it hides none of the player's windows,
    /// whose frames these are.
    void bringToFront(const QList<QRect> &player);

  protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

  private:
    [[nodiscard]] QWidget *makeHead();
    void makeShortcuts();
    void connectLibrary();
    void connectGrid();
    void restore();
    void store() const;

    // What is shown
    void search();
    void takeResult();
    void endSearch();
    void showState();
    void showCounts();
    [[nodiscard]] bool sayWhyEmpty();
    void takeWorn();
    void showSelected();
    void keepASelection();

    // What is done
    [[nodiscard]] const SkinRecord *selected() const;
    void wear(const QModelIndex &index);
    void popUpMenu(QPoint at);
    void askToTrash();
    void askToTrash(const QString &name, const std::vector<FileStamp> &files);
    void askToReset();
    void tell(const QString &message);

    PlayerModel &m_model;
    SkinLibraryModel &m_library;
    SkinSwitcher &m_switcher;
    QSettings &m_settings;
    SkinListModel m_skins;

    QTabWidget *m_tabs;
    MuseumTab *m_museum = nullptr; ///< once it was seen
    GridSearchField *m_search;
    std::map<SkinStatus, QToolButton *> m_filters;
    QSplitter *m_splitter;
    QStackedWidget *m_pages; ///< the grid, or what there is to say instead
    SkinGridView *m_grid;
    MessagePage *m_message;
    SkinDetails *m_details;
    SkinBrowserFoot *m_foot;
    std::optional<std::int64_t> m_selected; ///< the skin, also while its row is not read
    int m_selectedRow = 0;                  ///< where it stood last
};

} // namespace vantor
