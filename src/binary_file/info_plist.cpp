#include "binary_file/info_plist.h"

#include <vector>

namespace binary_file {
namespace {

/// The few entities that XML defines by itself; property lists declare no others.
constexpr std::pair<std::string_view, char> kEntities[] = {
    {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''},
};

std::string without_entities(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        std::size_t length = 1;
        char meant = text.front();
        for (const auto& [entity, character] : kEntities) {
            if (text.substr(0, entity.size()) == entity) {
                length = entity.size();
                meant = character;
            }
        }
        plain += meant;
        text.remove_prefix(length);
    }
    return plain;
}

class PlistReader {
  public:
    PlistReader(std::string_view bytes, InfoPlist& plist) : bytes_(bytes), plist_(plist) {}

    /// One run over the tags; what is open is kept by name, so nothing recurses.
    void read() {
        while (next_tag()) {
            if (tag_.substr(0, 1) == "?" || tag_.substr(0, 1) == "!") {
                continue;
            }
            if (tag_.substr(0, 1) == "/") {
                close(tag_.substr(1));
            } else if (tag_.back() != '/') {
                open_.push_back(tag_.substr(0, tag_.find_first_of(" \t\r\n")));
            } else {
                outermost_value();
            }
        }
        if (!open_.empty()) {
            throw Damage(bytes_.size(), "the property list ends inside <" + std::string(open_.back()) + ">");
        }
        if (!seen_) {
            throw Damage(0, "there is no <plist> with a <dict> in it");
        }
    }

  private:
    /// Up to the next tag: `before_` is the text in front of it, `tag_` what is between its brackets.
    bool next_tag() {
        const std::size_t begin = bytes_.find('<', at_);
        if (begin == std::string_view::npos) {
            return false;
        }
        before_ = bytes_.substr(at_, begin - at_);
        const bool comment = bytes_.substr(begin, 4) == "<!--";
        const std::size_t end = bytes_.find(comment ? "-->" : ">", begin + 1);
        if (end == std::string_view::npos || (!comment && end == begin + 1)) {
            throw Damage(begin, "a tag without an end, or without a name");
        }
        tag_ = bytes_.substr(begin + 1, end - begin - 1);
        at_ = end + (comment ? 3 : 1);
        return true;
    }

    [[nodiscard]] bool in_outermost_dictionary() const {
        return open_.size() == 2 && open_[0] == "plist" && open_[1] == "dict";
    }

    void close(std::string_view name) {
        if (open_.empty() || open_.back() != name) {
            throw Damage(at_, "</" + std::string(name) + "> closes what is not open");
        }
        seen_ = seen_ || in_outermost_dictionary();
        open_.pop_back();
        if (!in_outermost_dictionary()) {
            return;
        }
        if (name == "key") {
            key_ = without_entities(before_);
            return;
        }
        if (name == "string" && key_) {
            plist_.texts.emplace(*key_, without_entities(before_));
        }
        outermost_value();
    }

    /// A key belongs to the one value behind it.
    void outermost_value() {
        if (in_outermost_dictionary()) {
            key_.reset();
        }
    }

    std::string_view bytes_;
    InfoPlist& plist_;
    std::size_t at_ = 0;
    std::string_view before_;
    std::string_view tag_;
    std::vector<std::string_view> open_;
    std::optional<std::string> key_;
    bool seen_ = false;
};

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
        PlistReader(bytes, plist).read();
    } catch (const Damage& damage) {
        plist.damage = damage;
    }
    return plist;
}

}  // namespace binary_file
