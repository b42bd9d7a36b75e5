#include "binary_file/info_plist.h"

#include <pugixml.hpp>
#include <string_view>

#include "text/ascii.h"

namespace binary_file {
namespace {

/// Real files have a few thousand bytes. The parser takes up to 25 times the length of the file in memory.
constexpr std::size_t kLargestInfoPlist_bytes = std::size_t{4} << 20U;

// Entities that a DOCTYPE declares are not expanded, and nothing outside the file is read.
constexpr unsigned kParsing = pugi::parse_default | pugi::parse_ws_pcdata_single;

/// All text directly inside an element, whether or not comments interrupt it.
std::string text_of(const pugi::xml_node& element) {
    std::string text;
    for (const pugi::xml_node& child : element) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
            text += child.value();
        }
    }
    return text;
}

std::map<std::string, std::string> texts_of(const pugi::xml_node& dictionary) {
    std::map<std::string, std::string> texts;
    std::optional<std::string> key;  // belongs to the value that follows it
    for (const pugi::xml_node& element : dictionary) {
        const std::string_view name = element.name();
        if (element.type() != pugi::node_element) {
            continue;
        }
        if (name == "key") {
            key = text_of(element);
            continue;
        }
        if (name == "string" && key) {
            texts.emplace(*key, text_of(element));
        }
        key.reset();
    }
    return texts;
}

void read_xml(std::string_view bytes, InfoPlist& plist) {
    if (bytes.size() > kLargestInfoPlist_bytes) {
        throw Damage(0, "the property list has " + std::to_string(bytes.size()) + " bytes; more than " +
                            std::to_string(kLargestInfoPlist_bytes) + " are not read");
    }
    pugi::xml_document document;
    const pugi::xml_parse_result result =
        document.load_buffer(bytes.data(), bytes.size(), kParsing, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) {
        throw std::bad_alloc();
    }
    // The document contains everything before the damage.
    const pugi::xml_node dictionary = document.child("plist").child("dict");
    plist.texts = texts_of(dictionary);
    if (!result && result.status != pugi::status_no_document_element) {
        std::string reason = result.description();
        reason[0] = text::to_lower(reason[0]);
        throw Damage(static_cast<std::uint64_t>(result.offset), "the XML is damaged: " + reason);
    }
    if (!dictionary) {
        throw Damage(0, "there is no <plist> with a <dict> in it");
    }
}

}  // namespace

std::optional<std::string> InfoPlist::text(const std::string& key) const {
    const auto found = texts.find(key);
    return found == texts.end() ? std::nullopt : std::optional(found->second);
}

InfoPlist read_info_plist(std::string_view bytes) {
    InfoPlist plist;
    if (bytes.substr(0, 6) == "bplist") {
        plist.binary = true;
        return plist;
    }
    try {
        read_xml(bytes, plist);
    } catch (const Damage& damage) {
        plist.damage = damage;
    }
    return plist;
}

}  // namespace binary_file
