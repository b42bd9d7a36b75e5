#include "cli/doctor/inspection.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "binary_file/binary_file.h"
#include "cli/doctor/bundle_files.h"
#include "cli/doctor/compatibility.h"
#include "cli/doctor/finding.h"
#include "cli/doctor/macos_bundle.h"
#include "cli/doctor/needed_libraries.h"
#include "cli/doctor/property_checks.h"

namespace cli::doctor {
namespace {

using binary_file::BinaryFile;
using binary_file::BinaryImage;
using binary_file::Container;

constexpr std::array<std::string_view, 2> kEntries{"EntryPointFunc", "Main_VORTANXR_AE"};

const char* container_label(Container container) {
    switch (container) {
        case Container::elf:
            return "ELF";
        case Container::pe:
            return "PE";
        case Container::mach_o:
            break;
    }
    return "Mach-O";
}

BinaryFacts facts_of(const BinaryImage& image) {
    BinaryFacts facts{
        container_label(image.container), image.kind, image.processor, image.offset_bytes, {}, {}, {}};
    facts.export_count = image.exports.size();
    for (const std::string_view entry : kEntries) {
        if (std::find(image.exports.begin(), image.exports.end(), entry) != image.exports.end()) {
            facts.entries.emplace_back(entry);
        }
    }
    for (const binary_file::NeededLibrary& library : image.needed) {
        facts.needed.emplace_back(library.name);
    }
    return facts;
}

class Inspection {
  public:
    Inspection(const std::string& bundle, const RunLoadTest& run_load_test, Loading loading)
        : run_load_test_(run_load_test), loading_(loading) {
        diagnosis_.bundle = bundle;
    }

    Diagnosis run() {
        look();
        diagnosis_.compatibility = compatibility_of(diagnosis_);
        if (diagnosis_.code != ExitCode::cannot_read_or_write) {
            diagnosis_.code = !diagnosis_.first_error() && (is_listed() || !diagnosis_.why_not_loaded.empty())
                                  ? ExitCode::fine
                                  : ExitCode::refused;
        }
        return std::move(diagnosis_);
    }

  private:
    diagnostic::Diagnostic& add(Finding finding, diagnostic::Place at, std::string reason) {
        return diagnosis_.findings.emplace_back(diagnostic::make(finding, std::move(at), std::move(reason)));
    }

    void unreadable(const std::string& file, const std::string& why) {
        add(Finding::cannot_read, {file}, why);
        diagnosis_.code = ExitCode::cannot_read_or_write;
    }

    [[nodiscard]] bool is_listed() const {
        return std::any_of(diagnosis_.compatibility.begin(), diagnosis_.compatibility.end(),
                           [](const Compatibility& host) { return host.answer == Answer::yes; });
    }

    void look() {
        MacosBundle macos_bundle;
        diagnosis_.binary = diagnosis_.bundle;
        const bool folder = path_kind(diagnosis_.bundle) == PathKind::folder;
        if (folder) {
            macos_bundle = open_macos_bundle(diagnosis_);
            diagnosis_.binary = macos_bundle.binary;
            if (macos_bundle.binary.empty()) {
                return;
            }
        }
        const ReadFile file = read_file(diagnosis_.binary);
        if (!file.bytes) {
            unreadable(file.path, file.error);
            return;
        }
        const std::optional<BinaryFile> binary = binary_file::read_binary_file(*file.bytes);
        if (!binary) {
            add(Finding::not_a_binary, {file.path}, "the file is not ELF, PE or Mach-O");
            return;
        }
        look_at_images(*binary);
        if (folder) {
            check_macos_bundle(macos_bundle, binary->images, diagnosis_);
        } else if (!binary->images.empty() && binary->images.front().container == Container::mach_o) {
            add(Finding::not_a_bundle, {file.path}, "Mach-O code outside of a bundle");
        }
        try_to_load(binary->images);
    }

    void look_at_images(const BinaryFile& binary) {
        diagnosis_.universal = binary.universal;
        if (binary.damage) {
            damage(*binary.damage);
        }
        for (const BinaryImage& image : binary.images) {
            diagnosis_.images.push_back(facts_of(image));
            if (image.damage) {
                damage(*image.damage);
            }
            check_image(image);
        }
        check_entries(binary.images);
        check_needed_libraries(diagnosis_.binary, binary.images, diagnosis_);
        if (!binary.images.empty() && binary.images.front().container == Container::pe) {
            check_windows(binary.images);
        }
    }

    void damage(const binary_file::Damage& damage) {
        add(Finding::damaged, {diagnosis_.binary, static_cast<std::int64_t>(damage.offset_bytes())},
            damage.what());
    }

    /// Only the parts of a universal file have an offset.
    [[nodiscard]] diagnostic::Place place_of(const BinaryImage& image) const {
        return {diagnosis_.binary, image.offset_bytes == 0
                                       ? std::nullopt
                                       : std::optional(static_cast<std::int64_t>(image.offset_bytes))};
    }

    void check_image(const BinaryImage& image) {
        const diagnostic::Place at = place_of(image);
        if (!image.loadable && !image.damage) {
            add(Finding::wrong_kind, at, "the code is a " + image.kind + ", not a loadable library");
        }
        if (image.container == Container::mach_o && !image.has_signature && !image.damage) {
            add(Finding::not_signed, at, "the code for " + image.processor + " is not signed");
        }
    }

