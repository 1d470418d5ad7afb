// SPDX-License-Identifier: GPL-3.0-or-later
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
