#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded/testing.h"
#include "support/tested_host.h"
#include "system/dynamic_library.h"

/// The built bundle in a host of its own, which logs every call. Uses the bundle's exported entry point only;
/// VXR_BUNDLE_PATH comes from the build. The host has the generation that the test program runs for, whatever
/// `options` say.
class LoadedBundle {
  public:
    explicit LoadedBundle(embedded::HostOptions options = {})
        : LoadedBundle(std::move(options), tested_generation()) {}
    /// For tests that choose the generation themselves, or load another build of the bundle.
    LoadedBundle(embedded::HostOptions options, embedded::HostGeneration generation,
                 const std::string& path = VXR_BUNDLE_PATH)
        : host_(of_generation(std::move(options), generation)) {
        keep_in_memory(path);
        host_.log_calls([this](std::string_view line) { calls_.emplace_back(line); });
        loaded_ = host_.load(path);
    }

    [[nodiscard]] embedded::TestHost& host() { return host_; }
    [[nodiscard]] const embedded::LoadResult& loaded() const { return loaded_; }

    /// The lines of the call log since the last time they were taken.
    std::vector<std::string> take_calls() { return std::exchange(calls_, {}); }

    [[nodiscard]] std::vector<std::string> message_texts() const {
        std::vector<std::string> texts;
        for (const embedded::Message& message : host_.messages()) {
            texts.push_back(message.text);
        }
        return texts;
    }

  private:
    // LeakSanitizer of clang 14 crashes at exit when a library with thread-local storage was unloaded while
    // other threads, here those of the image library, still ran. Hosts load and unload the bundle as ever;
    // the sanitizer builds deliberately hold one more reference to it until the process ends.
    static void keep_in_memory([[maybe_unused]] const std::string& path) {
#if defined(VXR_SANITIZED)
        static auto* const kept = new std::map<std::string, std::unique_ptr<os::DynamicLibrary>>();
        if (!kept->contains(path)) {
            std::string error;
            kept->emplace(path, os::DynamicLibrary::open(path, error));
        }
#endif
    }

    static embedded::HostOptions of_generation(embedded::HostOptions options,
                                               embedded::HostGeneration generation) {
        options.generation = generation;
        return options;
    }

    std::vector<std::string> calls_;  // before the host, which writes to it until it is gone
    embedded::TestHost host_;
    embedded::LoadResult loaded_;
};
