#include "Vantor/Library/LibraryWindow.h"

#include "MusicBackendKit/ArtistName.h"
#include "Vantor/Library/LibraryIcons.h"
#include "Vantor/Windows/FileInfoDialog.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QSettings>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolButton>

namespace vantor {

namespace {

using ::operator|; // of keys, which our own flags' operators hide

const QString geometryKey = QStringLiteral("library/geometry");
const QString splitterKey = QStringLiteral("library/splitter");
const QString sectionKey = QStringLiteral("library/section");
constexpr std::chrono::seconds tellingTime{8};

// The names under which the section is kept.
const QHash<LibrarySection, QString> &keys() {
    static const QHash<LibrarySection, QString> all{
        {LibrarySection::artists, QStringLiteral("artists")},
        {LibrarySection::albums, QStringLiteral("albums")},
        {LibrarySection::tracks, QStringLiteral("tracks")},
        {LibrarySection::playlists, QStringLiteral("playlists")},
        {LibrarySection::radios, QStringLiteral("radios")},
        {LibrarySection::favorites, QStringLiteral("favorites")},
        {LibrarySection::recommendations, QStringLiteral("recommendations")}};
    return all;
}

QString nameOf(LibrarySection section) {
    switch (section) {
    case LibrarySection::artists:
        return LibraryWindow::tr("Artists");
    case LibrarySection::albums:
        return LibraryWindow::tr("Albums");
    case LibrarySection::tracks:
        return LibraryWindow::tr("Tracks");
    case LibrarySection::playlists:
        return LibraryWindow::tr("Playlists");
    case LibrarySection::radios:
        return LibraryWindow::tr("Radios");
    case LibrarySection::favorites:
        return LibraryWindow::tr("Favourites");
    case LibrarySection::recommendations:
        break;
    }
    return LibraryWindow::tr("For You");
}

QString nameOf(const OutputDevice &output) {
    return output.kind == OutputDevice::Kind::thisMac ? LibraryWindow::tr("This Computer") : output.name;
}

QToolButton *makeButton(const QString &text, const QKeySequence &key) {
    auto *const button = new QToolButton;
    button->setAutoRaise(true);
    button->setIconSize({18, 18});
    button->setAccessibleName(text);
    button->setToolTip(QStringLiteral("%1 (%2)").arg(text, key.toString(QKeySequence::NativeText)));
    return button;
}

} // namespace

LibraryWindow::LibraryWindow(LibraryBrowser &browser, ArtworkCache &artwork, QSettings &settings,
                             const LibraryActions::FindFiles &findFiles)
    : m_browser(browser), m_settings(settings), m_actions(browser, findFiles),
      m_context{m_actions, artwork, settings}, m_search(browser), m_artists(browser), m_albums(browser),
      m_tracks(browser), m_playlists(browser), m_radios(browser), m_history(LibraryPlace()),
      m_back(makeButton(tr("Back"), QKeySequence(Qt::ALT | Qt::Key_Left))),
      m_forward(makeButton(tr("Forward"), QKeySequence(Qt::ALT | Qt::Key_Right))),
      m_searchField(new QLineEdit),
      m_searchIcon(m_searchField->addAction(QIcon(), QLineEdit::LeadingPosition)),
      m_sections(new QListWidget), m_splitter(new QSplitter), m_pages(new QStackedWidget),
      m_message(new LibraryMessage), m_status(new QLabel), m_outputs(new QComboBox), m_output(new QLabel) {
    setWindowTitle(tr("Library"));
    makePages();
    m_sections->setFrameShape(QFrame::NoFrame);
    m_sections->setAccessibleName(tr("Sections"));
    m_sections->setIconSize({18, 18});
    m_sections->setSpacing(1);
    m_sections->setMinimumWidth(120);
    m_sections->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *const side = new QWidget;
    side->setBackgroundRole(QPalette::Base);
    side->setAutoFillBackground(true);
    auto *const sideLayout = new QVBoxLayout(side);
    sideLayout->setContentsMargins(6, 6, 6, 6);
    sideLayout->addWidget(m_sections);
    m_splitter->addWidget(side);
    m_splitter->addWidget(m_pages);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeHead());
    layout->addWidget(m_splitter, 1);
    layout->addWidget(makeFoot());
    setMinimumSize(560, 360);
    m_telling.setSingleShot(true);
    m_telling.setInterval(tellingTime);
    connect(&m_telling, &QTimer::timeout, this, [this] { tell({}); });
    connect(m_sections, &QListWidget::itemSelectionChanged, this, [this] {
        const QList<QListWidgetItem *> chosen = m_sections->selectedItems();
        if (!chosen.isEmpty())
            goTo(static_cast<LibrarySection>(chosen.first()->data(Qt::UserRole).toInt()));
    });
    connect(&m_actions, &LibraryActions::opened, this, &LibraryWindow::open);
    connect(&m_actions, &LibraryActions::infoAsked, this, [this](const Track &track) {
        (new FileInfoDialog(TrackInfo::fromTrack(track, std::nullopt), this))->show();
    });
    connect(&m_browser, &LibraryBrowser::sourceChanged, this, &LibraryWindow::takeSource);
    connect(&m_browser, &LibraryBrowser::stateChanged, this, &LibraryWindow::showState);
    connect(&m_browser, &LibraryBrowser::outputsChanged, this, &LibraryWindow::showOutputs);
    connect(&m_browser, &LibraryBrowser::failed, this, &LibraryWindow::tell);
    addKeys();
    takeColors();
    restore();
    takeSource();
}

