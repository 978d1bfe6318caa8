// What the thread sanitizer may overlook. Qt is not built with it, so that it cannot see the lock of Qt's
// event queue and takes every event that is posted to another thread for a race on that event's memory. The
// first are the places that post one; what they say travels under a mutex of ours or inside the event. The
// last are the ends of threads and event loops, which Qt and its event loop's library guard themselves.
extern "C" const char *__tsan_default_suppressions();

extern "C" const char *__tsan_default_suppressions() {
    return "race:vantor::TrackStreamer::report\n"
           "race:vantor::PulseAudioOutput::post\n"
           "race:vantor::DefaultOutputListener::tell\n"
           "race:QSlotObject<void (vantor::Downloader\n"
           "race:pa_mutex_lock\n"
           "race:QWaitCondition::~QWaitCondition\n"
           "race:libglib-2.0\n"
           "race:tzset_internal\n"; // libzip's dates, under a lock of the C library's that is not seen either
}
