// What the thread sanitizer may overlook. Qt is not built with it, so that it cannot see the lock of Qt's
// event queue and takes every event that is posted to another thread for a race on that event's memory. These
// are the places that post one; what they say travels under a mutex of ours or inside the event.
extern "C" const char *__tsan_default_suppressions();

extern "C" const char *__tsan_default_suppressions() {
    return "race:vantor::TrackStreamer::report\n"
           "race:vantor::PulseAudioOutput::post\n"
           "race:vantor::DefaultOutputListener::tell\n"
           "race:pa_mutex_lock\n"
           "race:tzset_internal\n"; // libzip's dates, under a lock of the C library's that is not seen either
}
