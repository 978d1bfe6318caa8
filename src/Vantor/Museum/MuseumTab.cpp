#include "Vantor/Museum/MuseumTab.h"

#include "SkinBrowser/SkinLibraryModel.h"
#include "SkinMuseum/Client/MuseumClient.h"
#include "SkinMuseum/Client/MuseumResultCache.h"
#include "SkinMuseum/Client/MuseumScreenshotCache.h"
#include "SkinMuseum/Client/MuseumTransport.h"
#include "SkinMuseum/Client/MuseumUserAgent.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Model/SkinSwitcher.h"
#include "Vantor/Museum/MuseumGridView.h"
#include "Vantor/Museum/MuseumSetup.h"
#include "Vantor/Museum/MuseumTile.h"
#include "Vantor/Museum/NoticeBar.h"
#include "Vantor/Windows/GridSearchField.h"
#include "Vantor/Windows/MessagePage.h"

#include <QCryptographicHash>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QSplitter>
#include <QStackedWidget>

namespace vantor {

namespace {

using Notice = MuseumListModel::Notice;

constexpr std::chrono::milliseconds searchPause{300}; // of the keys, before the museum is asked
// Of the details: with the wide ones screenshots have their own size, the narrow ones leave more to the grid.
constexpr int wideDetails = 299;
constexpr int narrowDetails = 205;
constexpr int wideWindow = 900;

/// Of this museum alone: another one answers the same questions otherwise.
QString pagesFolder(const MuseumSetup &setup) {
    const QByteArray address = setup.endpoint.toEncoded();
    const QByteArray name = QCryptographicHash::hash(address, QCryptographicHash::Sha256).toHex();
    return setup.cacheFolder + QStringLiteral("/pages/") + QString::fromLatin1(name.left(16));
}

} // namespace

MuseumTab::MuseumTab(PlayerModel &model, SkinLibraryModel &library, SkinSwitcher &switcher,
                     const MuseumSetup &setup, QWidget *parent)
    : QWidget(parent), m_model(model), m_library(library), m_switcher(switcher),
      m_transport(std::make_shared<QtMuseumTransport>(setup.authorities)), m_owned(library, switcher),
      m_history(model), m_search(new GridSearchField(tr("Search the museum"))), m_count(new QLabel),
      m_folderNotice(new NoticeBar(tr("Choose Folder…"))), m_notice(new NoticeBar(tr("Try Again"))),
      m_splitter(new QSplitter), m_pages(new QStackedWidget), m_message(new MessagePage) {
    const QByteArray agent = MuseumUserAgent::make(setup.version);
    auto results = std::make_shared<MuseumResultCache>(pagesFolder(setup), MuseumResultCache::Limits());
    m_client = std::make_unique<MuseumClient>(m_transport, std::move(results), agent, setup.endpoint);
    m_screenshots = std::make_unique<MuseumScreenshotCache>(
        m_transport, agent, setup.cacheFolder + QStringLiteral("/screenshots"),
        MuseumScreenshotCache::Limits());
    m_downloader = std::make_unique<MuseumDownloader>(m_transport, agent);
    m_pictures = std::make_unique<MuseumPictures>(*m_screenshots);
    m_list = std::make_unique<MuseumListModel>(*m_client);
    m_downloads = std::make_unique<MuseumDownloads>(
        *m_downloader, [this](const QString &md5) { return m_owned.locate(md5); });

    m_grid = new MuseumGridView(*m_list, *m_pictures,
                                [this](const MuseumSkin &skin, MuseumTile &tile) { mark(skin, tile); });
    m_list->setSpokenText([this](const MuseumSkin &skin) { return spokenText(skin); });
    m_grid->setAccessibleName(tr("Skins of the museum"));
    m_details = new MuseumDetails(*m_pictures);
    m_pages->addWidget(m_grid);
    m_pages->addWidget(m_message);
    m_pages->setMinimumWidth(200);
    m_splitter->addWidget(m_pages);
    m_splitter->addWidget(m_details);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    connect(m_splitter, &QSplitter::splitterMoved, this, [this] { m_wasSplit = true; });
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeHead());
    layout->addWidget(m_folderNotice);
    layout->addWidget(m_notice);
    layout->addWidget(m_splitter, 1);
    setFocusProxy(m_grid);
    connectGrid();
    connectDownloads();
    search();
    showFolder();
}

MuseumTab::~MuseumTab() {
    m_transport->close();
    delete m_grid; // before what it shows
    delete m_details;
}

