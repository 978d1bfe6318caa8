#include "SkinMuseum/Wire/GraphQLRequest.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace vantor {

static QJsonValue json(const GraphQLValue &value) {
    if (const auto *name = std::get_if<GraphQLEnum>(&value))
        return name->name;
    if (const auto *text = std::get_if<QString>(&value))
        return *text;
    if (const auto *number = std::get_if<qint64>(&value))
        return *number;
    return std::get<bool>(value);
}

QByteArray GraphQLRequest::encoded() const {
    QJsonObject values;
    for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable)
        values.insert(variable.key(), json(variable.value()));
    const QJsonObject object{{QStringLiteral("operationName"), operationName},
                             {QStringLiteral("query"), query},
                             {QStringLiteral("variables"), values}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace vantor
