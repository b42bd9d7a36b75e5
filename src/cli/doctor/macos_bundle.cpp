#include "cli/doctor/macos_bundle.h"

#include <algorithm>

#include "binary_file/info_plist.h"
#include "binary_file/property_list.h"
#include "binary_file/resources.h"
#include "cli/doctor/bundle_files.h"
#include "cli/doctor/finding.h"
#include "cli/doctor/property_checks.h"
#include "text/printable.h"

namespace cli::doctor {
namespace {

using binary_file::BinaryImage;
using binary_file::InfoPlist;

struct RequiredText {
    const char* key;
    const char* value;
};
constexpr RequiredText kRequired[] = {{"CFBundlePackageType", "AEgx"}, {"CFBundleSignature", "FXTC"}};
constexpr const char* kExecutable = "CFBundleExecutable";

class MacosChecks {
  public:
    explicit MacosChecks(Diagnosis& diagnosis) : diagnosis_(diagnosis) {}

    MacosBundle open() {
        const std::string& folder = diagnosis_.bundle;
        MacosBundle bundle;
        bundle.contents = folder.substr(0, folder.find_last_not_of('/') + 1) + "/Contents";
        if (path_kind(bundle.contents) != PathKind::folder) {
            add(Finding::not_a_bundle, {folder}, "the folder has no folder Contents, so it is not a bundle");
            return bundle;
        }
        if (!has_ending(last_name(folder), ".plugin")) {
            add(Finding::wrong_name, {folder}, "the name of the folder does not end with .plugin");
        }
        const std::string code = bundle.contents + "/MacOS";
        bundle.name = read_plist(bundle.contents + "/Info.plist").value_or("");
        if (bundle.name.empty()) {
            // Without a name, the only file in the folder is still inspected.
            bundle.name = only_file(code, "").value_or("");
        }
        if (bundle.name.empty() || path_kind(code + '/' + bundle.name) != PathKind::file) {
            add(Finding::executable_missing, {code},
                bundle.name.empty() ? "there is no file with the code"
                                    : "there is no file " + text::quoted(bundle.name));
            return bundle;
        }
        bundle.binary = code + '/' + bundle.name;
        return bundle;
    }

    void check_processors(const std::string& binary, const std::vector<BinaryImage>& images) {
        const auto has = [&images](const char* processor) {
            return std::any_of(images.begin(), images.end(), [processor](const BinaryImage& image) {
                return image.processor == processor;
            });
        };
        if (images.empty() || images.front().container != binary_file::Container::mach_o) {
            add(Finding::wrong_kind, {binary}, "the code in the bundle is not Mach-O");
        } else if (!has("x86-64") && !has("arm64")) {
            add(Finding::wrong_processor, {binary},
                "the code is for " + images.front().processor +
                    "; current hosts on macOS run on x86-64 and arm64");
        } else if (!has("x86-64") || !has("arm64")) {
            add(Finding::processor_missing, {binary},
                std::string("there is no code for ") + (has("arm64") ? "x86-64" : "arm64"));
        }
    }

    void check_resources(const MacosBundle& bundle, const std::vector<BinaryImage>& images) {
        const std::string folder = bundle.contents + "/Resources";
        std::string path = folder + '/' + bundle.name + ".rsrc";
        if (path_kind(path) == PathKind::missing) {
            const std::optional<std::string> other = only_file(folder, ".rsrc");
            add(Finding::no_properties, {path},
                "the file that hosts read the properties from does not exist" +
                    (other ? "; " + text::quoted(*other) + " is not named after the code" : std::string()));
            if (!other) {
                return;
            }
            path = folder + '/' + *other;
        }
        const ReadFile file = read_file(path);
        if (!file.bytes) {
            add(Finding::no_properties, {path}, file.error);
            return;
        }
        try {
            check_properties(path, binary_file::resource_fork(*file.bytes, "PiPL"),
                             binary_file::PropertyForm::macos, images, diagnosis_);
        } catch (const binary_file::Damage& damage) {
            add(Finding::properties_damaged, {path, static_cast<std::int64_t>(damage.offset_bytes())},
                damage.what());
        }
    }

  private:
    void add(Finding finding, diagnostic::Place at, std::string reason) {
        diagnosis_.findings.push_back(diagnostic::make(finding, std::move(at), std::move(reason)));
    }

    /// The name of the file with the code.
    std::optional<std::string> read_plist(const std::string& path) {
        const ReadFile file = read_file(path);
        if (!file.bytes) {
            add(Finding::plist_missing, {path}, file.error);
            return std::nullopt;
        }
        const InfoPlist plist = binary_file::read_info_plist(*file.bytes);
        if (plist.binary) {
            add(Finding::plist_binary, {path}, "this is a binary property list, which is not read here");
            return std::nullopt;
        }
        if (plist.damage) {
            add(Finding::plist_unreadable, {path, static_cast<std::int64_t>(plist.damage->offset_bytes())},
                plist.damage->what());
        }
        for (const RequiredText& required : kRequired) {
            check_text(path, plist, required);
        }
        std::optional<std::string> name = plist.text(kExecutable);
        diagnosis_.info_plist.emplace_back(kExecutable, name.value_or(""));
        if (!name || name->empty() || name->find('/') != std::string::npos) {
            add(Finding::plist_value, {path}, std::string(kExecutable) + " names no file");
            return std::nullopt;
        }
        return name;
    }

    void check_text(const std::string& path, const InfoPlist& plist, const RequiredText& required) {
        const std::optional<std::string> text = plist.text(required.key);
        diagnosis_.info_plist.emplace_back(required.key, text.value_or(""));
        if (text != required.value) {
            add(Finding::plist_value, {path},
                std::string(required.key) + " is " + (text ? text::quoted(*text) : std::string("missing")) +
                    ", not \"" + required.value + '"');
        }
    }

    Diagnosis& diagnosis_;
};

}  // namespace

MacosBundle open_macos_bundle(Diagnosis& diagnosis) {
    return MacosChecks(diagnosis).open();
}

void check_macos_bundle(const MacosBundle& bundle, const std::vector<BinaryImage>& images,
                        Diagnosis& diagnosis) {
    MacosChecks checks(diagnosis);
    checks.check_processors(bundle.binary, images);
    checks.check_resources(bundle, images);
}

}  // namespace cli::doctor
