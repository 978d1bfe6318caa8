#include "Vantor/Preferences/ServerAdder.h"

#include "Vantor/Preferences/SettingsPage.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace vantor {

namespace {

constexpr int urlRole = Qt::UserRole;
constexpr int nameRole = Qt::UserRole + 1;

} // namespace

ServerAdder::ServerAdder(MusicAssistantServers &servers, QWidget *parent)
    : QWidget(parent), m_servers(servers), m_name(new QLineEdit), m_address(new QLineEdit),
      m_problem(new QLabel), m_find(new QPushButton(MusicAssistantDiscovery::buttonText())),
      m_cancel(new QPushButton(tr("Cancel"))), m_add(new QPushButton(tr("&Add Server"))),
      m_found(new QListWidget), m_finding(SettingsPage::makeNote()) {
    m_name->setPlaceholderText(tr("Home"));
    m_address->setPlaceholderText(MusicAssistantAddressInput::proposedHost());
    m_problem->setWordWrap(true);
    m_problem->hide();
    m_found->setAccessibleName(tr("Servers found"));
    auto *const fields = new QFormLayout;
    fields->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    fields->addRow(tr("&Name"), m_name);
    fields->addRow(tr("A&ddress"), m_address);
    fields->addRow(QString(), m_problem);
    fields->addRow(QString(), SettingsPage::makeNote(MusicAssistantSettingsModel::afterAddingText()));
    auto *const buttons = new QHBoxLayout;
    buttons->addWidget(m_find);
    buttons->addStretch(1);
    for (QPushButton *const button : {m_find, m_cancel, m_add}) {
        button->setAutoDefault(false);
        if (button != m_find)
            buttons->addWidget(button);
    }
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(fields);
    layout->addLayout(buttons);
    layout->addWidget(m_finding);
    layout->addWidget(m_found, 1);
    layout->addStretch();

    connect(m_address, &QLineEdit::returnPressed, this, &ServerAdder::add);
    connect(m_add, &QPushButton::clicked, this, &ServerAdder::add);
    connect(m_cancel, &QPushButton::clicked, this, &ServerAdder::cancelled);
    connect(m_find, &QPushButton::clicked, this, &ServerAdder::find);
    connect(m_found, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem *item) {
        if (item)
            take(*item);
    });
    connect(m_found, &QListWidget::itemActivated, this, &ServerAdder::add);
    connect(&servers.discovery(), &MusicAssistantDiscovery::changed, this, &ServerAdder::showFound);
    servers.discovery().onConfiguredServerMoved = [this](const auto &server, const QUrl &url) {
        m_moved.append({server, url});
        showFound();
    };
    begin();
}

ServerAdder::~ServerAdder() {
    m_servers.discovery().onConfiguredServerMoved = {};
    m_servers.discovery().stop();
}

void ServerAdder::begin() {
    const bool isFirst = m_servers.list().servers().empty();
    m_name->clear();
    m_address->setText(isFirst ? MusicAssistantAddressInput::proposedHost() : QString());
    m_problem->hide();
    m_cancel->setVisible(!isFirst);
    m_found->hide();
    m_finding->hide();
    m_servers.discovery().stop();
}

void ServerAdder::add() {
    const auto moved = std::ranges::find_if(m_moved, [this](const auto &found) {
        return MusicAssistantAddressInput::displayText(found.second) == m_address->text().trimmed();
    });
    if (moved != m_moved.end()) {
        const QUuid id = moved->first.id;
        (void)m_servers.settings().setAddress(id, m_address->text());
        Q_EMIT added(id);
        return;
    }
    const auto result = m_servers.settings().add(m_name->text(), m_address->text());
    const auto *const failure = std::get_if<MusicAssistantConnectionFailure>(&result);
    m_problem->setVisible(failure);
    if (failure) {
        m_problem->setText(failure->description());
        m_address->setFocus();
    } else {
        Q_EMIT added(std::get<QUuid>(result));
    }
}

void ServerAdder::find() {
    m_moved.clear();
    m_servers.discovery().start();
    showFound();
}

void ServerAdder::showFound() {
    const QSignalBlocker blocker(m_found);
    const QString chosen = m_found->currentItem() ? m_found->currentItem()->text() : QString();
    m_found->clear();
    const auto add = [&](const QString &text, const QUrl &url, const QString &name) {
        auto *const item = new QListWidgetItem(text, m_found);
        item->setData(urlRole, url);
        item->setData(nameRole, name);
        if (text == chosen)
            m_found->setCurrentItem(item);
    };
    for (const auto &server : m_servers.discovery().servers()) {
        const QString address = MusicAssistantAddressInput::displayText(server.url);
        const QString name = server.name.value_or(QString());
        add(name.isEmpty() ? address : tr("%1 – %2").arg(name, address), server.url, name);
    }
    for (const auto &[server, url] : m_moved) {
        const QString address = MusicAssistantAddressInput::displayText(url);
        add(tr("%1 – now at %2").arg(server.name, address), url, server.name);
    }
    const QString status = m_moved.isEmpty() ? m_servers.discovery().statusText() : QString();
    m_finding->setText(status);
    m_finding->setVisible(!status.isEmpty());
    m_found->setVisible(m_found->count() > 0);
}

void ServerAdder::take(const QListWidgetItem &found) {
    m_name->setText(found.data(nameRole).toString());
    m_address->setText(MusicAssistantAddressInput::displayText(found.data(urlRole).toUrl()));
    m_problem->hide();
}

} // namespace vantor
