// SPDX-License-Identifier: GPL-3.0-or-later
// What the libraries do inside themselves, and the sanitizers need not tell. Part of every program of a build
// that has one.

#ifdef __SANITIZE_ADDRESS__
extern "C" const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions()
{
    // The ALSA library's copy of its configuration, made while the sound server is away.
    return "leak:snd_config_make\n"
           "leak:snd_config_set_string\n";
}
#endif

#ifdef __SANITIZE_THREAD__
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_options();

// Tests make a process of a test's own from one that has threads, and threads in it.
const char* __tsan_default_options() { return "die_after_fork=0"; }

// Libraries are built without the thread sanitizer, which therefore sees none of the locks inside them. The
// sound server's client hands used packets from one of its connections to the next by atomics of its own
// making, the C library keeps its time zone under a lock of its own, and libdbus takes locks of its own in a
// circle, all on the toolkit's one thread for the bus. The sanitizer does not see the locking of a timed
// mutex either, only its unlocking; in a module it does not know who unlocks.
const char* __tsan_default_suppressions()
{
    return "race:libQt6\nrace:libglib-2.0\nrace:libdbus-1\nrace:libburn\n"
           "race:pa_iochannel_read_with_ancil_data\nrace:pa_packet_new_data\nrace:tzset_internal\n"
           "deadlock:libdbus-1\nmutex:std::timed_mutex::unlock\nmutex:velmora-discs.so\n";
}
#endif
