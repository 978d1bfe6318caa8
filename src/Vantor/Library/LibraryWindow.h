#pragma once

#include "Vantor/Library/LibraryActions.h"
#include "Vantor/Library/LibraryPlace.h"

#include <QTimer>
#include <QWidget>

class QHBoxLayout;
class QLabel;
class QSettings;
class QSplitter;

namespace vantor {

class ArtworkCache;
class LibraryContent;
class LibraryHead;
class LibrarySidebar;

/// The music source as a window: its parts at the left, the one that is chosen beside them, a search above
/// and what the source is doing below. Main thread; nothing blocks. Borrows everything it is given.
class LibraryWindow : public QWidget {
    Q_OBJECT

  public:
    LibraryWindow(LibraryBrowser &browser, ArtworkCache &artwork, QSettings &settings,
                  const LibraryActions::FindFiles &findFiles);
    ~LibraryWindow() override;

    /// Shows the window in front of the others, the first time beside the player.
    void bringToFront();
    /// What stands above the sections, and chooses the source; the window owns it.
    void setSourceSwitcher(QWidget *switcher);
    /// What stands in the foot beside the status, and chooses where it plays; the window owns it.
    void setOutputPicker(QWidget *picker);
    /// What the source is doing, as a sentence; empty when it rests.
    void setSourceStatus(const QString &status);

  Q_SIGNALS:
    void settingsAsked(); ///< those of the library

  protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

  private:
    void arrange();
    void follow();
    void addKeys();
    void restore();
    void store() const;

    // Where one is
    void go(const LibraryPlace &place);
    void open(const LibraryItem &item);
    void openArtist(const LibraryAlbum &album);
    void step(bool isForward);
    void showPlace();
    void takeSearchText(const QString &text);

    // What is told
    void takeSource();
    void takeCapabilities();
    void showState();
    void showStatus();
    void tell(const QString &sentence);

    LibraryBrowser &m_browser;
    QSettings &m_settings;
    LibraryActions m_actions;
    LibraryHistory m_history;
    LibraryHead *m_head;
    LibrarySidebar *m_sidebar;
    LibraryContent *m_content;
    QSplitter *m_splitter;
    QHBoxLayout *m_foot;
    QLabel *m_status;
    QString m_sourceStatus;
    QString m_told; ///< what went wrong, for a while
    QTimer m_telling;
    bool m_isRestored = false; ///< the place of the run before
};

} // namespace vantor