    void check_entries(const std::vector<BinaryImage>& images) {
        for (std::size_t i = 0; i < images.size(); ++i) {
            const std::vector<std::string>& entries = diagnosis_.images[i].entries;
            const diagnostic::Place at = place_of(images[i]);
            if (images[i].damage || !images[i].loadable) {
                continue;
            }
            if (entries.empty()) {
                add(Finding::entry_missing, at,
                    "the code for " + images[i].processor +
                        " exports neither EntryPointFunc nor Main_VORTANXR_AE");
            } else if (entries.size() < kEntries.size()) {
                add(Finding::one_generation, at,
                    "the code for " + images[i].processor + " exports " + entries.front() + " only");
            }
        }
    }

    void check_windows(const std::vector<BinaryImage>& images) {
        const BinaryImage& image = images.front();
        if (!has_ending(last_name(diagnosis_.bundle), ".aex")) {
            add(Finding::wrong_name, {diagnosis_.bundle}, "the name does not end with .aex");
        }
        if (image.processor != "x86-64" && !image.damage) {
            add(Finding::wrong_processor, {diagnosis_.binary},
                "the code is for " + image.processor + "; current hosts on Windows run on x86-64");
        }
        check_properties(diagnosis_.binary, image.property_lists, binary_file::PropertyForm::windows, images,
                         diagnosis_);
    }

    void try_to_load(const std::vector<BinaryImage>& images) {
        const bool loadable = std::any_of(images.begin(), images.end(), [](const BinaryImage& image) {
            return image.loadable && container_label(image.container) == std::string_view(own_container());
        });
        const bool has_entry = std::any_of(diagnosis_.images.begin(), diagnosis_.images.end(),
                                           [](const BinaryFacts& image) { return !image.entries.empty(); });
        // A library without either entry is not a plug-in, and no code of it runs here.
        if (!loadable || !has_entry) {
            return;
        }
        if (loading_ == Loading::never) {
            diagnosis_.why_not_loaded = "it was not loaded, as --no-load says";
            return;
        }
        if (loading_ == Loading::ours && !is_ours()) {
            diagnosis_.why_not_loaded =
                "it is not a plug-in of VORTAN XR, so none of its code was run; --always-load runs it";
            return;
        }
        for (const embedded::HostGeneration generation :
             {embedded::HostGeneration::today, embedded::HostGeneration::classic}) {
            // What the system cannot load, it cannot load for any host.
            if (!diagnosis_.load_tests.empty() &&
                diagnosis_.load_tests.front().end == LoadOutcome::not_loadable) {
                diagnosis_.load_tests.push_back(diagnosis_.load_tests.front());
                diagnosis_.load_tests.back().generation = embedded::generation_label(generation);
                return;
            }
            diagnosis_.load_tests.push_back(run_load_test_(diagnosis_.binary, generation));
            add_load_test_finding(diagnosis_.load_tests.back());
        }
    }

    /// The name of the entry for classic hosts is the plug-in's own; that for current hosts is a custom.
    [[nodiscard]] bool is_ours() const {
        return std::any_of(diagnosis_.images.begin(), diagnosis_.images.end(), [](const BinaryFacts& image) {
            return std::find(image.entries.begin(), image.entries.end(), kEntries[1]) != image.entries.end();
        });
    }

    void add_load_test_finding(const LoadTest& load_test) {
        Finding finding = Finding::registers_nothing;
        std::string reason = "embedded host, " + load_test.generation + ": " + load_test.reason;
        switch (load_test.end) {
            case LoadOutcome::listed:
                if (!load_test.registered.empty()) {
                    return;
                }
                reason += "it registers neither an importer nor an input module";
                break;
            case LoadOutcome::failed:
                finding = Finding::entry_failed;
                break;
            case LoadOutcome::not_loadable:
                finding = Finding::not_loadable;
                reason = load_test.reason;
                break;
            case LoadOutcome::crashed:
                finding = Finding::load_crashed;
                break;
            case LoadOutcome::timed_out:
                finding = Finding::load_timed_out;
                break;
        }
        std::vector<std::string>& effects = add(finding, {diagnosis_.binary}, std::move(reason)).effects;
        const std::vector<std::string>& messages = load_test.messages;
        std::transform(messages.begin(), messages.end(), std::inserter(effects, effects.begin()),
                       [](const std::string& message) { return "it said: " + message; });
    }

    const RunLoadTest& run_load_test_;
    Loading loading_;
    Diagnosis diagnosis_;
};

}  // namespace

std::optional<std::string> Diagnosis::first_error() const {
    const auto error =
        std::find_if(findings.begin(), findings.end(), [](const diagnostic::Diagnostic& finding) {
            return finding.severity() == diagnostic::Severity::error;
        });
    return error == findings.end() ? std::nullopt : std::optional(error->reason);
}

Diagnosis inspect(const std::string& bundle, const RunLoadTest& run_load_test, Loading loading) {
    return Inspection(bundle, run_load_test, loading).run();
}

}  // namespace cli::doctor
