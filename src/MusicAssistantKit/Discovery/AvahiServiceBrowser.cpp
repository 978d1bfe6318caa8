#include "MusicAssistantKit/Discovery/AvahiServiceBrowser.h"

#include <QCoroDBusPendingCall>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QPointer>

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString service = u"org.freedesktop.Avahi"_s;
const QString serverInterface = u"org.freedesktop.Avahi.Server"_s;
const QString browserInterface = u"org.freedesktop.Avahi.ServiceBrowser"_s;

constexpr int anyInterface = -1;
constexpr int anyProtocol = -1;
constexpr int protocolIPv4 = 0; // an IPv6 address of the local network would need its interface beside it
constexpr uint noFlags = 0;
constexpr qsizetype addressCount = 11; // of ResolveService's values

struct ServiceType {
    QString name;
    bool isMusicAssistant; ///< so that the announced port is the server's own
};

/// Newer servers call their service by the short name.
const std::array<ServiceType, 4> serviceTypes{{
    {u"_music-assistant._tcp"_s, true},
    {u"_mass._tcp"_s, true},
    {u"_home-assistant._tcp"_s, false},
    {u"_sendspin-server._tcp"_s, false},
}};

bool announcesOwnPort(const QString &type) {
    return std::any_of(serviceTypes.begin(), serviceTypes.end(), [&](const ServiceType &known) {
        return known.name == type && known.isMusicAssistant;
    });
}

QDBusPendingCall callServer(const QDBusConnection &bus, const QString &method,
                            const QVariantList &arguments) {
    auto message = QDBusMessage::createMethodCall(service, u"/"_s, serverInterface, method);
    message.setArguments(arguments);
    return bus.asyncCall(message);
}

} // namespace

void AvahiServiceBrowser::setBus(const QDBusConnection &bus) {
    m_bus = bus;
    m_hasBus = true;
    // Of whatever browser: its first items come with the reply that names it.
    m_bus.connect(service, QString(), browserInterface, u"ItemNew"_s, this,
                  SLOT(itemNew(int, int, QString, QString, QString, uint)));
    m_bus.connect(service, QString(), browserInterface, u"AllForNow"_s, this, SLOT(allForNow()));
    m_bus.connect(service, QString(), browserInterface, u"Failure"_s, this, SLOT(allForNow()));
    if (m_isWanted)
        start();
}

AvahiServiceBrowser::~AvahiServiceBrowser() {
    AvahiServiceBrowser::stop();
}

void AvahiServiceBrowser::start() {
    stop();
    m_isWanted = true;
    if (!m_hasBus)
        return;
    m_unsettled = static_cast<int>(serviceTypes.size());
    for (const ServiceType &type : serviceTypes)
        browse(type.name);
}

void AvahiServiceBrowser::stop() {
    ++m_round;
    m_isWanted = false;
    m_unsettled = 0;
    for (const QString &path : std::exchange(m_browsers, {}))
        m_bus.send(QDBusMessage::createMethodCall(service, path, browserInterface, u"Free"_s));
}

QCoro::Task<> AvahiServiceBrowser::browse(QString type) {
    const QPointer self(this);
    const int round = m_round;
    const QVariantList arguments{anyInterface, anyProtocol, type, QString(), noFlags};
    const QDBusMessage reply = co_await callServer(m_bus, u"ServiceBrowserNew"_s, arguments);
    if (!self || m_round != round)
        co_return;
    if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
        m_browsers.append(reply.arguments().constFirst().value<QDBusObjectPath>().path());
    else
        settleOne();
}

void AvahiServiceBrowser::itemNew(int interface, int, const QString &name, const QString &type,
                                  const QString &domain, uint) {
    if (!m_browsers.isEmpty() || m_unsettled > 0)
        resolve({.interface = interface, .name = name, .type = type, .domain = domain});
}

void AvahiServiceBrowser::allForNow() {
    settleOne();
}

QCoro::Task<> AvahiServiceBrowser::resolve(Item item) {
    const QPointer self(this);
    const int round = m_round;
    const bool belongsToStart = m_unsettled > 0;
    if (belongsToStart)
        ++m_unsettled;
    const QVariantList arguments{item.interface, anyProtocol,  item.name, item.type,
                                 item.domain,    protocolIPv4, noFlags};
    const QDBusMessage reply = co_await callServer(m_bus, u"ResolveService"_s, arguments);
    if (!self || m_round != round)
        co_return;
    const QVariantList values = reply.arguments();
    if (reply.type() == QDBusMessage::ReplyMessage && values.size() >= addressCount) {
        const int port = values[8].toInt();
        const bool isOwnPort = announcesOwnPort(item.type) && port > 0 && port < 65536;
        const MusicAssistantDiscoveredHost host{.host = values[5].toString(),
                                                .port = isOwnPort ? std::optional(port) : std::nullopt,
                                                .address = values[7].toString()};
        Q_EMIT hostFound(host);
    }
    if (self && m_round == round && belongsToStart)
        settleOne();
}

void AvahiServiceBrowser::settleOne() {
    if (m_unsettled > 0 && --m_unsettled == 0)
        Q_EMIT settled();
}

} // namespace vantor
