#include "Vantor/Library/LibraryScrollPage.h"

#include <QLabel>
#include <QVBoxLayout>

namespace vantor {

LibraryScrollPage::LibraryScrollPage(QWidget *parent) : QScrollArea(parent), m_layout(new QVBoxLayout) {
    setFrameShape(NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto *const content = new QWidget;
    content->setBackgroundRole(QPalette::Base);
    m_layout->setContentsMargins(0, 8, 0, 12);
    m_layout->setSpacing(4);
    auto *const outer = new QVBoxLayout(content);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addLayout(m_layout);
    outer->addStretch(1);
    setWidget(content);
    viewport()->setBackgroundRole(QPalette::Base);
}

QWidget *LibraryScrollPage::addPart(const QString &title, QWidget *content) {
    auto *const part = new QWidget;
    auto *const layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 6);
    layout->setSpacing(2);
    if (!title.isEmpty()) {
        auto *const heading = new QLabel(title);
        heading->setTextFormat(Qt::PlainText);
        QFont font = heading->font();
        font.setPointSizeF(font.pointSizeF() * 1.2);
        font.setBold(true);
        heading->setFont(font);
        heading->setContentsMargins(10, 6, 10, 0); // in line with the covers below
        layout->addWidget(heading);
    }
    layout->addWidget(content);
    m_layout->addWidget(part);
    return part;
}

void LibraryScrollPage::removeParts() {
    while (QLayoutItem *const item = m_layout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

} // namespace vantor
