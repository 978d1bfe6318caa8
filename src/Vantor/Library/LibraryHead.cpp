#include "Vantor/Library/LibraryHead.h"

#include "Vantor/Library/LibraryIcons.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QToolButton>

namespace vantor {

namespace {

QToolButton *makeButton(const QString &text, const QKeySequence &key) {
    auto *const button = new QToolButton;
    button->setAutoRaise(true);
    button->setIconSize({18, 18});
    button->setAccessibleName(text);
    button->setToolTip(QStringLiteral("%1 (%2)").arg(text, key.toString(QKeySequence::NativeText)));
    return button;
}

} // namespace

LibraryHead::LibraryHead(LibraryBrowser &browser, QWidget *parent)
    : QWidget(parent), m_browser(browser),
      m_back(makeButton(tr("Back"), QKeySequence(Qt::ALT | Qt::Key_Left))),
      m_forward(makeButton(tr("Forward"), QKeySequence(Qt::ALT | Qt::Key_Right))), m_search(new QLineEdit),
      m_searchIcon(m_search->addAction(QIcon(), QLineEdit::LeadingPosition)) {
    m_search->setPlaceholderText(tr("Search artists, albums and tracks"));
    m_search->setAccessibleName(tr("Search"));
    m_search->setClearButtonEnabled(true);
    m_search->setMaximumWidth(420);
    m_search->installEventFilter(this);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 6, 12, 6);
    layout->setSpacing(4);
    layout->addWidget(m_back);
    layout->addWidget(m_forward);
    layout->addSpacing(8);
    layout->addWidget(m_search, 4);
    layout->addStretch(1);
    connect(m_back, &QToolButton::clicked, this, &LibraryHead::backAsked);
    connect(m_forward, &QToolButton::clicked, this, &LibraryHead::forwardAsked);
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (!m_isShowing)
            Q_EMIT searchTyped(text);
    });
    connect(&browser, &LibraryBrowser::sourceChanged, this, &LibraryHead::takeSource);
    takeColors();
    takeSource();
}

void LibraryHead::showSteps(bool canGoBack, bool canGoForward) {
    m_back->setEnabled(canGoBack);
    m_forward->setEnabled(canGoForward);
}

void LibraryHead::showSearch(const QString &text) {
    const QScopedValueRollback<bool> showing(m_isShowing, true); // whose own signals its clear button needs
    if (m_search->text().simplified() != text) // or what is being typed would lose its blanks
        m_search->setText(text);
}

void LibraryHead::setSearchEnabled(bool enabled) {
    m_search->setEnabled(enabled);
}

void LibraryHead::focusSearch() {
    m_search->setFocus(Qt::ShortcutFocusReason);
    m_search->selectAll();
}

void LibraryHead::takeSource() {
    m_search->setVisible(m_browser.capabilities().testFlag(MusicBackendCapability::search));
}

void LibraryHead::takeColors() {
    const QColor color = palette().color(QPalette::WindowText);
    const bool isLeftToRight = layoutDirection() == Qt::LeftToRight;
    const auto back = isLeftToRight ? &LibraryIcons::left : &LibraryIcons::right;
    const auto forward = isLeftToRight ? &LibraryIcons::right : &LibraryIcons::left;
    for (const auto &[button, icon] : {std::pair(m_back, back), {m_forward, forward}}) {
        // Styles make what is off of what is on for light palettes only.
        QColor faint = color;
        faint.setAlphaF(0.3F);
        QIcon both = icon(color);
        both.addPixmap(icon(faint).pixmap(button->iconSize()), QIcon::Disabled);
        button->setIcon(both);
    }
    m_searchIcon->setIcon(LibraryIcons::search(palette().color(QPalette::PlaceholderText)));
}

void LibraryHead::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        takeColors();
}

bool LibraryHead::eventFilter(QObject *watched, QEvent *event) {
    if (watched != m_search || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key == Qt::Key_Escape) {
        m_search->clear();
        Q_EMIT searchLeft();
        return true;
    }
    const bool isTabToResults = key == Qt::Key_Tab && !m_search->text().trimmed().isEmpty();
    if (isTabToResults || key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
        Q_EMIT resultsAsked();
        return true;
    }
    return false;
}

} // namespace vantor
