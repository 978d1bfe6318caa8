#include "Vantor/Windows/SkinBrowserWindow.h"

#include "SkinBrowser/SkinLibraryModel.h"
#include "Vantor/Model/PlayerModel.h"
#include "Vantor/Model/SkinSwitcher.h"
#include "Vantor/Museum/MuseumSetup.h"
#include "Vantor/Museum/MuseumTab.h"
#include "Vantor/Windows/DialogPlace.h"
#include "Vantor/Windows/FaintText.h"
#include "Vantor/Windows/GridSearchField.h"
#include "Vantor/Windows/MessagePage.h"
#include "Vantor/Windows/SkinBrowserFoot.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLocale>
#include <QSettings>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace vantor {

namespace {

const QString geometryKey = QStringLiteral("skinBrowser.geometry");
const QString splitterKey = QStringLiteral("skinBrowser.splitter");
const QString statusesKey = QStringLiteral("skinBrowser.statuses");
const QString tabKey = QStringLiteral("skinBrowser.tab");
const QString museumTab = QStringLiteral("museum");

constexpr QSize commonSize{780, 480}; // which has room beside the player on most screens
constexpr int detailsWidth = 316;     // with which pictures have their own size

QString filterName(SkinStatus status) {
    switch (status) {
    case SkinStatus::ok:
        return SkinBrowserWindow::tr("OK");
    case SkinStatus::partial:
        return SkinBrowserWindow::tr("Partial");
    case SkinStatus::failed:
        break;
    }
    return SkinBrowserWindow::tr("Failed");
}

QString filterHelp(SkinStatus status) {
    switch (status) {
    case SkinStatus::ok:
        return SkinBrowserWindow::tr("Show skins without faults");
    case SkinStatus::partial:
        return SkinBrowserWindow::tr("Show skins in which something is missing or damaged");
    case SkinStatus::failed:
        break;
    }
    return SkinBrowserWindow::tr("Show skins that cannot be read");
}

} // namespace

SkinBrowserWindow::SkinBrowserWindow(PlayerModel &model, SkinLibraryModel &library, SkinSwitcher &switcher,
                                     ThumbnailCache &thumbnails, QSettings &settings)
    : m_model(model), m_library(library), m_switcher(switcher), m_settings(settings),
      m_skins(library.index()), m_tabs(new QTabWidget),
      m_search(new GridSearchField(tr("Search names and read-mes"))), m_splitter(new QSplitter),
      m_pages(new QStackedWidget), m_grid(new SkinGridView(m_skins, thumbnails)), m_message(new MessagePage),
      m_details(new SkinDetails(switcher)), m_foot(new SkinBrowserFoot(model, library)) {
    setWindowTitle(tr("Skin Browser"));
    setAttribute(Qt::WA_QuitOnClose, false);
    setMinimumSize(480, 320);
    giveFaintText(*this);

    m_grid->setAccessibleName(tr("Skins"));
    m_pages->addWidget(m_grid);
    m_pages->addWidget(m_message);
    m_splitter->addWidget(m_pages);
    m_splitter->addWidget(m_details);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(1);
    m_details->setMinimumWidth(160);
    m_pages->setMinimumWidth(220);
    auto *const folder = new QWidget;
    auto *const rows = new QVBoxLayout(folder);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(makeHead());
    rows->addWidget(m_splitter, 1);
    m_tabs->setDocumentMode(true);
    m_tabs->setTabBarAutoHide(true);
    m_tabs->addTab(folder, tr("My Skins"));
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(m_foot);
    makeShortcuts();

    restore();
    connectGrid();
    connectLibrary();
    search();
    showCounts();
    takeWorn();
    if (m_switcher.worn())
        m_skins.locate(*m_switcher.worn()); // the view begins there
    m_grid->setFocus();
}

SkinBrowserWindow::~SkinBrowserWindow() {
    store();
}

