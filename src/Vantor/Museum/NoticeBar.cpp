#include "Vantor/Museum/NoticeBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace vantor {

NoticeBar::NoticeBar(const QString &button, QWidget *parent)
    : QWidget(parent), m_sentence(new QLabel), m_button(new QPushButton(button)) {
    setBackgroundRole(QPalette::AlternateBase);
    setAutoFillBackground(true);
    m_sentence->setTextFormat(Qt::PlainText);
    m_sentence->setWordWrap(true);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 6, 10, 6);
    layout->addWidget(m_sentence, 1);
    layout->addWidget(m_button);
    connect(m_button, &QPushButton::clicked, this, &NoticeBar::pressed);
    hide();
}

void NoticeBar::say(const QString &sentence) {
    m_sentence->setText(sentence);
    setVisible(!sentence.isEmpty());
}

} // namespace vantor
