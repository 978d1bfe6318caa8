#include "Vantor/Library/LibraryWindow.h"

#include "MusicBackendKit/ArtistName.h"
#include "Vantor/Library/LibraryContent.h"
#include "Vantor/Library/LibraryHead.h"
#include "Vantor/Library/LibraryPlaceStore.h"
#include "Vantor/Library/LibrarySidebar.h"
#include "Vantor/Library/LibraryTexts.h"
#include "Vantor/Windows/DialogPlace.h"
#include "Vantor/Windows/FaintText.h"
#include "Vantor/Windows/FileInfoDialog.h"
#include "Vantor/Windows/SkinnedWindow.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QSettings>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

namespace vantor {

namespace {

const QString geometryKey = QStringLiteral("library/geometry");
const QString splitterKey = QStringLiteral("library/splitter");
constexpr int mostSections = 7;
constexpr QSize commonSize{780, 560}; // which has room beside the player on most screens
constexpr int sidebarWidth = 168;
constexpr std::chrono::seconds tellingTime{8};

} // namespace

LibraryWindow::LibraryWindow(LibraryBrowser &browser, ArtworkCache &artwork, QSettings &settings,
                             const LibraryActions::FindFiles &findFiles)
    : m_browser(browser), m_settings(settings), m_actions(browser, findFiles), m_history(LibraryPlace()),
      m_head(new LibraryHead(browser)), m_sidebar(new LibrarySidebar),
      m_content(new LibraryContent(m_actions, artwork, settings)), m_splitter(new QSplitter),
      m_foot(new QHBoxLayout), m_status(new QLabel) {
    setWindowTitle(tr("Library"));
    m_telling.setSingleShot(true);
    m_telling.setInterval(tellingTime);
    arrange();
    follow();
    addKeys();
    giveFaintText(*this);
    restore();
    takeSource();
}

LibraryWindow::~LibraryWindow() {
    if (isVisible()) // the program ends
        store();
}

void LibraryWindow::arrange() {
    m_splitter->addWidget(m_sidebar);
    m_splitter->addWidget(m_content);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    m_status->setForegroundRole(QPalette::PlaceholderText);
    m_status->setTextFormat(Qt::PlainText);
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_status->setContentsMargins(12, 4, 12, 5);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_head);
    layout->addWidget(m_splitter, 1);
    m_foot->setContentsMargins(0, 0, 6, 0);
    m_foot->addWidget(m_status, 1);
    layout->addLayout(m_foot);
    setMinimumSize(560, 360);
}

void LibraryWindow::follow() {
    connect(&m_telling, &QTimer::timeout, this, [this] { tell({}); });
    connect(m_head, &LibraryHead::backAsked, this, [this] { step(false); });
    connect(m_head, &LibraryHead::forwardAsked, this, [this] { step(true); });
    connect(m_head, &LibraryHead::searchTyped, this, &LibraryWindow::takeSearchText);
    connect(m_head, &LibraryHead::searchLeft, this, [this] { m_content->setFocus(); });
    connect(m_head, &LibraryHead::resultsAsked, m_content, &LibraryContent::focusResults);
    connect(m_sidebar, &LibrarySidebar::chosen, this, [this](LibrarySection section) { go({section}); });
    connect(m_content, &LibraryContent::artistAsked, this, &LibraryWindow::openArtist);
    connect(m_content, &LibraryContent::countChanged, this, &LibraryWindow::showStatus);
    connect(&m_actions, &LibraryActions::opened, this, &LibraryWindow::open);
    connect(&m_actions, &LibraryActions::infoAsked, this, [this](const Track &track) {
        (new FileInfoDialog(TrackInfo::fromTrack(track, std::nullopt), this))->show();
    });
    PlaylistActions &playlists = m_actions.playlists();
    connect(&playlists, &PlaylistActions::told, this, &LibraryWindow::tell);
    connect(&playlists, &PlaylistActions::made, this,
            [this](const LibraryPlaylist &playlist) { go({LibrarySection::playlists, playlist}); });
    connect(&playlists, &PlaylistActions::renamed, this, [this](const MediaID &id, const QString &name) {
        m_history.rename(id, name);
        showPlace();
    });
    connect(&playlists, &PlaylistActions::deleted, this, [this](const MediaID &id) {
        m_history.forget(id);
        showPlace();
    });
    connect(&m_browser, &LibraryBrowser::sourceChanged, this, &LibraryWindow::takeSource);
    connect(&m_browser, &LibraryBrowser::capabilitiesChanged, this, &LibraryWindow::takeCapabilities);
    connect(&m_browser, &LibraryBrowser::stateChanged, this, &LibraryWindow::showState);
    connect(&m_browser, &LibraryBrowser::failed, this, &LibraryWindow::tell);
    for (const auto signal : {&LibraryBrowser::aboutToPlay, &LibraryBrowser::outputChosen})
        connect(&m_browser, signal, this, [this] { tell({}); }); // what was told of the last try is over
}

