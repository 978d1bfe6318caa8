#pragma once

#include "MusicAssistantKit/Wire/MAJSON.h"

#include <QHash>
#include <QSet>

namespace vantor {

/// Which commands a server has, as far as one knows. A value.
class MAServerCommands {
  public:
    struct Parameter {
        QString name;
        QString type;
        bool operator==(const Parameter &) const = default;
    };

    MAServerCommands() = default; ///< nothing is known
    /// Of the server's "/api-docs/commands.json"; nothing is known when it is no such list.
    [[nodiscard]] static MAServerCommands decode(const MAJSON &json);

    /// The commands of the list; none when there is no list.
    [[nodiscard]] std::optional<QSet<QString>> names() const;
    [[nodiscard]] bool isKnown() const { return m_parameters.has_value(); }
    /// Surely.
    [[nodiscard]] bool lists(const QString &command) const;
    [[nodiscard]] bool mayHave(const QString &command) const {
        return !m_refused.contains(command) && (!isKnown() || lists(command));
    }
    /// Of a listed command.
    [[nodiscard]] QList<Parameter> parameters(const QString &command) const;

    /// Whether "invalid command", said to this one, means that there is no such command. The queues and the
    /// players say the same of what they cannot do right now.
    [[nodiscard]] bool isUnknownWhenInvalid(const QString &command) const;
    /// The server said that there is no such command.
    void noteRefused(const QString &command) { m_refused.insert(command); }
    [[nodiscard]] bool wasRefused(const QString &command) const { return m_refused.contains(command); }

  private:
    std::optional<QHash<QString, QList<Parameter>>> m_parameters; ///< by command
    QSet<QString> m_refused;
};

} // namespace vantor
