#include "cli/doctor/property_checks.h"

#include <algorithm>
#include <span>

#include "cli/doctor/finding.h"
#include "text/printable.h"

namespace cli::doctor {
namespace {

using binary_file::BinaryImage;
using binary_file::Property;
using binary_file::PropertyForm;
using binary_file::PropertyList;

constexpr std::uint32_t kNumber = 16000;
constexpr std::uint32_t kVersion = 3U << 16U;

/// The code that a key of the property list stands for.
struct NamedCode {
    const char* key;        ///< "8664", "mi64", "ma64"
    const char* processor;  ///< as BinaryImage::processor
};
constexpr NamedCode kWindowsCode[] = {{"8664", "x86-64"}};
constexpr NamedCode kMacosCode[] = {{"mi64", "x86-64"}, {"ma64", "arm64"}};

std::span<const NamedCode> code_keys(PropertyForm form) {
    return form == PropertyForm::windows ? std::span<const NamedCode>(kWindowsCode) : kMacosCode;
}

/// The name of a function, which the platforms store in different forms.
std::optional<std::string_view> entry_name(const Property& property, PropertyForm form) {
    return form == PropertyForm::windows ? property.terminated_text() : property.counted_text();
}

/// "as text that ends with a zero byte"
std::string entry_form(PropertyForm form) {
    return form == PropertyForm::windows ? "as text that ends with a zero byte"
                                         : "as text that begins with a byte for its length";
}

PropertyForm other_form(PropertyForm form) {
    return form == PropertyForm::windows ? PropertyForm::macos : PropertyForm::windows;
}

bool exports(const BinaryImage& image, std::string_view name) {
    return std::find(image.exports.begin(), image.exports.end(), name) != image.exports.end();
}

std::string version_text(std::uint32_t version) {
    return std::to_string(version >> 16U) + '.' + std::to_string(version & 0xFFFFU);
}

std::string bytes_text(std::string_view bytes) {
    constexpr std::size_t kShown = 32;
    return text::hexadecimal_bytes(bytes.substr(0, kShown)) + (bytes.size() > kShown ? "..." : "");
}

std::optional<std::string> owned(std::optional<std::string_view> text) {
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

/// The value of a property, as its key defines it.
std::string value_text(const Property& property, PropertyForm form) {
    std::optional<std::string> text;
    if (property.key == "kind") {
        text = property.code();
    } else if (property.key == "name" || property.key == "catg") {
        text = owned(property.counted_text());
    } else if (property.key == "vers" && property.number()) {
        text = version_text(*property.number());
    } else if (std::any_of(code_keys(form).begin(), code_keys(form).end(),
                           [&](const NamedCode& code) { return property.key == code.key; })) {
        text = owned(entry_name(property, form));
    }
    return text.value_or(bytes_text(property.data.all()));
}

class PropertyChecks {
  public:
    PropertyChecks(const std::string& file, const PropertyList& list, std::uint64_t offset_bytes,
                   Diagnosis& diagnosis)
        : file_(file), list_(list), offset_bytes_(offset_bytes), diagnosis_(diagnosis) {}

    void check(PropertyForm form, const std::vector<BinaryImage>& images) {
        check_kind();
        check_text("name", "the name in the host's menus");
        check_text("catg", "the category");
        if (const Property* category = list_.find("catg");
            category != nullptr && category->counted_text().value_or("") != "General Plugin") {
            add(Finding::property_unusual, category,
                "the category \"catg\" is \"" + std::string(category->counted_text().value_or("")) +
                    "\", not \"General Plugin\"");
        }
        check_version();
        for (const NamedCode& code : code_keys(form)) {
            const auto image = std::find_if(images.begin(), images.end(), [&](const BinaryImage& one) {
                return one.processor == code.processor;
            });
            if (image != images.end()) {
                check_entry(form, code, *image);
            }
        }
    }

  private:
    void add(Finding finding, const Property* property, std::string reason) {
        const std::uint64_t at = property == nullptr ? offset_bytes_ : property->offset_bytes;
        diagnosis_.findings.push_back(
            diagnostic::make(finding, {file_, static_cast<std::int64_t>(at)}, std::move(reason)));
    }

    const Property* required(const char* key, const std::string& what) {
        const Property* property = list_.find(key);
        if (property == nullptr) {
            add(Finding::property_missing, nullptr,
                "there is no property \"" + std::string(key) + "\": " + what);
        }
        return property;
    }

    void check_kind() {
        const Property* kind = required("kind", "the kind of plug-in, \"AEgx\"");
        if (kind != nullptr && kind->code() != "AEgx") {
            add(Finding::property_wrong, kind,
                "the kind \"kind\" is " + text::quoted(kind->code().value_or(bytes_text(kind->data.all()))) +
                    ", not \"AEgx\", the kind of general plug-ins");
        }
    }

    void check_text(const char* key, const std::string& what) {
        const Property* text = required(key, what);
        if (text != nullptr && text->counted_text().value_or("").empty()) {
            add(Finding::property_wrong, text,
                "the property \"" + std::string(key) +
                    "\" is empty, or not a text with its length in front: " + what);
        }
    }

    void check_version() {
        const Property* version = required("vers", "the version of the interface, 3.0");
        if (version != nullptr && version->number() != kVersion) {
            add(Finding::property_unusual, version,
                "the version \"vers\" is " +
                    (version->number() ? version_text(*version->number()) : bytes_text(version->data.all())) +
                    ", not 3.0");
        }
    }

    void check_entry(PropertyForm form, const NamedCode& code, const BinaryImage& image) {
        const Property* entry =
            required(code.key, "the function that is called first in the code for " + image.processor);
        if (entry == nullptr) {
            return;
        }
        const std::string name(entry_name(*entry, form).value_or(""));
        if (!name.empty() && exports(image, name)) {
            return;
        }
        const std::string swapped(entry_name(*entry, other_form(form)).value_or(""));
        if (exports(image, swapped)) {
            add(Finding::property_wrong, entry,
                "the property \"" + std::string(code.key) + "\" names " + text::quoted(swapped) + ' ' +
                    entry_form(other_form(form)) + "; hosts on this system expect it " + entry_form(form));
        } else if (name.empty()) {
            add(Finding::property_wrong, entry,
                "the property \"" + std::string(code.key) + "\" does not name a function " +
                    entry_form(form));
        } else {
            add(Finding::entry_not_exported, entry,
                "the property \"" + std::string(code.key) + "\" names " + text::quoted(name) +
                    ", which the code for " + image.processor + " does not export");
        }
    }

    const std::string& file_;
    const PropertyList& list_;
    std::uint64_t offset_bytes_;
    Diagnosis& diagnosis_;
};

}  // namespace

void check_properties(const std::string& file, const std::vector<binary_file::Resource>& resources,
                      PropertyForm form, const std::vector<BinaryImage>& images, Diagnosis& diagnosis) {
    if (resources.empty()) {
        diagnosis.findings.push_back(
            diagnostic::make(Finding::no_properties, {file}, "there is no PiPL resource"));
        return;
    }
    // Hosts read the resource with their number. Without it, the first one is checked.
    const auto usual = std::find_if(resources.begin(), resources.end(),
                                    [](const binary_file::Resource& one) { return one.number == kNumber; });
    const binary_file::Resource& resource = usual == resources.end() ? resources.front() : *usual;
    const std::uint64_t at = resource.data.start_bytes();
    if (usual == resources.end()) {
        diagnosis.findings.push_back(diagnostic::make(
            Finding::properties_number, {file, static_cast<std::int64_t>(at)},
            "the PiPL resource has " +
                (resource.number ? "the number " + std::to_string(*resource.number) : "a name") +
                ", not the number " + std::to_string(kNumber)));
    }
    const PropertyList list = binary_file::read_property_list(resource.data, form);
    PropertyListFacts facts{file, resource.number, {}};
    for (const Property& property : list.properties) {
        facts.properties.push_back({property.key, value_text(property, form), property.offset_bytes});
    }
    diagnosis.property_lists.push_back(std::move(facts));
    if (list.damage) {
        diagnosis.findings.push_back(diagnostic::make(
            Finding::properties_damaged, {file, static_cast<std::int64_t>(list.damage->offset_bytes())},
            list.damage->what()));
        return;
    }
    PropertyChecks(file, list, at, diagnosis).check(form, images);
}

}  // namespace cli::doctor
