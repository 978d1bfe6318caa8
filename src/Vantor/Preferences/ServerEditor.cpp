#include "Vantor/Preferences/ServerEditor.h"

#include "Vantor/Preferences/NetworkNames.h"
#include "Vantor/Preferences/SettingsPage.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QStyle>

namespace vantor {

using Status = MusicAssistantSettingsModel::Status;

namespace {

constexpr std::chrono::milliseconds keychainPatience{700};

/// Room for so many lines, whatever there is to say: nothing moves under the pointer.
void giveRoom(QLabel &label, int lines) {
    label.setWordWrap(true);
    label.setTextFormat(Qt::PlainText);
    label.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label.setMinimumHeight(lines * label.fontMetrics().lineSpacing());
}

} // namespace

ServerEditor::ServerEditor(MusicAssistantServers &servers, QWidget *parent)
    : QWidget(parent), m_servers(servers), m_model(servers.settings()), m_name(new QLineEdit),
      m_address(new QLineEdit), m_problem(new QLabel), m_token(new QLineEdit),
      m_kept(SettingsPage::makeNote()), m_networks(new NetworkNames(servers.wifi())),
      m_test(new QPushButton(tr("&Test Connection"))), m_replace(new QPushButton(tr("&Replace Server"))),
      m_sign(new QLabel), m_status(new QLabel) {
    m_problem->setWordWrap(true);
    m_problem->hide();
    m_token->setEchoMode(QLineEdit::Password);
    giveRoom(*m_kept, 3);
    m_patience.setSingleShot(true);
    m_patience.setInterval(keychainPatience);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        m_isPatient = false;
        showStatus();
    });
    m_token->setPlaceholderText(MusicAssistantSettingsModel::tokenPlaceholder());
    m_networks->setToolTip(tr("The Wi-Fi networks on which this server is preferred"));
    auto *const layout = new QFormLayout;
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    layout->addRow(tr("&Name"), m_name);
    layout->addRow(tr("&Address"), m_address);
    layout->addRow(QString(), m_problem);
    layout->addRow(tr("T&oken"), m_token);
    layout->addRow(QString(), m_kept);
    layout->addRow(tr("Net&works"), m_networks);
    auto *const whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addLayout(layout);
    whole->addWidget(makeTest());
    whole->addStretch(1);

    connect(m_name, &QLineEdit::editingFinished, this, &ServerEditor::takeName);
    connect(m_address, &QLineEdit::editingFinished, this, [this] { (void)takeAddress(); });
    connect(m_token, &QLineEdit::returnPressed, m_test, &QPushButton::click);
    connect(m_networks, &NetworkNames::edited, this, [this](const QStringList &names) {
        if (auto server = m_servers.list().server(m_id)) {
            server->networks = names;
            m_servers.list().update(*server);
        }
    });
    connect(m_test, &QPushButton::clicked, this, [this] {
        if (takeAddress())
            test(m_id, m_token->text());
    });
    connect(m_replace, &QPushButton::clicked, this, [this] {
        m_model.replace(m_id);
        m_token->setFocus();
    });
    connect(&m_model, &MusicAssistantSettingsModel::statusChanged, this, [this](const QUuid &id) {
        if (id == m_id)
            showStatus();
    });
    connect(&servers.list(), &MusicAssistantServerList::changed, this, &ServerEditor::fill);
}

QWidget *ServerEditor::makeTest() {
    m_replace->setToolTip(MusicAssistantSettingsModel::replacingText());
    for (QPushButton *const button : {m_test, m_replace})
        button->setAutoDefault(false);
    giveRoom(*m_status, 2);
    m_status->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 4, 0, 0);
    layout->addWidget(m_test);
    layout->addWidget(m_replace);
    layout->addWidget(m_sign);
    layout->addWidget(m_status, 1);
    return row;
}

void ServerEditor::edit(const QUuid &id) {
    if (m_id == id)
        return;
    if (!m_id.isNull())
        takeToken();
    m_id = id;
    m_problem->hide();
    m_name->setModified(false);
    m_address->setModified(false);
    fill();
    showStatus();
    if (isVisible())
        lookForToken();
}