LibraryWindow::~LibraryWindow() = default;

// The parts of the window

QWidget *LibraryWindow::makeHead() {
    auto *const head = new QWidget;
    m_searchField->setPlaceholderText(tr("Search artists, albums and tracks"));
    m_searchField->setAccessibleName(tr("Search"));
    m_searchField->setClearButtonEnabled(true);
    m_searchField->setMaximumWidth(420);
    m_searchField->installEventFilter(this);
    connect(m_searchField, &QLineEdit::textChanged, this, &LibraryWindow::takeSearchText);
    connect(m_back, &QToolButton::clicked, this, [this] { step(false); });
    connect(m_forward, &QToolButton::clicked, this, [this] { step(true); });
    m_outputs->setAccessibleName(tr("Output"));
    m_outputs->setToolTip(tr("Where it plays"));
    m_outputs->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_output->setForegroundRole(QPalette::PlaceholderText);
    m_output->setToolTip(tr("Where it plays"));
    connect(m_outputs, &QComboBox::activated, this,
            [this](int index) { m_browser.chooseOutput({m_outputs->itemData(index).toString()}); });
    auto *const layout = new QHBoxLayout(head);
    layout->setContentsMargins(8, 6, 12, 6);
    layout->setSpacing(4);
    layout->addWidget(m_back);
    layout->addWidget(m_forward);
    layout->addSpacing(8);
    layout->addWidget(m_searchField, 4);
    layout->addStretch(1);
    layout->addWidget(m_output);
    layout->addWidget(m_outputs);
    return head;
}

QWidget *LibraryWindow::makeFoot() {
    auto *const foot = new QWidget;
    m_status->setForegroundRole(QPalette::PlaceholderText);
    m_status->setTextFormat(Qt::PlainText);
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto *const layout = new QHBoxLayout(foot);
    layout->setContentsMargins(12, 4, 12, 5);
    layout->addWidget(m_status, 1);
    return foot;
}

