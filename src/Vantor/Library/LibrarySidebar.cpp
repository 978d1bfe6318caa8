#include "Vantor/Library/LibrarySidebar.h"

#include "Vantor/Library/LibraryIcons.h"

#include <QEvent>
#include <QListWidget>
#include <QVBoxLayout>

namespace vantor {

namespace {

QString nameOf(LibrarySection section) {
    switch (section) {
    case LibrarySection::artists:
        return LibrarySidebar::tr("Artists");
    case LibrarySection::albums:
        return LibrarySidebar::tr("Albums");
    case LibrarySection::tracks:
        return LibrarySidebar::tr("Tracks");
    case LibrarySection::playlists:
        return LibrarySidebar::tr("Playlists");
    case LibrarySection::radios:
        return LibrarySidebar::tr("Radios");
    case LibrarySection::favorites:
        return LibrarySidebar::tr("Favourites");
    case LibrarySection::recommendations:
        break;
    }
    return LibrarySidebar::tr("For You");
}

} // namespace

LibrarySidebar::LibrarySidebar(QWidget *parent)
    : QWidget(parent), m_layout(new QVBoxLayout(this)), m_list(new QListWidget) {
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->viewport()->setAutoFillBackground(false); // the column's own, also while it is disabled
    m_list->setAccessibleName(tr("Sections"));
    m_list->setIconSize({18, 18});
    m_list->setSpacing(1);
    m_list->setMinimumWidth(120);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    setFocusProxy(m_list);
    m_layout->setContentsMargins(6, 6, 6, 6);
    m_layout->addWidget(m_list);
    const auto choose = [this](int row) {
        if (row >= 0 && row < m_sections.size())
            Q_EMIT chosen(m_sections[row]);
    };
    // Not by what is current: a list without that makes its first row so when it gets the focus.
    connect(m_list, &QListWidget::itemSelectionChanged, this,
            [this, choose] { choose(m_list->row(m_list->selectedItems().value(0))); });
    // The section that one is in leads back to its list from a page further in.
    connect(m_list, &QListWidget::itemClicked, this, [this, choose] { choose(m_list->currentRow()); });
    connect(m_list, &QListWidget::itemActivated, this, [this, choose] { choose(m_list->currentRow()); });
}

void LibrarySidebar::setHead(QWidget *head) {
    m_layout->insertWidget(0, head);
}

void LibrarySidebar::setSectionsEnabled(bool areEnabled) {
    m_list->setEnabled(areEnabled);
}

void LibrarySidebar::offer(const QList<LibrarySection> &sections) {
    m_sections = sections;
    const QSignalBlocker blocker(m_list);
    m_list->clear();
    for (const LibrarySection section : sections) {
        auto *const item = new QListWidgetItem(nameOf(section), m_list);
        item->setSizeHint({0, fontMetrics().height() + 14});
    }
    takeColors();
}

void LibrarySidebar::mark(std::optional<LibrarySection> section) {
    const QSignalBlocker blocker(m_list);
    m_list->setCurrentRow(section ? static_cast<int>(m_sections.indexOf(*section)) : -1);
}

void LibrarySidebar::takeColors() {
    for (qsizetype row = 0; row < m_sections.size(); ++row) {
        QIcon icon = LibraryIcons::section(m_sections[row], palette().color(QPalette::Text));
        const QIcon chosen =
            LibraryIcons::section(m_sections[row], palette().color(QPalette::HighlightedText));
        icon.addPixmap(chosen.pixmap(18), QIcon::Selected);
        m_list->item(static_cast<int>(row))->setIcon(icon);
    }
}

void LibrarySidebar::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        takeColors();
}

} // namespace vantor