QWidget *SkinBrowserWindow::makeHead() {
    auto *head = new QWidget;
    auto *layout = new QHBoxLayout(head);
    layout->setContentsMargins(10, 8, 10, 8);
    layout->addWidget(m_search, 8);
    layout->addStretch(1);
    layout->addSpacing(6);
    for (const SkinStatus status : allSkinStatuses) {
        auto *button = new QToolButton;
        button->setCheckable(true);
        button->setFocusPolicy(Qt::StrongFocus);
        button->setToolTip(filterHelp(status));
        button->setAccessibleName(filterHelp(status));
        layout->addWidget(button);
        m_filters.emplace(status, button);
    }
    connect(m_search, &QLineEdit::textChanged, this, &SkinBrowserWindow::search);
    connect(m_search, &GridSearchField::entered, this, [this] { wear(m_grid->currentIndex()); });
    m_search->setGrid(*m_grid);
    return head;
}

void SkinBrowserWindow::makeShortcuts() {
    auto *find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, this, [this] {
        if (m_museum && m_museum->isVisible())
            return m_museum->focusSearch();
        m_search->begin();
    });
    auto *close = new QShortcut(QKeySequence::Close, this);
    connect(close, &QShortcut::activated, this, &QWidget::close);
}

void SkinBrowserWindow::addMuseum(const MuseumSetup &setup) {
    auto *const page = new QWidget;
    auto *const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    m_tabs->addTab(page, tr("Museum"));
    connect(m_tabs, &QTabWidget::currentChanged, this, [this, page, layout, setup] {
        const bool isMuseum = m_tabs->currentWidget() == page;
        m_settings.setValue(tabKey, isMuseum ? museumTab : QString());
        if (!isMuseum)
            return m_grid->setFocus();
        if (!m_museum) {
            m_museum = new MuseumTab(m_model, m_library, m_switcher, setup);
            connect(m_museum, &MuseumTab::folderWanted, m_foot, &SkinBrowserFoot::chooseFolder);
            layout->addWidget(m_museum);
        }
        m_museum->setFocus();
    });
    if (m_settings.value(tabKey) == museumTab)
        m_tabs->setCurrentWidget(page);
}

void SkinBrowserWindow::connectGrid() {
    connect(&m_skins, &SkinListModel::queried, this, &SkinBrowserWindow::takeResult);
    connect(&m_skins, &SkinListModel::located, this, [this](std::int64_t, std::optional<int> row) {
        if (!row)
            return;
        m_grid->setCurrentIndex(m_skins.index(*row));
        m_grid->scrollTo(m_grid->currentIndex(), QAbstractItemView::PositionAtCenter);
    });
    connect(&m_skins, &SkinListModel::renewed, this, [this] {
        keepASelection();
        m_details->refresh();
        showState();
    });
    connect(&m_skins, &SkinListModel::dataChanged, this, &SkinBrowserWindow::showSelected);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &SkinBrowserWindow::showSelected);
    connect(m_grid, &SkinGridView::chosen, this, &SkinBrowserWindow::wear);
    m_grid->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_grid, &QWidget::customContextMenuRequested, this, &SkinBrowserWindow::popUpMenu);
    connect(&m_switcher, &SkinSwitcher::wornChanged, this, &SkinBrowserWindow::takeWorn);
}

void SkinBrowserWindow::connectLibrary() {
    connect(&m_library, &SkinLibraryModel::contentChanged, this, [this] {
        m_skins.refresh();
        showCounts();
    });
    connect(&m_library, &SkinLibraryModel::indexAboutToReset, &m_skins, &SkinListModel::closeIndex);
    for (const auto signal : {&SkinLibraryModel::problemChanged, &SkinLibraryModel::progressChanged})
        connect(&m_library, signal, this, &SkinBrowserWindow::showState);
    connect(&m_library, &SkinLibraryModel::folderChanged, this, &SkinBrowserWindow::showState);
    connect(&m_library, &SkinLibraryModel::trashFailed, this,
            [this](const QString &message) { tell(message); });
}

// What is remembered