void LibraryWindow::makePages() {
    m_artistPage = new ArtistPage(m_context);
    m_trackListPage = new TrackListPage(m_context);
    m_favoritesPage = new FavoritesPage(m_context);
    m_recommendationsPage = new RecommendationsPage(m_context);
    m_searchPage = new SearchPage(m_context, m_search);
    const LibraryPane::EmptyText noMusic{tr("No music yet"),
                                         tr("What is put into the library shows up here.")};
    const auto add = [this](LibrarySection section, QWidget *page) {
        m_sectionPages.emplace(section, page);
        m_pages->addWidget(page);
    };
    add(LibrarySection::artists,
        new LibraryPane(m_context.makeGrid(m_artists, tr("Artists")), m_artists, noMusic));
    add(LibrarySection::albums,
        new LibraryPane(m_context.makeGrid(m_albums, tr("Albums")), m_albums, noMusic));
    auto *const tracks = m_context.makeTable(m_tracks, QStringLiteral("library/trackColumns"));
    tracks->setUnneeded({TrackListModel::numberColumn});
    add(LibrarySection::tracks, new LibraryPane(tracks, m_tracks, noMusic));
    add(LibrarySection::playlists, new LibraryPane(m_context.makeGrid(m_playlists, tr("Playlists")),
                                                   m_playlists, {tr("No playlists"), {}}));
    add(LibrarySection::radios,
        new LibraryPane(m_context.makeGrid(m_radios, tr("Radios")), m_radios, {tr("No radio stations"), {}}));
    add(LibrarySection::favorites, m_favoritesPage);
    add(LibrarySection::recommendations, m_recommendationsPage);
    for (QWidget *const page :
         std::initializer_list<QWidget *>{m_artistPage, m_trackListPage, m_searchPage, m_message})
        m_pages->addWidget(page);
    m_pages->setBackgroundRole(QPalette::Base);
    m_pages->setAutoFillBackground(true);
    connect(m_trackListPage, &TrackListPage::artistAsked, this, &LibraryWindow::openArtist);
    for (const auto &[model, page] : {std::pair<LibraryModel *, int>{&m_artists, 0},
                                      {&m_albums, 0},
                                      {&m_tracks, 0},
                                      {&m_playlists, 0},
                                      {&m_radios, 0}}) {
        connect(model, &LibraryModel::stateChanged, this, &LibraryWindow::showStatus);
        connect(model, &QAbstractItemModel::rowsInserted, this, &LibraryWindow::showStatus);
    }
}

void LibraryWindow::addKeys() {
    const auto add = [this](const QKeySequence &key, const std::function<void()> &run) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, run);
    };
    add(QKeySequence::Find, [this] {
        m_searchField->setFocus(Qt::ShortcutFocusReason);
        m_searchField->selectAll();
    });
    // Not the buttons' own shortcuts, which act only when the button has been seen to be pressed.
    add(QKeySequence(Qt::ALT | Qt::Key_Left), [this] { step(false); });
    add(QKeySequence(Qt::ALT | Qt::Key_Right), [this] { step(true); });
    add(QKeySequence(Qt::CTRL | Qt::Key_W), [this] { close(); });
    add(QKeySequence(Qt::Key_F11), [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
    for (int number = 1; number <= static_cast<int>(keys().size()); ++number)
        add(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + number)), [this, number] {
            if (number <= m_sections->count())
                m_sections->setCurrentRow(number - 1);
        });
}

void LibraryWindow::restore() {
    if (!restoreGeometry(m_settings.value(geometryKey).toByteArray()))
        resize(980, 640);
    if (!m_splitter->restoreState(m_settings.value(splitterKey).toByteArray()))
        m_splitter->setSizes({168, 812});
    m_history = LibraryHistory({keys().key(m_settings.value(sectionKey).toString(), LibrarySection::albums)});
}

void LibraryWindow::store() const {
    m_settings.setValue(geometryKey, saveGeometry());
    m_settings.setValue(splitterKey, m_splitter->saveState());
    m_settings.setValue(sectionKey, keys().value(m_history.current().section));
}

void LibraryWindow::takeColors() {
    const QColor color = palette().color(QPalette::WindowText);
    // Not every dark palette has a colour for lesser texts, so they are the text's own colour, fainter.
    QColor faint = color;
    faint.setAlphaF(0.62F);
    if (faint != palette().color(QPalette::PlaceholderText)) {
        QPalette own;
        own.setColor(QPalette::PlaceholderText, faint);
        setPalette(own);
    }
    m_back->setIcon(LibraryIcons::back(color));
    m_forward->setIcon(LibraryIcons::forward(color));
    m_searchIcon->setIcon(LibraryIcons::search(palette().color(QPalette::PlaceholderText)));
    for (int row = 0; row < m_sections->count(); ++row) {
        QListWidgetItem &item = *m_sections->item(row);
        const auto section = static_cast<LibrarySection>(item.data(Qt::UserRole).toInt());
        QIcon icon = LibraryIcons::section(section, palette().color(QPalette::Text));
        const QIcon chosen = LibraryIcons::section(section, palette().color(QPalette::HighlightedText));
        icon.addPixmap(chosen.pixmap(18), QIcon::Selected);
        item.setIcon(icon);
    }
}

