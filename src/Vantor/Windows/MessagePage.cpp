#include "Vantor/Windows/MessagePage.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantor {

MessagePage::MessagePage(QWidget *parent)
    : QWidget(parent), m_heading(new QLabel), m_text(new QLabel), m_button(new QPushButton) {
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    setFocusProxy(m_button);
    QFont large = m_heading->font();
    large.setPointSizeF(large.pointSizeF() * 1.4);
    m_heading->setFont(large);
    for (QLabel *const label : {m_heading, m_text}) {
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignCenter);
        label->setTextFormat(Qt::PlainText);
    }
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 24);
    layout->addStretch(2);
    layout->addWidget(m_heading);
    layout->addWidget(m_text);
    layout->addSpacing(10);
    layout->addWidget(m_button, 0, Qt::AlignHCenter);
    layout->addStretch(3);
    connect(m_button, &QPushButton::clicked, this, [this] {
        const auto action = m_action; // it may have something else said
        action();
    });
}

void MessagePage::say(const QString &heading, const QString &text, const QString &button,
                      const std::function<void()> &action) {
    m_heading->setText(heading);
    m_text->setText(text);
    m_button->setText(button);
    m_button->setVisible(!button.isEmpty());
    m_action = action;
}

} // namespace vantor
