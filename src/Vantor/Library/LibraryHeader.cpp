#include "Vantor/Library/LibraryHeader.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>

namespace vantor {

namespace {

constexpr int coverSide = 132;

} // namespace

LibraryHeader::LibraryHeader(ArtworkCache &artwork, QWidget *parent)
    : QWidget(parent), m_covers(artwork, nullptr), m_cover(new QWidget), m_title(new QLabel),
      m_artist(new QToolButton), m_details(new QLabel), m_favorite(new QToolButton) {
    m_cover->setFixedSize(coverSide, coverSide);
    m_cover->installEventFilter(this);
    connect(&m_covers, &CoverPainter::changed, m_cover, qOverload<>(&QWidget::update));
    QFont font = m_title->font();
    font.setPointSizeF(font.pointSizeF() * 1.7);
    font.setBold(true);
    m_title->setFont(font);
    m_title->setTextFormat(Qt::PlainText);
    m_title->setWordWrap(true);
    m_title->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_artist->setAutoRaise(true);
    m_artist->setCursor(Qt::PointingHandCursor);
    font = m_artist->font();
    font.setPointSizeF(font.pointSizeF() * 1.15);
    m_artist->setFont(font);
    m_artist->setToolTip(tr("Show this artist"));
    m_details->setForegroundRole(QPalette::PlaceholderText);
    auto *const play = new QPushButton(tr("&Play"));
    auto *const append = new QPushButton(tr("&Append"));
    append->setToolTip(tr("Add to the end of the playlist"));
    m_favorite->setCheckable(true);
    m_favorite->setText(tr("Favourite"));

    auto *const buttons = new QHBoxLayout;
    buttons->addWidget(play);
    buttons->addWidget(append);
    buttons->addWidget(m_favorite);
    buttons->addStretch(1);
    auto *const texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addStretch(1);
    texts->addWidget(m_title);
    auto *const artist = new QHBoxLayout;
    artist->setContentsMargins(-6, 0, 0, 0); // its text stands below the title's
    artist->addWidget(m_artist, 0, Qt::AlignLeft);
    texts->addLayout(artist);
    texts->addWidget(m_details);
    texts->addSpacing(8);
    texts->addLayout(buttons);
    texts->addStretch(1);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(14, 12, 14, 12);
    layout->setSpacing(18);
    layout->addWidget(m_cover, 0, Qt::AlignTop);
    layout->addLayout(texts, 1);
    connect(play, &QPushButton::clicked, this, &LibraryHeader::playAsked);
    connect(append, &QPushButton::clicked, this, &LibraryHeader::appendAsked);
    connect(m_artist, &QToolButton::clicked, this, &LibraryHeader::artistAsked);
    connect(m_favorite, &QToolButton::clicked, this, &LibraryHeader::favoriteAsked);
}

void LibraryHeader::show(const Facts &facts) {
    m_facts = facts;
    m_title->setText(facts.title);
    m_artist->setText(QString(facts.artist).replace(QLatin1Char('&'), QLatin1String("&&")));
    m_artist->setVisible(!facts.artist.isEmpty());
    m_favorite->setVisible(facts.isFavorite.has_value());
    m_favorite->setChecked(facts.isFavorite.value_or(false));
    m_cover->update();
}

void LibraryHeader::setDetails(const QString &details) {
    m_details->setText(details);
}

bool LibraryHeader::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_cover && event->type() == QEvent::Paint) {
        QPainter painter(m_cover);
        m_covers.draw(painter, m_cover->rect(), m_facts.artwork, m_facts.kind, palette());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace vantor
