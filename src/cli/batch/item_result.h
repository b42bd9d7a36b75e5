#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/exit_codes.h"

namespace cli {

/// What became of an item.
enum class ItemStanding {
    fine,
    incomplete,  ///< footage is missing
    different,
    refused,
    failed,     ///< could not read or write
    misused,    ///< the options are wrong
    crashed,    ///< a signal ended it, or an exit code that no verb has
    too_long,   ///< ended after its time
    too_large,  ///< ended because of its memory
    not_done,
};
inline constexpr std::size_t kItemStandings = 10;

/// The word for programs and people: "fine", "not-done".
[[nodiscard]] const char* label(ItemStanding standing);
/// What it means for the exit code of all.
[[nodiscard]] ExitCode exit_code_of(ItemStanding standing);

/// What an input looks like from outside. Equal states mean equal content, on every machine.
struct InputState {
    std::uint64_t size_bytes = 0;
    std::int64_t changed_ns = 0;  ///< as the file system counts
    std::string number;           ///< by which the file system knows the file

    friend bool operator==(const InputState&, const InputState&) = default;
};

/// What one process did with an item. The same work gives the same result, whoever did it, and when.
struct ItemResult {
    std::string key;                  ///< of the version, the words and the input
    std::string input_sha256;         ///< empty if it could not be read
    std::optional<InputState> state;  ///< nothing if the content may change without the state
    ItemStanding standing = ItemStanding::not_done;
    std::optional<int> exit_code;
    std::string signal;  ///< what ended it instead: "SIGSEGV, Segmentation fault"
    bool wrote = false;  ///< the output was there at the end
    bool has_log = false;
    std::string out;  ///< its standard output
};

/// What a result must have as its key to be of this version, these words and this input.
[[nodiscard]] std::string item_key(const std::string& version, const std::vector<std::string>& words,
                                   const std::string& input_sha256);

/// One JSON document, and back; nothing for anything else, such as a file that was not written completely.
[[nodiscard]] std::string item_result_text(const ItemResult& result);
[[nodiscard]] std::optional<ItemResult> parse_item_result(std::string_view text);

}  // namespace cli
