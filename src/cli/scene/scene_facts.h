#pragma once

// What a composition file says, with the places where it says it: everything that a warning can be about.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "composition/read/read_error.h"
#include "composition/read/read_observer.h"
#include "composition/read/text_cursor.h"

namespace cli {

/// A value as it was written, and what was kept of it.
struct SceneValue {
    std::string text;
    double kept = 0;  ///< 0 for a word
    TextPosition at;
};

/// A keyword with its values.
struct SceneKeyword {
    std::string word;
    TextPosition at;
    std::vector<SceneValue> values;
};

/// A keyframe. Files have millions, and less than 2 GiB, so that places in them fit into 32 bits.
struct SceneKey {
    explicit SceneKey(const TextPosition& at)
        : offset_bytes(static_cast<std::int32_t>(at.offset_bytes)),
          line(static_cast<std::int32_t>(at.line)),
          column(static_cast<std::int32_t>(at.column)) {}

    /// Of KEY.
    [[nodiscard]] TextPosition at() const { return {offset_bytes, line, column}; }

    std::int32_t frame = 0;
    std::int32_t offset_bytes;
    std::int32_t line;
    std::int32_t column;
    std::optional<float> field_of_view;  ///< degrees; cameras only
};

/// Numbers behind one keyword of one block that are not kept as they were written.
struct SceneChange {
    std::string keyword;
    SceneValue first;
    std::int64_t count = 0;
    std::vector<std::string> within;
};

/// A composition, camera, light or null.
struct SceneBlock {
    BlockKind kind = BlockKind::composition;
    std::string name;
    TextPosition name_at;
    std::vector<std::string> within;    ///< the blocks around it, itself the last
    std::vector<SceneKeyword> entries;  ///< of a light: the last one of each word
    std::vector<SceneKey> keys;         ///< in file order
};

/// A footage entry.
struct SceneFootage {
    bool is_sequence = false;
    bool top_level = false;
    TextPosition path_at;
    std::string written;
    std::optional<std::string> resolved;  ///< the path that counts; none when none could be read
    bool opens_as_written = false;
    std::optional<ReadErrorCode> problem;  ///< why no path could be read
    std::vector<std::string> within;
};

/// A token that was passed over.
struct ScenePassed {
    std::string text;
    TextPosition at;
    std::vector<std::string> within;
};

struct SceneFacts {
    std::vector<SceneKeyword> settings;  ///< the last one of each word
    std::vector<SceneChange> changes;
    std::vector<SceneBlock> compositions;
    std::vector<SceneBlock> objects;  ///< cameras, lights and nulls in file order
    std::vector<SceneFootage> footage;
    std::vector<ScenePassed> passed;
    std::optional<TextPosition> ignored_from;     ///< where text begins that is not read any more
    std::optional<diagnostic::Diagnostic> error;  ///< why reading stopped
};

/// Collects the facts while a file is read.
class SceneObserver : public ReadObserver {
  public:
    explicit SceneObserver(SceneFacts& facts) : facts_(facts) {}

    void on_failure(const diagnostic::Diagnostic& error) override;
    void on_keyword(std::string_view keyword, const TextPosition& at) override;
    void on_value(const ReadValue& value) override;
    /// Plain numbers are all kept as written, so of such a key there is nothing to say but what it says.
    [[nodiscard]] bool takes_plain_keys() const override { return true; }
    void on_plain_key(const TextPosition& at, std::int32_t frame, std::span<const float> others) override;
    void on_block_begin(const ReadBlock& block) override;
    void on_footage(const ReadFootage& footage) override;
    void on_ignored(std::string_view text, const TextPosition& at) override;
    void on_end(const TextPosition& at, bool at_end_of_file) override;

  private:
    [[nodiscard]] bool in_object() const;
    std::vector<SceneKeyword>& keywords();
    void take_key_value(const ReadValue& value);
    void note_change(const ReadValue& value);

    SceneFacts& facts_;
    std::size_t own_changes_ = 0;  ///< where the changes of the settings or of the block being read begin
};

/// The last occurrence of a setting or of a light's entry; null when there was none.
const SceneKeyword* find_keyword(const std::vector<SceneKeyword>& keywords, std::string_view word);

/// `composition "Main"`
std::string block_label(const ReadBlock& block);

}  // namespace cli
