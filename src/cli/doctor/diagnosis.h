#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/report/diagnostic_text.h"

namespace cli::doctor {

enum class Answer { yes, no, not_tried };

/// Whether one kind of host would list the bundle.
struct Verdict {
    std::string platform;    ///< "windows", "macintosh", "embedded"
    std::string generation;  ///< "today", "classic"
    Answer answer = Answer::no;
    std::string reason;
};

/// The code for one processor.
struct ImageFacts {
    std::string container;  ///< "ELF", "PE", "Mach-O"
    std::string kind;       ///< "shared library", "DLL", ...
    std::string processor;
    std::uint64_t offset_bytes = 0;
    std::vector<std::string> entries;  ///< of those that hosts call first, the exported ones
    std::uint64_t export_count = 0;
    std::vector<std::string> needed;
};

struct PropertyFacts {
    std::string key;
    std::string value;  ///< in words: "AEgx", "General Plugin", "3.0"; hexadecimal when the key is not known
    std::uint64_t offset_bytes = 0;
};

struct PropertyListFacts {
    std::string file;
    std::optional<std::uint32_t> number;
    std::vector<PropertyFacts> properties;
};

/// What an importer or an input module is called, and what files it takes.
struct Registration {
    std::string kind;  ///< "importer", "input module"
    std::string name;
    std::vector<std::string> extensions;
};

/// How loading it in the embedded host ended.
enum class TrialEnd { listed, failed, not_loadable, crashed, timed_out };

/// Loading the bundle in the embedded host, in a process of its own.
struct Trial {
    std::string generation;
    TrialEnd end = TrialEnd::crashed;
    std::string reason;  ///< one half sentence; of `listed` empty
    std::vector<Registration> registered;
    std::vector<std::string>
        messages;  ///< what the plug-in reported, or the last lines that the process wrote
};

/// Everything that is known about a bundle.
struct Diagnosis {
    std::string bundle;  ///< as the user named it
    ExitCode code = ExitCode::refused;
    std::vector<Verdict> verdicts;
    std::vector<Diagnostic> findings;
    std::string binary;  ///< the file with the code; empty when there is none
    bool universal = false;
    std::vector<ImageFacts> images;
    std::vector<PropertyListFacts> property_lists;
    std::vector<std::pair<std::string, std::string>> info_plist;  ///< the keys that hosts look at
    std::vector<Trial> trials;

    /// The reason of the first error, if there is one.
    [[nodiscard]] std::optional<std::string> first_error() const;
};

}  // namespace cli::doctor
