#pragma once

#include "MusicAssistantKit/Discovery/MusicAssistantServiceBrowser.h"

#include <QCoroTask>
#include <QDBusConnection>

namespace vantor {

/// Looks through Avahi on a message bus. Without Avahi, or without a bus, nothing is found.
class AvahiServiceBrowser : public MusicAssistantServiceBrowser {
    Q_OBJECT
  public:
    AvahiServiceBrowser() = default;
    ~AvahiServiceBrowser() override;

    /// To be called once; what was started before begins now.
    void setBus(const QDBusConnection &bus);

    void start() override;
    void stop() override;

  private Q_SLOTS:
    void itemNew(int interface, int protocol, const QString &name, const QString &type, const QString &domain,
                 uint flags);
    void allForNow();

  private:
    struct Item {
        int interface;
        QString name;
        QString type;
        QString domain;
    };
    QCoro::Task<> browse(QString type);
    QCoro::Task<> resolve(Item item);
    void settleOne();

    QDBusConnection m_bus{QString()}; ///< none at first
    bool m_hasBus = false;
    bool m_isWanted = false;
    QStringList m_browsers; ///< their object paths
    int m_round = 0;
    int m_unsettled = 0;
};

} // namespace vantor
