#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/terminal/terminal.h"
#include "diagnostic/diagnostic.h"

namespace cli::doctor {

enum class Answer { yes, no, not_tried };

/// Whether one kind of host would list the bundle. Its "platform" and "generation" are part of the JSON.
struct Compatibility {
    std::string platform;    ///< "windows", "macintosh", "embedded"
    std::string generation;  ///< "today", "classic"
    Answer answer = Answer::no;
    std::string reason;
};

/// The code for one processor.
struct BinaryFacts {
    std::string container;  ///< "ELF", "PE", "Mach-O"
    std::string kind;       ///< "shared library", "DLL", ...
    std::string processor;
    std::uint64_t offset_bytes = 0;    ///< in a universal file
    std::vector<std::string> entries;  ///< the exported ones of the functions that hosts call first
    std::uint64_t export_count = 0;
    std::vector<std::string> needed;  ///< libraries
};

struct PropertyFacts {
    std::string key;
    std::string value;  ///< "AEgx", "General Plugin", "3.0"; hexadecimal when the key is unknown
    std::uint64_t offset_bytes = 0;
};

struct PropertyListFacts {
    std::string file;
    std::optional<std::uint32_t> number;  ///< of the resource; nothing when it has a name
    std::vector<PropertyFacts> properties;
};

/// What an importer or an input module is called, and which files it takes.
struct Registration {
    std::string kind;  ///< "importer", "input module"
    std::string name;
    std::vector<std::string> extensions;
};

enum class LoadOutcome { listed, failed, not_loadable, crashed, timed_out };

/// What happened when the embedded host loaded the bundle.
struct LoadTest {
    std::string generation;
    LoadOutcome end = LoadOutcome::crashed;
    std::string reason;  ///< half a sentence; empty when it is listed
    std::vector<Registration> registered;
    std::vector<std::string>
        messages;  ///< what the plug-in reported, or the last lines that the process wrote
};

/// Everything that is known about a bundle.
struct Diagnosis {
    std::string bundle;  ///< as the user named it
    ExitCode code = ExitCode::refused;
    std::vector<Compatibility> compatibility;
    std::vector<diagnostic::Diagnostic> findings;
    std::string binary;  ///< the file with the code; empty when there is none
    bool universal = false;
    std::vector<BinaryFacts> images;
    std::vector<PropertyListFacts> property_lists;
    std::vector<std::pair<std::string, std::string>> info_plist;  ///< the keys that hosts look at
    std::vector<LoadTest> load_tests;
    std::string why_not_loaded;  ///< empty when it was loaded, or could not be

    /// The reason of the first error, if there is one.
    [[nodiscard]] std::optional<std::string> first_error() const;
};

/// For a person: a line for each kind of host, then the findings, then what the bundle is made of.
[[nodiscard]] std::string diagnosis_text(const Diagnosis& diagnosis, const Paint& paint);

/// For a script: one JSON document, "schema": 1.
[[nodiscard]] std::string diagnosis_document(const Diagnosis& diagnosis);

}  // namespace cli::doctor
