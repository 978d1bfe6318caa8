#include "Vantor/Preferences/NetworkNames.h"

#include "MusicAssistantKit/Servers/WiFiNetworkProvider.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>

namespace vantor {

namespace {

QPushButton *makeButton(const QString &text) {
    auto *const button = new QPushButton(text);
    button->setAutoDefault(false);
    return button;
}

} // namespace

NetworkNames::NetworkNames(WiFiNetworkProvider &wifi, QWidget *parent)
    : QWidget(parent), m_wifi(wifi), m_list(new QListWidget),
      m_useCurrent(makeButton(tr("&Use Current Network"))), m_remove(makeButton(tr("Remove"))) {
    auto *const add = makeButton(tr("Add"));
    add->setAccessibleName(tr("Add a network"));
    m_remove->setAccessibleName(tr("Remove the network"));
    m_list->setAccessibleName(tr("Wi-Fi networks"));
    m_list->setFixedHeight(3 * m_list->fontMetrics().height() + 16);
    m_list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    setFocusProxy(m_list);
    auto *const small = new QHBoxLayout;
    small->addWidget(add);
    small->addWidget(m_remove);
    auto *const buttons = new QVBoxLayout;
    buttons->addWidget(m_useCurrent);
    buttons->addLayout(small);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list, 1, Qt::AlignTop);
    layout->addLayout(buttons);
    layout->setAlignment(buttons, Qt::AlignTop);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    auto *const removing = new QShortcut(QKeySequence::Delete, m_list);
    removing->setContext(Qt::WidgetShortcut);
    connect(removing, &QShortcut::activated, this, &NetworkNames::removeSelected);
    connect(m_useCurrent, &QPushButton::clicked, this, &NetworkNames::addCurrent);
    connect(add, &QPushButton::clicked, this, &NetworkNames::addTyped);
    connect(m_remove, &QPushButton::clicked, this, &NetworkNames::removeSelected);
    connect(m_list, &QListWidget::itemChanged, this, &NetworkNames::tell);
    connect(m_list, &QListWidget::itemSelectionChanged, this, &NetworkNames::showNetwork);
    connect(&wifi, &WiFiNetworkProvider::networkChanged, this, &NetworkNames::showNetwork);
    showNetwork();
}

void NetworkNames::setNames(const QStringList &names) {
    if (names == m_told)
        return; // which spares a name that is being typed
    const QSignalBlocker blocker(m_list);
    m_told = names;
    m_list->clear();
    for (const QString &name : names)
        add(name);
    showNetwork();
}

QStringList NetworkNames::names() const {
    QStringList names;
    for (int row = 0; row < m_list->count(); ++row)
        names.append(m_list->item(row)->text().trimmed());
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}

void NetworkNames::add(const QString &name) {
    auto *const item = new QListWidgetItem(name, m_list);
    item->setFlags(item->flags() | Qt::ItemIsEditable);
}

void NetworkNames::addCurrent() {
    if (const auto name = m_wifi.ssid())
        add(*name);
    tell();
}

void NetworkNames::addTyped() {
    if (m_list->count() == 0 || !m_list->item(m_list->count() - 1)->text().isEmpty())
        add({});
    m_list->setCurrentRow(m_list->count() - 1);
    m_list->editItem(m_list->currentItem());
}

void NetworkNames::removeSelected() {
    delete m_list->currentItem();
    tell();
}

void NetworkNames::tell() {
    showNetwork();
    const QStringList now = names();
    if (std::exchange(m_told, now) != now)
        Q_EMIT edited(now);
}

void NetworkNames::showNetwork() {
    const auto name = m_wifi.ssid();
    m_useCurrent->setEnabled(name && !names().contains(name->trimmed()));
    const auto message =
        m_wifi.authorization() == WiFiAuthorization::notDetermined ? std::nullopt : m_wifi.locationMessage();
    m_useCurrent->setToolTip(name      ? tr("Prefer this server on “%1”").arg(*name)
                             : message ? vantor::message(*message)
                                       : QString());
    m_remove->setEnabled(m_list->currentItem() && m_list->currentItem()->isSelected());
}

} // namespace vantor