// The keychain may ask the user, who should see why.
void ServerEditor::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    lookForToken();
}

void ServerEditor::lookForToken() {
    if (!m_id.isNull() && m_model.status(m_id) == Status() && !m_model.keptToken(m_id))
        m_model.checkToken(m_id);
}

// What is being typed stays.
void ServerEditor::fill() {
    const auto server = m_servers.list().server(m_id);
    if (!server)
        return;
    if (!m_name->isModified())
        m_name->setText(server->name);
    if (!m_address->isModified())
        m_address->setText(MusicAssistantAddressInput::displayText(server->address.baseURL));
    m_networks->setNames(server->networks);
}

void ServerEditor::takeName() {
    auto server = m_servers.list().server(m_id);
    m_name->setModified(false);
    if (server && !m_name->text().trimmed().isEmpty()) {
        server->name = m_name->text().trimmed();
        m_servers.list().update(*server);
    }
    fill();
}

bool ServerEditor::takeAddress() {
    if (!m_address->isModified())
        return true;
    const auto failure = m_model.setAddress(m_id, m_address->text());
    m_problem->setVisible(failure.has_value());
    m_problem->setText(failure ? failure->description() : QString());
    if (failure)
        return false;
    m_address->setModified(false);
    fill();
    return true;
}

void ServerEditor::takeToken() {
    const MusicAssistantToken token(m_token->text());
    m_token->clear();
    if (!token.isEmpty() && m_servers.list().server(m_id))
        m_model.setToken(m_id, token);
}

bool ServerEditor::confirm() {
    takeName();
    takeToken();
    if (takeAddress())
        return true;
    m_address->setFocus();
    return false;
}

void ServerEditor::askForToken() {
    m_token->setFocus();
}

// A token that has signed in is out of the field; one that has not can be corrected there.
QCoro::Task<> ServerEditor::test(QUuid id, QString typed) {
    const QPointer<ServerEditor> self(this);
    MusicAssistantSettingsModel &model = m_model;
    co_await model.test(id, MusicAssistantToken(typed));
    if (self && m_id == id && m_token->text() == typed && model.status(id).kind == Status::Kind::passed) {
        m_token->clear();
        showStatus();
    }
}

/// Where the token is, or how one comes by it.
QString ServerEditor::tokenNote() const {
    if (const auto kept = m_model.keptToken(m_id))
        return MusicAssistantTokenStore::message(*kept);
    const auto server = m_servers.list().server(m_id);
    const bool isDone = server && server->address.isVerified();
    return isDone ? QString() : MusicAssistantSettingsModel::afterAddingText();
}

void ServerEditor::showStatus() {
    const Status status = m_model.status(m_id);
    const bool isTesting = status.kind == Status::Kind::testing;
    m_kept->setText(tokenNote());
    m_token->setPlaceholderText(m_model.keptToken(m_id) ? QString(12, QChar(0x2022))
                                                        : MusicAssistantSettingsModel::tokenPlaceholder());
    m_test->setEnabled(!isTesting);
    m_replace->setVisible(status.failure && status.failure->failureCase ==
                                                MusicAssistantConnectionFailure::Case::serverMismatch);
    m_status->setText(isTesting ? tr("Testing…") : status.text == m_kept->text() ? QString() : status.text);
    const bool isToldOf = status.kind == Status::Kind::passed || status.kind == Status::Kind::failed;
    const auto sign =
        status.kind == Status::Kind::passed ? QStyle::SP_DialogApplyButton : QStyle::SP_MessageBoxWarning;
    m_sign->setVisible(isToldOf);
    if (isToldOf)
        m_sign->setPixmap(style()->standardIcon(sign).pixmap(16));
    showKeychain();
}

// It may ask the user, in a window of its own, which may be behind this one.
void ServerEditor::showKeychain() {
    if (!m_model.asksKeychain(m_id)) {
        m_patience.stop();
        m_isPatient = true;
    } else if (m_isPatient && !m_patience.isActive()) {
        m_patience.start();
    }
    if (!m_isPatient)
        m_status->setText(tr("Waiting for the keychain, which may be asking you in a window of its own."));
}

} // namespace vantor