void LibraryWindow::addKeys() {
    const auto add = [this](const QKeySequence &key, const std::function<void()> &run) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, run);
    };
    add(QKeySequence::Find, [this] { m_head->focusSearch(); });
    // Not the buttons' own shortcuts, which act only when the button has been seen to be pressed.
    add(QKeySequence(Qt::ALT | Qt::Key_Left), [this] { step(false); });
    add(QKeySequence(Qt::ALT | Qt::Key_Right), [this] { step(true); });
    add(QKeySequence(Qt::CTRL | Qt::Key_W), [this] { close(); });
    add(QKeySequence(Qt::Key_F11), [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
    for (int number = 1; number <= mostSections; ++number)
        add(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + number)), [this, number] {
            if (number <= m_sidebar->offered().size())
                go({m_sidebar->offered()[number - 1]});
        });
}

void LibraryWindow::restore() {
    if (!restoreGeometry(m_settings.value(geometryKey).toByteArray()))
        resize(commonSize);
    if (!m_splitter->restoreState(m_settings.value(splitterKey).toByteArray()))
        m_splitter->setSizes({sidebarWidth, commonSize.width() - sidebarWidth});
    m_history = LibraryHistory({LibraryPlaceStore::section(m_settings)});
}

void LibraryWindow::store() const {
    m_settings.setValue(geometryKey, saveGeometry());
    m_settings.setValue(splitterKey, m_splitter->saveState());
    if (m_browser.backend())
        LibraryPlaceStore::save(m_settings, m_history.current(), m_browser.backend()->sourceID());
}

// Where one is

void LibraryWindow::go(const LibraryPlace &place) {
    m_history.go(place);
    showPlace();
}

void LibraryWindow::open(const LibraryItem &item) {
    const LibrarySection section = m_history.current().section;
    if (const auto *const artist = std::get_if<ArtistGroup>(&item.record)) {
        // Found by a search it may be only one of those that are one to the user.
        const auto whole =
            artist->members.isEmpty() ? std::nullopt : m_content->group(artist->members.first().id);
        go({section, whole.value_or(*artist)});
    } else if (const auto *const album = std::get_if<LibraryAlbum>(&item.record)) {
        go({section, *album});
    } else if (const auto *const playlist = std::get_if<LibraryPlaylist>(&item.record)) {
        go({section, *playlist});
    } else {
        m_actions.play({item}, PlayMode::Kind::replace);
    }
}

void LibraryWindow::openArtist(const LibraryAlbum &album) {
    if (!album.artistID)
        return;
    LibraryArtist artist;
    artist.id = *album.artistID;
    artist.name = ArtistName::display(album.artistName.value_or(QString()));
    open(LibraryItem::artist(artist));
}

void LibraryWindow::step(bool isForward) {
    if (isForward)
        m_history.forward();
    else
        m_history.back();
    showPlace();
}

void LibraryWindow::showPlace() {
    const LibraryPlace place = m_history.current();
    const auto *const search = std::get_if<LibraryPlace::Search>(&place.what);
    m_head->showSteps(m_history.canGoBack(), m_history.canGoForward());
    m_head->showSearch(search ? search->text : QString());
    m_sidebar->mark(search ? std::nullopt : std::optional(place.section));
    if (!m_browser.connected()) {
        showState();
        return;
    }
    m_content->show(place);
    showStatus();
}

