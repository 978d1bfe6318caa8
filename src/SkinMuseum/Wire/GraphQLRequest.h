#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <variant>

namespace vantor {

/// One of an enumeration's names.
struct GraphQLEnum {
    QString name;

    bool operator==(const GraphQLEnum &) const = default;
};

/// What a variable of a query can be.
using GraphQLValue = std::variant<QString, qint64, bool, GraphQLEnum>;

/// A question to a GraphQL service. A value; any thread.
struct GraphQLRequest {
    QString operationName;
    QString query;
    QMap<QString, GraphQLValue> variables;

    bool operator==(const GraphQLRequest &) const = default;

    /// A JSON object with these three keys.
    [[nodiscard]] QByteArray encoded() const;
};

} // namespace vantor
