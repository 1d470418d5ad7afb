// What the libraries do inside themselves, and the sanitizers need not tell.

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

const char* __tsan_default_suppressions()
{
    // The sound server's client library hands used packets from one of its connections to the next by atomics
    // of its own making.
    return "race:pa_iochannel_read_with_ancil_data\n"
           "race:pa_packet_new_data\n";
}
#endif
