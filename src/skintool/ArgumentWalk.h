#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace vantor {

/// One walk over a command line from left to right, which all subcommands share. Complaints are thrown as
/// SkintoolOptions::UsageError; the first one ends the walk.
class ArgumentWalk {
  public:
    /// Called when its option comes up; takes the option's value, if it has one, from the walk.
    using Handler = std::function<void(ArgumentWalk &)>;
    struct Option {
        const char *name;
        Handler take;
    };

    ArgumentWalk(const QStringList &arguments, const std::vector<Option> &options)
        : m_arguments(arguments), m_options(options) {}

    /// The one positional argument, which messages call `name`.
    [[nodiscard]] QString run(const char *name);

    /// The argument after the current one; complains when there is none or it looks like an option.
    QString value(const char *complaint);
    /// The same as a whole number within the bounds.
    std::int64_t number(std::int64_t least, std::int64_t most, const char *complaint);

  private:
    void step();

    const QStringList &m_arguments;
    const std::vector<Option> &m_options;
    qsizetype m_next = 0;
    QStringList m_positionals;
};

} // namespace vantor
