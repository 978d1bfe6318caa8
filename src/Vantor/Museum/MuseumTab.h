#pragma once

#include "SkinMuseum/Model/MuseumDownloads.h"
#include "SkinMuseum/Model/MuseumListModel.h"
#include "SkinMuseum/Model/MuseumPictures.h"
#include "Vantor/Museum/MuseumDetails.h"
#include "Vantor/Museum/OwnedSkins.h"
#include "Vantor/Museum/SkinHistory.h"

#include <QTimer>
#include <QWidget>

#include <memory>

class QLabel;
class QSplitter;
class QStackedWidget;

namespace vantor {

class GridSearchField;
class MessagePage;
class MuseumClient;
class MuseumGridView;
class MuseumResultCache;
class MuseumScreenshotCache;
struct MuseumSetup;
struct MuseumTile;
class NoticeBar;
class PlayerModel;
class QtMuseumTransport;
class SkinLibraryModel;
class SkinSwitcher;

/// The online museum in the skin browser: its skins as screenshots, a search, and what wears or downloads
/// them. Main thread; nothing blocks. Borrows everything it is given.
class MuseumTab : public QWidget {
    Q_OBJECT

  public:
    MuseumTab(PlayerModel &model, SkinLibraryModel &library, SkinSwitcher &switcher, const MuseumSetup &setup,
              QWidget *parent = nullptr);
    /// What is being downloaded is given up.
    ~MuseumTab() override;

    void focusSearch();

  Q_SIGNALS:
    void folderWanted(); ///< the user wants to choose the skins folder

  protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

  private:
    [[nodiscard]] QWidget *makeHead();
    void connectGrid();
    void connectDownloads();

    // What is shown
    void search();
    void endSearch();
    void enter();
    void retry();
    void retryLater();
    void showState();
    [[nodiscard]] bool sayWhyEmpty();
    void showFolder();
    void fitDetails();
    void showSelected();
    void mark(const MuseumSkin &skin, MuseumTile &tile) const;
    [[nodiscard]] QString spokenText(const MuseumSkin &skin) const;
    [[nodiscard]] bool isWorn(const QString &md5) const;
    [[nodiscard]] MuseumDetails::State stateOf(const QString &md5) const;

    // What is done
    [[nodiscard]] const MuseumSkin *selected() const;
    void choose(const QModelIndex &index);
    void wearSelected();
    void wear(const QString &md5, const QUrl &file);
    void goBack();
    void downloadSelected();
    void cancelSelected();
    void openPage();
    void start(const MuseumSkin &skin);
    void takeDownload(const QString &md5, const MuseumDownloadResult &result);
    void popUpMenu(QPoint at);

    PlayerModel &m_model;
    SkinLibraryModel &m_library;
    SkinSwitcher &m_switcher;

    // The museum: what is below borrows from what is above.
    std::shared_ptr<QtMuseumTransport> m_transport;
    std::unique_ptr<MuseumClient> m_client;
    std::unique_ptr<MuseumScreenshotCache> m_screenshots;
    std::unique_ptr<MuseumDownloader> m_downloader;
    std::unique_ptr<MuseumPictures> m_pictures;
    std::unique_ptr<MuseumListModel> m_list;
    OwnedSkins m_owned;
    std::unique_ptr<MuseumDownloads> m_downloads;
    SkinHistory m_history;
    QString m_wearNext;                 ///< once it is downloaded
    QUrl m_lastAsked;                   ///< of the skins that were to be worn at once
    QString m_lastMD5;                  ///< the same one's
    QHash<QString, QString> m_refusals; ///< why skins could not be worn, by MD5

    GridSearchField *m_search;
    QLabel *m_count;
    QTimer m_searchSoon;
    static constexpr std::chrono::seconds firstPause{5};
    static constexpr std::chrono::seconds longestPause{60};
    std::chrono::seconds m_pause = firstPause; ///< before the museum is asked again by itself
    QTimer m_retrySoon;
    NoticeBar *m_folderNotice;
    NoticeBar *m_notice;
    QSplitter *m_splitter;
    bool m_wasSplit = false; ///< by the user, who has the say from then on
    QStackedWidget *m_pages; ///< the grid, or what there is to say instead
    MuseumGridView *m_grid;
    MessagePage *m_message;
    MuseumDetails *m_details;
};

} // namespace vantor
