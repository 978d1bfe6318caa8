#include "MusicAssistantKit/Settings/MusicAssistantSettingsModel.h"

#include <QPointer>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

using Failure = MusicAssistantConnectionFailure;

constexpr std::chrono::seconds infoTimeout{8};

/// The keychain's name for a server: it stays when the address changes.
QString accountOf(const QUuid &id) {
    return id.toString(QUuid::WithoutBraces);
}

std::variant<QUrl, Failure> addressOf(const QString &text) {
    const auto parsed = MusicAssistantAddressInput::parse(text);
    if (const auto *url = std::get_if<QUrl>(&parsed))
        return *url;
    return Failure{.failureCase = Failure::Case::invalidAddress,
                   .message = {},
                   .foundName = {},
                   .problem = std::get<MusicAssistantAddressInput::Problem>(parsed)};
}

Failure failureWithName(Failure::Case failureCase, const MAServerInfo &found) {
    const bool hasName = found.name && !found.name->isEmpty();
    return {.failureCase = failureCase,
            .message = {},
            .foundName = hasName ? found.name : std::nullopt,
            .problem = {}};
}

} // namespace

QString MusicAssistantSettingsModel::tokenPlaceholder() {
    return u"Long-lived token from Music Assistant › Profile"_s;
}

QString MusicAssistantSettingsModel::afterAddingText() {
    return u"After adding, paste the server's token and press Test Connection. The token is sent only to the "
           u"server "
           u"that was tested."_s;
}

QString MusicAssistantSettingsModel::replacingText() {
    return u"Replacing forgets this server's token. Enter the token of the server that answers now."_s;
}

class MusicAssistantSettingsModel::KeychainQuestion {
  public:
    KeychainQuestion(MusicAssistantSettingsModel &model, const QUuid &id) : m_model(&model), m_id(id) {
        count(1);
    }
    ~KeychainQuestion() {
        if (m_model)
            count(-1);
    }
    Q_DISABLE_COPY_MOVE(KeychainQuestion)

  private:
    void count(int step) {
        m_model->m_keychainQuestions[m_id] += step;
        Q_EMIT m_model->statusChanged(m_id);
    }

    QPointer<MusicAssistantSettingsModel> m_model;
    QUuid m_id;
};

MusicAssistantSettingsModel::MusicAssistantSettingsModel(const Collaborators &collaborators, QObject *parent)
    : QObject(parent), m_with(collaborators) {}

std::variant<QUuid, Failure> MusicAssistantSettingsModel::add(const QString &name,
                                                              const QString &addressText) {
    const auto address = addressOf(addressText);
    if (const auto *failure = std::get_if<Failure>(&address))
        return *failure;
    const auto &url = std::get<QUrl>(address);
    MusicAssistantServerConfiguration server{.id = QUuid::createUuid(),
                                             .name = name.trimmed(),
                                             .address = {.baseURL = url, .serverID = {}},
                                             .networks = {}};
    if (server.name.isEmpty())
        server.name = url.host();
    m_with.list.add(server);
    return server.id;
}

std::optional<Failure> MusicAssistantSettingsModel::setAddress(const QUuid &id, const QString &addressText) {
    const auto address = addressOf(addressText);
    if (const auto *failure = std::get_if<Failure>(&address))
        return *failure;
    auto server = m_with.list.server(id);
    if (!server || server->address.baseURL == std::get<QUrl>(address))
        return std::nullopt;
    server->address.baseURL = std::get<QUrl>(address);
    beginRound(id);
    m_found.remove(id);
    m_with.list.update(*server);
    setStatus(id, {});
    return std::nullopt;
}

QCoro::Task<> MusicAssistantSettingsModel::replace(QUuid id) {
    auto server = m_with.list.server(id);
    if (!server)
        co_return;
    server->address.serverID.reset();
    m_found.remove(id);
    m_with.list.update(*server);
    const QPointer self(this);
    co_await setToken(id, MusicAssistantToken(QString()));
    if (self && status(id).kind != Status::Kind::failed)
        setStatus(id, {.kind = Status::Kind::none, .text = replacingText(), .failure = {}});
}

QCoro::Task<> MusicAssistantSettingsModel::remove(QUuid id) {
    beginRound(id);
    m_found.remove(id);
    m_with.list.remove(id);
    co_await setToken(id, MusicAssistantToken(QString()));
}

QCoro::Task<> MusicAssistantSettingsModel::setToken(QUuid id, MusicAssistantToken token) {
    const QPointer self(this);
    const int round = beginRound(id);
    try {
        co_await keep(id, token);
        if (!self || m_rounds.value(id) != round)
            co_return;
        const auto kept = keptToken(id);
        setStatus(id, {.kind = Status::Kind::none,
                       .text = kept ? MusicAssistantTokenStore::message(*kept) : QString(),
                       .failure = {}});
    } catch (const MusicAssistantTokenStoreError &error) {
        if (self && m_rounds.value(id) == round)
            setKeychainFailure(id, error);
    }
}

QCoro::Task<> MusicAssistantSettingsModel::keep(QUuid id, MusicAssistantToken token) {
    const QPointer self(this);
    const KeychainQuestion question(*this, id);
    if (token.isEmpty()) {
        co_await m_with.tokens.remove(accountOf(id));
        if (self)
            m_kept.remove(id);
    } else {
        const auto kept = co_await m_with.tokens.save(accountOf(id), token);
        if (self)
            m_kept.insert(id, kept);
    }
    if (self)
        Q_EMIT tokenChanged(id);
}