QWidget *MuseumTab::makeHead() {
    auto *const head = new QWidget;
    auto *const layout = new QHBoxLayout(head);
    layout->setContentsMargins(10, 8, 10, 8);
    layout->setSpacing(12);
    // Not the colour for lesser texts, which dark themes do not always have.
    auto *const lesser = new QGraphicsOpacityEffect(m_count);
    m_count->setGraphicsEffect(lesser);
    layout->addWidget(m_search, 8);
    layout->addStretch(1);
    layout->addWidget(m_count);
    m_searchSoon.setSingleShot(true);
    m_searchSoon.setInterval(searchPause);
    connect(&m_searchSoon, &QTimer::timeout, this, &MuseumTab::search);
    connect(m_search, &QLineEdit::textChanged, this, [this] { m_searchSoon.start(); });
    connect(m_search, &GridSearchField::entered, this, &MuseumTab::enter);
    m_search->setGrid(*m_grid);
    m_retrySoon.setSingleShot(true);
    connect(&m_retrySoon, &QTimer::timeout, m_list.get(), &MuseumListModel::retry);
    return head;
}

void MuseumTab::connectGrid() {
    connect(m_list.get(), &MuseumListModel::stateChanged, this, &MuseumTab::showState);
    connect(m_list.get(), &MuseumListModel::pageRead, this, [this] {
        m_owned.watch(m_list->md5s());
        showState();
    });
    connect(m_list.get(), &MuseumListModel::dataChanged, this, &MuseumTab::showSelected);
    connect(&m_owned, &OwnedSkins::changed, this, &MuseumTab::showSelected);
    connect(&m_switcher, &SkinSwitcher::wornChanged, this, &MuseumTab::showSelected);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this, &MuseumTab::showSelected);
    connect(m_grid, &MuseumGridView::chosen, this, &MuseumTab::choose);
    connect(m_grid, &MuseumGridView::backAsked, this, &MuseumTab::goBack);
    m_grid->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_grid, &QWidget::customContextMenuRequested, this, &MuseumTab::popUpMenu);
    connect(&m_model.preferences(), &Preferences::showsNSFWMuseumSkinsChanged, this, &MuseumTab::search);
    connect(m_notice, &NoticeBar::pressed, this, &MuseumTab::retry);
    connect(m_folderNotice, &NoticeBar::pressed, this, &MuseumTab::folderWanted);
    connect(&m_library, &SkinLibraryModel::folderChanged, this, &MuseumTab::showFolder);
}

// What is shown

void MuseumTab::focusSearch() {
    m_search->begin();
}

void MuseumTab::search() {
    m_searchSoon.stop();
    m_list->setQuery(m_search->text(), m_model.preferences().showsNSFWMuseumSkins());
}

void MuseumTab::endSearch() {
    m_search->clear();
    search();
    m_grid->setFocus();
}

void MuseumTab::enter() {
    if (m_searchSoon.isActive())
        search();
    else if (!m_list->isQuerying())
        wearSelected();
}

// What there was to say goes at once, or nobody would see that something is done.
void MuseumTab::retry() {
    m_retrySoon.stop();
    m_pause = firstPause;
    m_notice->say({});
    m_message->say({}, tr("Loading…"));
    m_pictures->forgetFailures();
    m_list->retry();
    m_grid->viewport()->update();
}

// The museum is asked again by itself as long as somebody looks.
void MuseumTab::retryLater() {
    if (m_list->isQuerying())
        return;
    if (!m_list->error()) {
        m_retrySoon.stop();
        if (std::exchange(m_pause, firstPause) != firstPause) // the museum is there again
            m_pictures->forgetFailures();
    } else if (isVisible() && !m_retrySoon.isActive()) {
        m_retrySoon.start(m_pause);
        m_pause = std::min(2 * m_pause, longestPause);
    }
}

void MuseumTab::showState() {
    const int rows = m_list->rowCount();
    if (!m_list->isQuerying() && rows > 0 && !m_grid->currentIndex().isValid())
        m_grid->setCurrentIndex(m_list->index(0, 0));
    if (m_list->notice() == Notice::cached)
        m_notice->say(tr("Offline, showing cached results"));
    else
        m_notice->say(m_list->error() && rows > 0 ? m_list->error()->description() : QString());
    const bool isCounted = !m_list->query().text() && rows > 0;
    if (m_list->isHeldUp())
        m_count->setText(tr("The museum is busy, one moment…"));
    else if (m_list->isQuerying())
        m_count->setText(m_list->query().text() ? tr("Searching…") : tr("Loading…"));
    else
        m_count->setText(isCounted ? tr("%L1 skins").arg(rows) : QString());
    const bool hadFocus = m_pages->currentWidget()->isAncestorOf(focusWidget());
    m_pages->setCurrentIndex(sayWhyEmpty() ? 1 : 0);
    m_details->setVisible(m_pages->currentIndex() == 0);
    if (hadFocus)
        m_pages->currentWidget()->setFocus();
    showSelected();
    retryLater();
}

