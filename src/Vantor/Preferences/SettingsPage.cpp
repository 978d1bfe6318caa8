#include "Vantor/Preferences/SettingsPage.h"

#include <QCheckBox>
#include <QLabel>
#include <QVBoxLayout>

namespace vantor {

SettingsPage::SettingsPage() : m_layout(new QVBoxLayout(this)) {
    m_layout->setContentsMargins(12, 0, 0, 0);
    m_layout->addStretch(1);
}

void SettingsPage::add(QWidget *widget) {
    m_layout->insertWidget(m_layout->count() - 1, widget);
}

void SettingsPage::addGap() {
    m_layout->insertSpacing(m_layout->count() - 1, 12);
}

void SettingsPage::addNote(const QString &text) {
    add(makeNote(text));
}

void SettingsPage::addField(const QString &title, QWidget *field) {
    auto *label = new QLabel(title);
    label->setBuddy(field);
    add(label);
    add(field);
}

QCheckBox *SettingsPage::addCheck(const QString &text, bool on) {
    auto *box = new QCheckBox(text);
    box->setChecked(on);
    add(box);
    return box;
}

QLabel *SettingsPage::makeNote(const QString &text) {
    auto *note = new QLabel(text);
    note->setWordWrap(true);
    note->setTextFormat(Qt::PlainText);
    note->setForegroundRole(QPalette::PlaceholderText);
    return note;
}

} // namespace vantor
