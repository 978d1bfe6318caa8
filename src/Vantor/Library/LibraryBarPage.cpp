#include "Vantor/Library/LibraryBarPage.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace vantor {

LibraryBarPage::LibraryBarPage(QWidget *list, QWidget *parent)
    : QWidget(parent), m_bar(new QWidget), m_buttons(new QHBoxLayout(m_bar)) {
    m_buttons->setContentsMargins(12, 8, 12, 4);
    m_buttons->addStretch(1);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_bar);
    layout->addWidget(list, 1);
    setFocusProxy(list);
}

void LibraryBarPage::addButton(const QString &text, const std::function<void()> &action) {
    auto *const button = new QPushButton(text);
    connect(button, &QPushButton::clicked, this, action);
    m_buttons->insertWidget(m_buttons->count() - 1, button);
}

void LibraryBarPage::showBar(bool shows) {
    m_bar->setVisible(shows);
}

} // namespace vantor
