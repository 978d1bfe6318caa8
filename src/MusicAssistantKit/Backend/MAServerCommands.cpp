#include "MusicAssistantKit/Backend/MAServerCommands.h"

#include "MusicAssistantKit/Backend/Items/MADecoding_p.h"

namespace vantor {

using namespace Qt::Literals::StringLiterals;

namespace {

MAServerCommands::Parameter parameter(const MAReader &reader) {
    return {.name = reader.member("name").string(),
            .type = reader.optionalString("type").value_or(QString())};
}

} // namespace

MAServerCommands MAServerCommands::decode(const MAJSON &json) {
    MAServerCommands commands;
    if (json.kind() != MAJSON::Kind::array)
        return commands;
    QHash<QString, QList<Parameter>> listed;
    for (qsizetype i = 0; i < json.size(); ++i) {
        const MAReader entry(json.at(i));
        if (const auto name = entry.optionalString("command"))
            listed.insert(*name, readableEntries(entry.value().member("parameters"_L1), &parameter));
    }
    if (!listed.isEmpty())
        commands.m_parameters = listed;
    return commands;
}

std::optional<QSet<QString>> MAServerCommands::names() const {
    if (!m_parameters)
        return std::nullopt;
    return QSet<QString>(m_parameters->keyBegin(), m_parameters->keyEnd());
}

bool MAServerCommands::lists(const QString &command) const {
    return m_parameters && m_parameters->contains(command);
}

QList<MAServerCommands::Parameter> MAServerCommands::parameters(const QString &command) const {
    return m_parameters ? m_parameters->value(command) : QList<Parameter>();
}

bool MAServerCommands::isUnknownWhenInvalid(const QString &command) const {
    if (isKnown())
        return !lists(command);
    return !command.startsWith("player_queues/"_L1) && !command.startsWith("players/cmd/"_L1);
}

} // namespace vantor
