#pragma once

namespace vantor {

/// The pages of the preferences, in their order.
enum class PreferencesPage { general, skins, library, musicAssistant, speaker, output, playback };

} // namespace vantor
