#include "Vantor/Windows/MessagePage.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantor {

namespace {

constexpr int widestText = 460; // longer lines are hard to follow

} // namespace

MessagePage::MessagePage(QWidget *parent)
    : QWidget(parent), m_heading(new QLabel), m_text(new QLabel), m_button(new QPushButton) {
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus); // without a button, too, it keeps the place of what comes after it
    QFont large = m_heading->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    m_heading->setFont(large);
    for (QLabel *const label : {m_heading, m_text}) {
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignCenter);
        label->setTextFormat(Qt::PlainText);
    }
    m_text->setForegroundRole(QPalette::PlaceholderText);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // The column has a width of its own, by which it knows how many lines the texts take: an alignment would
    // give them the height of the whole width.
    auto *const column = new QWidget;
    column->setMaximumWidth(widestText);
    auto *const lines = new QVBoxLayout(column);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->addWidget(m_heading);
    lines->addWidget(m_text);
    lines->addSpacing(10);
    lines->addWidget(m_button, 0, Qt::AlignHCenter);
    auto *const across = new QHBoxLayout;
    across->addStretch(1);
    across->addWidget(column, widestText);
    across->addStretch(1);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 24);
    layout->addStretch(2);
    layout->addLayout(across);
    layout->addStretch(3);
    connect(m_button, &QPushButton::clicked, this, [this] {
        const auto action = m_action; // it may have something else said
        action();
    });
}

void MessagePage::say(const QString &heading, const QString &text, const QString &button,
                      const std::function<void()> &action) {
    m_heading->setText(heading);
    m_heading->setVisible(!heading.isEmpty());
    m_text->setText(text);
    m_text->setVisible(!text.isEmpty());
    m_button->setText(button);
    m_button->setVisible(!button.isEmpty());
    setFocusProxy(button.isEmpty() ? nullptr : m_button);
    m_action = action;
    setAccessibleName(heading.isEmpty() ? text : heading + QStringLiteral(". ") + text);
}

} // namespace vantor