// What is typed becomes a place of its own, which changes as it is typed and is left when nothing remains.
void LibraryWindow::takeSearchText(const QString &text) {
    LibraryPlace place = m_history.current();
    const bool isSearching = std::holds_alternative<LibraryPlace::Search>(place.what);
    const QString wanted = text.simplified();
    if (wanted.isEmpty()) {
        if (isSearching)
            step(false);
        return;
    }
    place.what = LibraryPlace::Search{wanted};
    if (isSearching)
        m_history.replaceCurrent(place);
    else
        m_history.go(place);
    showPlace();
}

// What is told

void LibraryWindow::takeSource() {
    const QList<LibrarySection> sections = librarySections(m_browser.capabilities());
    m_sidebar->offer(sections);
    const LibrarySection section = m_history.current().section;
    // Places of another source lead nowhere.
    m_history = LibraryHistory({sections.contains(section) ? section : LibrarySection::albums});
    if (m_browser.backend() && !std::exchange(m_isRestored, true)) {
        if (const auto place = LibraryPlaceStore::place(m_settings, m_browser.backend()->sourceID()))
            m_history.go(*place);
    }
    showPlace();
}

void LibraryWindow::takeCapabilities() {
    if (librarySections(m_browser.capabilities()) != m_sidebar->offered())
        takeSource();
}

void LibraryWindow::showState() {
    const std::optional<LibraryFailure> &failure = m_browser.failure();
    const auto openSettings = [this] { Q_EMIT settingsAsked(); };
    m_sidebar->setSectionsEnabled(m_browser.connected() != nullptr);
    m_head->setSearchEnabled(m_browser.connected() != nullptr);
    switch (m_browser.state()) {
    case LibraryBrowser::State::connected:
        showPlace();
        return;
    case LibraryBrowser::State::connecting:
        m_content->say(tr("One moment…"), m_sourceStatus);
        break;
    case LibraryBrowser::State::failed:
        if (failure && failure->isSetup)
            m_content->say(tr("Your music belongs here"), failure->sentence, tr("Open Settings…"),
                           openSettings);
        else
            m_content->say(tr("The library is not there"), failure ? failure->sentence : QString(),
                           tr("Try Again"), [this] { m_browser.retry(); });
        break;
    case LibraryBrowser::State::noSource:
        m_content->say(tr("No library"), {}, tr("Open Settings…"), openSettings);
        break;
    }
    showStatus();
}

void LibraryWindow::setSourceSwitcher(QWidget *switcher) {
    m_sidebar->setHead(switcher);
}

void LibraryWindow::setOutputPicker(QWidget *picker) {
    m_foot->addWidget(picker);
}

void LibraryWindow::setSourceStatus(const QString &status) {
    m_sourceStatus = status;
    if (m_browser.state() == LibraryBrowser::State::connecting)
        showState();
    showStatus();
}

void LibraryWindow::showStatus() {
    const QString count = m_browser.connected() ? m_content->countOf(m_history.current()) : QString();
    const QString source = m_browser.backend() ? m_browser.backend()->displayName() : QString();
    m_status->setText(m_told.isEmpty() ? LibraryTexts::joined({source, count, m_sourceStatus}) : m_told);
}

void LibraryWindow::tell(const QString &sentence) {
    m_told = sentence;
    if (!sentence.isEmpty())
        m_telling.start();
    showStatus();
}

// Keys and pointer

void LibraryWindow::bringToFront() {
    if (!isVisible() && !m_settings.contains(geometryKey)) {
        QList<QRect> player;
        for (const QWidget *const window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && qobject_cast<const SkinnedWindow *>(window))
                player.append(window->frameGeometry());
        }
        DialogPlace::beside(*this, player);
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    m_content->setFocus();
}

void LibraryWindow::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Back)
        step(false);
    else if (event->key() == Qt::Key_Forward)
        step(true);
    else if (event->key() == Qt::Key_Escape &&
             std::holds_alternative<LibraryPlace::Search>(m_history.current().what))
        takeSearchText({});
    else
        QWidget::keyPressEvent(event);
}

void LibraryWindow::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() == Qt::BackButton || event->button() == Qt::ForwardButton)
        step(event->button() == Qt::ForwardButton);
    else
        QWidget::mouseReleaseEvent(event);
}

void LibraryWindow::closeEvent(QCloseEvent *event) {
    store();
    QWidget::closeEvent(event);
}

} // namespace vantor
