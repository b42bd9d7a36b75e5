// A plug-in that registers nothing and misbehaves as the environment variable VXR_UNRULY says.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "host/host_interface.h"

namespace {

A_Err misbehave() {
    const char* const set = std::getenv("VXR_UNRULY");
    const std::string how = set == nullptr ? "" : set;
    if (how == "abort") {
        std::fputs("the plug-in's last words\n", stderr);
        std::abort();
    }
    if (how == "segv") {
        std::raise(SIGSEGV);
    }
    if (how == "exit") {
        std::_Exit(0);
    }
    if (how == "hang") {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
    if (how == "talk") {
        std::puts("{\"generation\": \"of a lie\"}");
    }
    return how == "fail" ? kHostErrorStructure : kHostErrorNone;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) A_Err Main_VORTANXR_AE(SPBasicSuite*, A_long, A_long, const A_char*,
                                                              const A_char*, AEGP_PluginID,
                                                              AEGP_GlobalRefcon*) {
    return misbehave();
}

__attribute__((visibility("default"))) A_Err EntryPointFunc(SPBasicSuite*, A_long, A_long, AEGP_PluginID,
                                                            AEGP_GlobalRefcon*) {
    return misbehave();
}
}
