#include "Vantor/Library/LibraryHeader.h"

#include "Vantor/Library/LibraryIcons.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

namespace vantor {

namespace {

constexpr int coverSide = 132;

QToolButton *makeIconButton(const QString &name) {
    auto *const button = new QToolButton;
    button->setAutoRaise(true);
    button->setIconSize({18, 18});
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

} // namespace

LibraryHeader::LibraryHeader(ArtworkCache &artwork, QWidget *parent)
    : QWidget(parent), m_covers(artwork, nullptr), m_cover(new QWidget), m_title(new QLabel),
      m_artist(new QLabel), m_details(new QLabel), m_favorite(makeIconButton(tr("Favourite"))),
      m_more(makeIconButton(tr("More"))) {
    m_cover->setFixedSize(coverSide, coverSide);
    m_cover->installEventFilter(this);
    connect(&m_covers, &CoverPainter::changed, m_cover, qOverload<>(&QWidget::update));
    QFont font = m_title->font();
    font.setPointSizeF(font.pointSizeF() * 1.7);
    font.setBold(true);
    m_title->setFont(font);
    m_title->setTextFormat(Qt::PlainText);
    m_title->setTextInteractionFlags(Qt::TextSelectableByMouse);
    font = m_artist->font();
    font.setPointSizeF(font.pointSizeF() * 1.15);
    m_artist->setFont(font);
    m_artist->setTextFormat(Qt::RichText);
    m_artist->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    m_artist->setToolTip(tr("Show this artist"));
    m_details->setForegroundRole(QPalette::PlaceholderText);
    for (QLabel *const label : {m_title, m_artist, m_details}) {
        label->setWordWrap(true);
        // Beside the cover, whichever way the text runs.
        label->setAlignment(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignAbsolute |
                            Qt::AlignVCenter);
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // long names need no wider window
    }
    auto *const texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addStretch(1);
    texts->addWidget(m_title);
    texts->addWidget(m_artist);
    texts->addWidget(m_details);
    texts->addSpacing(8);
    texts->addLayout(makeButtons());
    texts->addStretch(1);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(14, 12, 14, 12);
    layout->setSpacing(18);
    layout->addWidget(m_cover, 0, Qt::AlignTop);
    layout->addLayout(texts, 1);
    connect(m_artist, &QLabel::linkActivated, this, &LibraryHeader::artistAsked);
    takeColors();
}

QLayout *LibraryHeader::makeButtons() {
    auto *const play = new QPushButton(tr("&Play"));
    auto *const append = new QPushButton(tr("&Append"));
    append->setToolTip(tr("Add to the end of what plays"));
    m_favorite->setCheckable(true);
    auto *const buttons = new QHBoxLayout;
    buttons->addWidget(play);
    buttons->addWidget(append);
    buttons->addWidget(m_favorite);
    buttons->addWidget(m_more);
    buttons->addStretch(1);
    connect(play, &QPushButton::clicked, this, &LibraryHeader::playAsked);
    connect(append, &QPushButton::clicked, this, &LibraryHeader::appendAsked);
    connect(m_favorite, &QToolButton::clicked, this, &LibraryHeader::favoriteAsked);
    connect(m_favorite, &QToolButton::toggled, this, &LibraryHeader::takeColors);
    connect(m_more, &QToolButton::clicked, this,
            [this] { Q_EMIT menuAsked(m_more->mapToGlobal(m_more->rect().bottomLeft())); });
    return buttons;
}

void LibraryHeader::show(const Facts &facts) {
    m_facts = facts;
    m_title->setToolTip(facts.title);
    m_artist->setVisible(!facts.artist.isEmpty());
    m_favorite->setVisible(facts.isFavorite.has_value());
    m_favorite->setChecked(facts.isFavorite.value_or(false));
    fitTitle();
    takeColors();
    m_cover->update();
}

void LibraryHeader::setDetails(const QString &details) {
    m_details->setText(details);
}

// Two lines, or a bit more, whatever a title is.
void LibraryHeader::fitTitle() {
    const QFontMetrics metrics(m_title->font());
    m_title->setText(metrics.elidedText(m_facts.title.simplified(), Qt::ElideRight,
                                        std::max(200, 2 * (width() - coverSide - 60))));
}

void LibraryHeader::takeColors() {
    const QColor color = palette().color(QPalette::Text);
    m_favorite->setIcon(LibraryIcons::heart(color, m_favorite->isChecked()));
    m_more->setIcon(LibraryIcons::more(color));
    m_artist->setText(QStringLiteral("<a href=\"artist\" style=\"color:%1; text-decoration:none\">%2</a>")
                          .arg(color.name(), m_facts.artist.toHtmlEscaped()));
}

void LibraryHeader::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    fitTitle();
}

void LibraryHeader::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        takeColors();
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
