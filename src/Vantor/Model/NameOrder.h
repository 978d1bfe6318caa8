#pragma once

#include <QCollator>

namespace vantor {

/// The order in which names are listed for people: the system's language, numbers by their value, capitals as
/// small letters. Any thread.
[[nodiscard]] QCollator nameOrder();

} // namespace vantor
