#pragma once

/// The desktop's message bus, before anything talks to it.
namespace vantor::SessionBus {

/// Qt waits for the bus without end, in windows' first events already. Does without it, in this process and
/// those that it starts, when a bus that should be there does not answer within two seconds. Before the
/// application object.
void avoidIfSilent();

} // namespace vantor::SessionBus