void SkinBrowserWindow::restore() {
    if (!restoreGeometry(m_settings.value(geometryKey).toByteArray()))
        resize(commonSize);
    if (!m_splitter->restoreState(m_settings.value(splitterKey).toByteArray()))
        m_splitter->setSizes({width() - detailsWidth, detailsWidth});
    const QStringList all{rawValue(SkinStatus::ok), rawValue(SkinStatus::partial),
                          rawValue(SkinStatus::failed)};
    const QStringList kept = m_settings.value(statusesKey, all).toStringList();
    for (const auto &[status, button] : m_filters) {
        button->setChecked(kept.contains(rawValue(status)));
        connect(button, &QToolButton::toggled, this, &SkinBrowserWindow::search);
    }
}

void SkinBrowserWindow::store() const {
    QStringList statuses;
    for (const SkinStatus status : m_skins.query().statuses)
        statuses.append(rawValue(status));
    m_settings.setValue(geometryKey, saveGeometry());
    m_settings.setValue(splitterKey, m_splitter->saveState());
    m_settings.setValue(statusesKey, statuses);
}

void SkinBrowserWindow::bringToFront(const QList<QRect> &player) {
    // So that one sees the skins that one tries on.
    if (!isVisible() && !m_settings.contains(geometryKey))
        DialogPlace::beside(*this, player);
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void SkinBrowserWindow::closeEvent(QCloseEvent *event) {
    store();
    QWidget::closeEvent(event);
}

// What is shown

void SkinBrowserWindow::search() {
    SkinQuery query{.text = m_search->text()};
    query.statuses.clear();
    for (const auto &[status, button] : m_filters) {
        if (button->isChecked())
            query.statuses.insert(status);
    }
    m_skins.setQuery(query);
}

void SkinBrowserWindow::endSearch() {
    m_search->clear();
    m_grid->setFocus();
}

void SkinBrowserWindow::takeResult() {
    if (m_skins.query().hasText())
        m_grid->setCurrentIndex(m_skins.index(0)); // the best one, for Enter
    else if (m_selected)
        m_skins.locate(*m_selected);
    showState();
}

void SkinBrowserWindow::takeWorn() {
    m_grid->setWorn(m_switcher.worn());
}

void SkinBrowserWindow::showSelected() {
    const SkinRecord *const skin = selected();
    if (!skin)
        return;
    m_selected = skin->id;
    m_selectedRow = m_grid->currentIndex().row();
    m_details->setSkin(skin->id);
}

// The skin that was selected may have gone, to the Trash for one.
void SkinBrowserWindow::keepASelection() {
    if (m_grid->currentIndex().isValid()) {
        m_selectedRow = m_grid->currentIndex().row();
    } else if (m_selected && m_skins.rowCount() > 0) {
        m_grid->setCurrentIndex(m_skins.index(std::min(m_selectedRow, m_skins.rowCount() - 1)));
    } else if (m_skins.rowCount() == 0) {
        m_selected.reset();
        m_details->setSkin(std::nullopt);
    }
}

void SkinBrowserWindow::showCounts() {
    const auto &counts = m_library.counts().byStatus;
    for (const auto &[status, button] : m_filters) {
        const auto count = counts.find(status);
        const qlonglong skins = count != counts.end() ? count->second : 0;
        button->setText(tr("%1  %L2").arg(filterName(status)).arg(skins));
    }
    showState();
}

void SkinBrowserWindow::showState() {
    m_foot->setFound(m_skins.rowCount());
    if (m_skins.isQuerying() && m_skins.rowCount() > 0)
        return; // the result before stays until the new one is there
    const bool hasMessage = sayWhyEmpty();
    const bool hadFocus = m_pages->currentWidget()->isAncestorOf(focusWidget());
    m_pages->setCurrentIndex(hasMessage ? 1 : 0);
    m_details->setVisible(!hasMessage);
    if (hadFocus)
        m_pages->currentWidget()->setFocus();
}

// Keys

void SkinBrowserWindow::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Escape)
        endSearch();
    else if (event->key() == Qt::Key_Delete && focusWidget() == m_grid)
        askToTrash();
    else
        QWidget::keyPressEvent(event);
}

} // namespace vantor
