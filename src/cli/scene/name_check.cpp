#include <algorithm>
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "cli/scene/scene_check.h"
#include "host/byte_encoding.h"
#include "text/utf8.h"

namespace cli {
namespace {

constexpr std::size_t kNameBytes = 31;  // the longest name that a classic host keeps

std::string_view name_of(const SceneBlock& block) {
    return block.kind == BlockKind::composition ? block.composition->name : block.object->name;
}

void check_name(const SceneBlock& block, WarningList& warnings) {
    const std::string_view name = name_of(block);
    if (name.size() > kNameBytes) {
        warnings.add(ToolCode::name_cut, block.name_at,
                     "the name has " + std::to_string(name.size()) + " bytes; classic hosts keep \"" +
                         truncated_name(name) + '"',
                     {});
    }
    if (!text::is_utf8(name)) {
        const std::string windows = utf8_from_name(name, ByteEncoding::windows_1252);
        const std::string macintosh = utf8_from_name(name, ByteEncoding::mac_roman);
        Diagnostic& warning =
            warnings.add(ToolCode::name_not_utf8, block.name_at,
                         "the name is not UTF-8; After Effects shows \"" + windows + '"', {});
        if (macintosh != windows) {
            warning.effects.push_back("if the scene comes from a Mac, \"" + macintosh +
                                      "\" is meant; write the name in UTF-8");
        }
    }
}

// A name as a host keeps it, and the block that has it.
struct KeptName {
    std::string_view kept;
    const SceneBlock* block;
};

// Brings equal names together, in the order of the file among themselves.
void sort_by_name(std::vector<KeptName>& names) {
    std::stable_sort(names.begin(), names.end(),
                     [](const KeptName& a, const KeptName& b) { return a.kept < b.kept; });
}

// Calls `group(first, last)` for each run of two and more equal names.
template <typename Group>
void for_equal_names(const std::vector<KeptName>& names, const Group& group) {
    for (auto first = names.begin(); first != names.end();) {
        const auto last =
            std::find_if(first, names.end(), [&](const KeptName& one) { return one.kept != first->kept; });
        if (last - first > 1) {
            group(first, last);
        }
        first = last;
    }
}

// Enough to recognise a name.
std::string shown_name(std::string_view name) {
    constexpr std::size_t kShownBytes = 60;
    return '"' + std::string(name.substr(0, kShownBytes)) + (name.size() > kShownBytes ? "...\"" : "\"");
}

// What current hosts get: all of a name, in UTF-8.
void check_repeated(const std::vector<SceneBlock>& blocks, const std::string& what, WarningList& warnings) {
    std::vector<KeptName> names;
    std::deque<std::string> translated;  // never moves its elements
    for (const SceneBlock& block : blocks) {
        const std::string_view name = name_of(block);
        names.push_back({text::is_utf8(name) ? name
                                             : std::string_view(translated.emplace_back(
                                                   utf8_from_name(name, ByteEncoding::windows_1252))),
                         &block});
    }
    sort_by_name(names);
    for_equal_names(names, [&](auto first, auto last) {
        const bool as_written =
            std::all_of(first, last, [&](const KeptName& one) { return name_of(*one.block) == first->kept; });
        Diagnostic& note = warnings.add(
            ToolCode::name_repeated, (first + 1)->block->name_at,
            std::to_string(last - first) + ' ' + what + " have the name " + shown_name(first->kept) +
                (as_written ? "" : " once those that are not UTF-8 are read as Windows-1252"),
            {});
        note.count = last - first;
    });
}

// What classic hosts keep of names that are not equal as they are written.
void check_cut(const std::vector<SceneBlock>& blocks, WarningList& warnings) {
    std::vector<KeptName> names;
    names.reserve(blocks.size());
    for (const SceneBlock& block : blocks) {
        names.push_back({name_of(block).substr(0, kNameBytes), &block});
    }
    sort_by_name(names);
    for_equal_names(names, [&](auto first, auto last) {
        const auto other = std::find_if(first + 1, last, [&](const KeptName& one) {
            return name_of(*one.block) != name_of(*first->block);
        });
        if (other != last) {
            warnings
                .add(ToolCode::name_equal_after_cut, other->block->name_at,
                     "classic hosts keep \"" + std::string(other->kept) + "\" of this name and of " +
                         shown_name(name_of(*first->block)),
                     {})
                .count = last - first;
        }
    });
}

}  // namespace

std::string truncated_name(std::string_view name) {
    return std::string(name.substr(0, kNameBytes));
}

void check_names(const SceneReading& reading, WarningList& warnings) {
    const SceneFacts& facts = reading.facts;
    for (const auto* const list : {&facts.compositions, &facts.objects}) {
        for (const SceneBlock& block : *list) {
            check_name(block, warnings);
        }
        check_cut(*list, warnings);
    }
    check_repeated(facts.compositions, "compositions", warnings);
    check_repeated(facts.objects, "cameras, lights and nulls", warnings);
}

}  // namespace cli