QCoro::Task<> MusicAssistantSettingsModel::checkToken(QUuid id) {
    const QPointer self(this);
    const int round = beginRound(id);
    Status found;
    try {
        const KeychainQuestion question(*this, id);
        const auto kept = co_await m_with.tokens.kept(accountOf(id));
        found.text = kept ? MusicAssistantTokenStore::message(*kept) : QString();
        if (self)
            m_kept.insert(id, kept);
        if (self && m_rounds.value(id) == round)
            setStatus(id, found);
    } catch (const MusicAssistantTokenStoreError &error) {
        if (self && m_rounds.value(id) == round)
            setKeychainFailure(id, error);
    }
}

QCoro::Task<MusicAssistantToken> MusicAssistantSettingsModel::keptTokenOf(QUuid id) {
    const QPointer self(this);
    const KeychainQuestion question(*this, id);
    const auto token = co_await m_with.tokens.token(accountOf(id));
    if (self && !token)
        m_kept.insert(id, std::nullopt);
    co_return token.value_or(MusicAssistantToken(QString()));
}

QCoro::Task<> MusicAssistantSettingsModel::test(QUuid id, MusicAssistantToken typed) {
    const auto server = m_with.list.server(id);
    if (!server)
        co_return;
    const QPointer self(this);
    const int round = beginRound(id);
    setStatus(id, {.kind = Status::Kind::testing, .text = {}, .failure = {}});
    const auto isCurrent = [&] { return self && m_rounds.value(id) == round; };
    try {
        const auto url = server->address.baseURL;
        const MAServerInfo found = co_await MusicAssistantClient::serverInfo(url, m_with.http, infoTimeout);
        if (!isCurrent())
            co_return;
        if (const auto problem = MusicAssistantClient::schemaProblem(found))
            throw *problem;
        const QString expected = expectedServerID(*server, found);
        if (expected != found.serverID) {
            setFailure(id, failureWithName(Failure::Case::serverMismatch, found));
            co_return;
        }
        m_found.insert(id, {.baseURL = url, .info = found});
        MusicAssistantToken token = typed;
        if (token.isEmpty())
            token = co_await keptTokenOf(id);
        if (!isCurrent())
            co_return;
        if (token.isEmpty()) {
            setFailure(id, failureWithName(Failure::Case::needsToken, found));
            co_return;
        }
        const MAServerInfo info = co_await signIn(*server, token, expected);
        if (!isCurrent())
            co_return;
        if (!typed.isEmpty())
            co_await keep(id, typed);
        if (isCurrent())
            verify(*server, info);
    } catch (const MusicAssistantError &error) {
        if (isCurrent())
            setFailure(id, Failure::from(error, server->address.baseURL));
    } catch (const MusicAssistantTokenStoreError &error) {
        if (isCurrent())
            setKeychainFailure(id, error);
    }
}

QCoro::Task<MAServerInfo> MusicAssistantSettingsModel::signIn(MusicAssistantServerConfiguration server,
                                                              MusicAssistantToken token, QString serverID) {
    const MusicAssistantClient::Collaborators with{.transports = m_with.transports, .clock = m_with.clock};
    const auto client =
        std::make_shared<MusicAssistantClient>(server.address.baseURL, with, MusicAssistantClient::Timing());
    const MAServerInfo info = co_await client->connect(token, serverID);
    client->disconnect();
    co_return info;
}

QString MusicAssistantSettingsModel::expectedServerID(const MusicAssistantServerConfiguration &server,
                                                      const MAServerInfo &answering) const {
    if (server.address.serverID)
        return *server.address.serverID;
    const auto found = m_found.constFind(server.id);
    const bool isKnown = found != m_found.constEnd() && found->baseURL == server.address.baseURL;
    return isKnown ? found->info.serverID : answering.serverID;
}

void MusicAssistantSettingsModel::verify(const MusicAssistantServerConfiguration &tested,
                                         const MAServerInfo &info) {
    auto server = m_with.list.server(tested.id);
    if (!server)
        return;
    server->address.serverID = info.serverID;
    // Who gave it no name calls it as it calls itself.
    if (server->name == server->address.baseURL.host() && !info.name.value_or(QString()).isEmpty())
        server->name = *info.name;
    m_found.remove(tested.id);
    m_with.list.update(*server);
    const QString name = info.name.value_or(server->name);
    setStatus(tested.id,
              {.kind = Status::Kind::passed, .text = u"Connected to %1."_s.arg(name), .failure = {}});
}

void MusicAssistantSettingsModel::setStatus(const QUuid &id, const Status &status) {
    if (m_with.list.server(id))
        m_statuses.insert(id, status);
    else
        m_statuses.remove(id);
    Q_EMIT statusChanged(id);
}

void MusicAssistantSettingsModel::setFailure(const QUuid &id, const Failure &failure) {
    setStatus(id, {.kind = Status::Kind::failed, .text = failure.description(), .failure = failure});
}

void MusicAssistantSettingsModel::setKeychainFailure(const QUuid &id,
                                                     const MusicAssistantTokenStoreError &error) {
    setFailure(id, {.failureCase = Failure::Case::keychain,
                    .message = error.description(),
                    .foundName = {},
                    .problem = {}});
}

QCoro::Task<std::optional<MusicAssistantServerSettings>>
MusicAssistantSettingsModel::settings(MusicAssistantServerConfiguration server,
                                      MusicAssistantTokenStore &tokens) {
    const auto token = co_await tokens.token(accountOf(server.id));
    if (!token || token->isEmpty())
        co_return std::nullopt;
    co_return MusicAssistantServerSettings{.address = server.address, .token = *token};
}

} // namespace vantor