bool MuseumTab::sayWhyEmpty() {
    if (m_list->rowCount() > 0 || m_list->isQuerying())
        return m_list->rowCount() == 0;
    if (m_list->error())
        m_message->say(tr("The museum cannot be shown"), m_list->error()->description(), tr("Try Again"),
                       [this] { retry(); });
    else if (m_list->query().text())
        m_message->say(tr("Nothing found"),
                       tr("The museum has no skin for “%1”.").arg(*m_list->query().text()),
                       tr("Clear Search"), [this] { endSearch(); });
    else
        m_message->say(tr("No skins"), tr("The museum shows no skins at the moment."), tr("Try Again"),
                       [this] { retry(); });
    return true;
}

void MuseumTab::showFolder() {
    m_folderNotice->say(m_library.folder().isEmpty() ? MuseumError::noFolder().description() : QString());
    showSelected();
}

bool MuseumTab::isWorn(const QString &md5) const {
    const OwnedSkins::Skin *const owned = m_owned.find(md5);
    return owned && (owned->file == m_model.skinUrl() || (owned->id && owned->id == m_switcher.worn()));
}

void MuseumTab::mark(const MuseumSkin &skin, MuseumTile &tile) const {
    const OwnedSkins::Skin *const owned = m_owned.find(skin.md5);
    tile.hasFailed = (owned && owned->isBroken) || m_refusals.contains(skin.md5);
    tile.isOwned = owned && !tile.hasFailed;
    tile.isWorn = isWorn(skin.md5);
    if (const MuseumDownloads::State *const download = m_downloads->state(skin.md5)) {
        tile.hasFailed = tile.hasFailed || download->error;
        if (download->isUnderWay())
            tile.progress = download->fraction.value_or(0);
    }
}

QString MuseumTab::spokenText(const MuseumSkin &skin) const {
    MuseumTile tile;
    mark(skin, tile);
    const QString name = skin.title();
    if (tile.progress)
        return tr("%1, downloading").arg(name);
    if (tile.hasFailed)
        return tr("%1, %2").arg(name, stateOf(skin.md5).problem);
    if (tile.isWorn)
        return tr("%1, worn").arg(name);
    return tile.isOwned ? tr("%1, in your skins folder").arg(name) : name;
}

MuseumDetails::State MuseumTab::stateOf(const QString &md5) const {
    const OwnedSkins::Skin *const owned = m_owned.find(md5);
    MuseumDetails::State state{.isOwned = owned != nullptr, .isWorn = isWorn(md5)};
    state.problem = m_refusals.value(md5);
    if (state.problem.isEmpty() && owned && owned->isBroken)
        state.problem = tr("In your skins folder, but it cannot be read.");
    if (const MuseumDownloads::State *const download = m_downloads->state(md5)) {
        state.isUnderWay = download->isUnderWay();
        state.progress = download->fraction;
        if (download->error)
            state.problem = download->error->description();
    }
    return state;
}

void MuseumTab::showSelected() {
    const MuseumSkin *const skin = selected();
    m_details->setSkin(skin ? std::optional(*skin) : std::nullopt,
                       skin ? stateOf(skin->md5) : MuseumDetails::State());
    m_details->setCanGoBack(m_history.canGoBack());
    m_grid->viewport()->update();
}

void MuseumTab::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    retryLater();
    fitDetails();
}

void MuseumTab::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    fitDetails();
}

void MuseumTab::fitDetails() {
    if (m_wasSplit)
        return;
    const int details = width() < wideWindow ? narrowDetails : wideDetails;
    m_splitter->setSizes({width() - details, details});
}

void MuseumTab::hideEvent(QHideEvent *event) {
    QWidget::hideEvent(event);
    m_retrySoon.stop();
}

void MuseumTab::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Escape)
        endSearch();
    else
        QWidget::keyPressEvent(event);
}

} // namespace vantor