// Where one is

void LibraryWindow::go(const LibraryPlace &place) {
    m_history.go(place);
    showPlace();
}

void LibraryWindow::goTo(LibrarySection section) {
    go({section});
}

void LibraryWindow::open(const LibraryItem &item) {
    const LibrarySection section = m_history.current().section;
    if (const auto *const artist = std::get_if<ArtistGroup>(&item.record)) {
        // Found by a search it may be only one of those that are one to the user.
        const auto whole =
            artist->members.isEmpty() ? std::nullopt : m_artists.group(artist->members.first().id);
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

QWidget *LibraryWindow::sectionPage(LibrarySection section) {
    using Content = LibraryListModel::Content;
    switch (section) {
    case LibrarySection::artists:
        m_artists.open();
        break;
    case LibrarySection::albums:
        m_albums.show(Content::albums());
        break;
    case LibrarySection::tracks:
        m_tracks.show(TrackListModel::Content::all());
        break;
    case LibrarySection::playlists:
        m_playlists.show(Content::playlists());
        break;
    case LibrarySection::radios:
        m_radios.show(Content::radios());
        break;
    case LibrarySection::favorites:
        m_favoritesPage->open();
        break;
    case LibrarySection::recommendations:
        m_recommendationsPage->open();
        break;
    }
    return m_sectionPages.at(section);
}

QWidget *LibraryWindow::pageOf(const LibraryPlace &place) {
    if (const auto *const artist = std::get_if<ArtistGroup>(&place.what)) {
        m_artists.open(); // so that going to an artist finds all who are one with it
        m_artistPage->show(*artist);
        return m_artistPage;
    }
    if (const auto *const album = std::get_if<LibraryAlbum>(&place.what)) {
        m_trackListPage->show(*album);
        return m_trackListPage;
    }
    if (const auto *const playlist = std::get_if<LibraryPlaylist>(&place.what)) {
        m_trackListPage->show(*playlist);
        return m_trackListPage;
    }
    return std::holds_alternative<LibraryPlace::Search>(place.what) ? m_searchPage
                                                                    : sectionPage(place.section);
}

void LibraryWindow::showPlace() {
    const LibraryPlace place = m_history.current();
    m_back->setEnabled(m_history.canGoBack());
    m_forward->setEnabled(m_history.canGoForward());
    const auto *const search = std::get_if<LibraryPlace::Search>(&place.what);
    if (const QSignalBlocker blocker(m_searchField);
        m_searchField->text().simplified() != (search ? search->text : QString()))
        m_searchField->setText(search ? search->text : QString());
    if (search)
        m_search.setText(search->text);
    const QSignalBlocker blocker(m_sections);
    for (int row = 0; row < m_sections->count(); ++row) {
        if (m_sections->item(row)->data(Qt::UserRole).toInt() == static_cast<int>(place.section))
            m_sections->setCurrentRow(row);
    }
    if (std::holds_alternative<LibraryPlace::Search>(place.what))
        m_sections->clearSelection();
    if (!m_browser.connected()) {
        showState();
        return;
    }
    const bool hadFocus = m_pages->isAncestorOf(focusWidget());
    QWidget *const page = pageOf(place);
    m_pages->setCurrentWidget(page);
    if (hadFocus && page != m_searchPage)
        page->setFocus();
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
        m_search.setText({});
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
    {
        const QSignalBlocker blocker(m_sections);
        m_sections->clear();
        for (const LibrarySection section : sections) {
            auto *const item = new QListWidgetItem(nameOf(section), m_sections);
            item->setData(Qt::UserRole, static_cast<int>(section));
            item->setSizeHint({0, fontMetrics().height() + 14});
        }
    }
    takeColors();
    m_searchField->setVisible(m_browser.capabilities().testFlag(MusicBackendCapability::search));
    const LibrarySection section = m_history.current().section;
    // Places of another source lead nowhere.
    m_history = LibraryHistory({sections.contains(section) ? section : LibrarySection::albums});
    showPlace();
    showOutputs();
}

void LibraryWindow::showState() {
    const std::optional<LibraryFailure> &failure = m_browser.failure();
    m_sections->setEnabled(m_browser.connected() != nullptr);
    m_searchField->setEnabled(m_browser.connected() != nullptr);
    switch (m_browser.state()) {
    case LibraryBrowser::State::connected:
        showPlace();
        return;
    case LibraryBrowser::State::connecting:
        m_message->say(tr("One moment…"), m_sourceStatus);
        break;
    case LibraryBrowser::State::failed:
        if (failure && failure->isSetup)
            m_message->say(tr("Your music belongs here"), failure->sentence, tr("Open Settings…"),
                           [this] { Q_EMIT settingsAsked(); });
        else
            m_message->say(tr("The library is not there"), failure ? failure->sentence : QString(),
                           tr("Try Again"), [this] { m_browser.retry(); });
        break;
    case LibraryBrowser::State::noSource:
        m_message->say(tr("No library"), {}, tr("Open Settings…"), [this] { Q_EMIT settingsAsked(); });
        break;
    }
    m_pages->setCurrentWidget(m_message);
    showStatus();
}

void LibraryWindow::showOutputs() {
    const QList<OutputDevice> &outputs = m_browser.outputs();
    const std::optional<OutputDevice> chosen = m_browser.output();
    m_outputs->clear();
    for (const OutputDevice &output : outputs) {
        m_outputs->addItem(nameOf(output), output.id.rawValue);
        if (chosen && chosen->id == output.id)
            m_outputs->setCurrentIndex(m_outputs->count() - 1);
    }
    m_outputs->setVisible(outputs.size() > 1);
    m_output->setVisible(outputs.size() == 1);
    m_output->setText(chosen ? nameOf(*chosen) : QString());
}

void LibraryWindow::setSourceStatus(const QString &status) {
    m_sourceStatus = status;
    if (m_browser.state() == LibraryBrowser::State::connecting)
        showState();
    showStatus();
}

void LibraryWindow::showStatus() {
    QStringList facts;
    if (m_browser.backend())
        facts.append(m_browser.backend()->displayName());
    const auto count = [&](const char *text, const LibraryModel &model) {
        if (model.hasAnswer())
            facts.append(tr(text).arg(model.rowCount({})));
    };
    const bool isSection = std::holds_alternative<LibraryPlace::Section>(m_history.current().what);
    switch (m_browser.connected() && isSection ? m_history.current().section : LibrarySection::favorites) {
    case LibrarySection::artists:
        count("%L1 artists", m_artists);
        break;
    case LibrarySection::albums:
        count("%L1 albums", m_albums);
        break;
    case LibrarySection::tracks:
        count(m_tracks.isComplete() ? "%L1 tracks" : "%L1 tracks so far", m_tracks);
        break;
    case LibrarySection::playlists:
        count("%L1 playlists", m_playlists);
        break;
    case LibrarySection::radios:
        count("%L1 radio stations", m_radios);
        break;
    default:
        break;
    }
    facts.append(m_sourceStatus);
    facts.removeAll(QString());
    m_status->setText(m_told.isEmpty() ? facts.join(QStringLiteral("  ·  ")) : m_told);
}

void LibraryWindow::tell(const QString &sentence) {
    m_told = sentence;
    if (!sentence.isEmpty())
        m_telling.start();
    showStatus();
}

// Keys and pointer

void LibraryWindow::bringToFront() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    m_pages->currentWidget()->setFocus();
}

void LibraryWindow::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Back)
        step(false);
    else if (event->key() == Qt::Key_Forward)
        step(true);
    else
        QWidget::keyPressEvent(event);
}

void LibraryWindow::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() == Qt::BackButton || event->button() == Qt::ForwardButton)
        step(event->button() == Qt::ForwardButton);
    else
        QWidget::mouseReleaseEvent(event);
}

// Down goes from the search into what it has found.
bool LibraryWindow::eventFilter(QObject *watched, QEvent *event) {
    if (watched != m_searchField || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key == Qt::Key_Escape) {
        m_searchField->clear();
        m_pages->currentWidget()->setFocus();
        return true;
    }
    if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
        m_searchField->nextInFocusChain();
        m_pages->currentWidget()->setFocus();
        focusNextChild();
        return true;
    }
    return false;
}

void LibraryWindow::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        takeColors();
}

void LibraryWindow::closeEvent(QCloseEvent *event) {
    store();
    QWidget::closeEvent(event);
}

} // namespace vantor
