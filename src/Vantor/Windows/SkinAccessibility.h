#pragma once

namespace vantor {

/// Lets assistive tools and test programs find, read and press the painted controls of every SkinnedWindow,
/// from its table of controls. Once per program, before the first window is shown. Main thread.
void installSkinAccessibility();

} // namespace vantor
