#pragma once

// What a composition file says and its model does not keep: places, and values as they were written. Points
// to the records of the model for everything else.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "composition/model/composition.h"
#include "composition/model/scene_object.h"
#include "composition/read/read_observer.h"
#include "composition/read/text_cursor.h"
#include "diagnostic/diagnostic.h"

namespace cli {

/// A value as it was written.
struct SceneValue {
    std::string text;
    TextPosition at;
};

/// A keyword with its values.
struct SceneKeyword {
    std::string word;
    TextPosition at;
    std::vector<SceneValue> values;
};

/// Where a keyframe is written. Files have millions of them, and less than 2 GiB, so places fit into 32 bits.
struct SceneKey {
    SceneKey(const TextPosition& at, int numbers)
        : offset_bytes(static_cast<std::int32_t>(at.offset_bytes)),
          line(static_cast<std::int32_t>(at.line)),
          column(static_cast<std::int32_t>(at.column)),
          numbers_read(numbers) {}

    /// Of KEY.
    [[nodiscard]] TextPosition at() const { return {offset_bytes, line, column}; }

    std::int32_t offset_bytes;
    std::int32_t line;
    std::int32_t column;
    std::int32_t numbers_read;  ///< all of its numbers, unless reading stopped at this key
};

/// Numbers after one keyword of one block that are not kept as they were written.
struct SceneChange {
    std::string keyword;
    SceneValue first;
    int index = 0;                  ///< of the first, among the numbers after its keyword; from 0
    std::optional<double> written;  ///< what the first says, if all of it is one number
    double kept = 0;                ///< of the first
    std::int64_t count = 0;
    std::vector<std::string> within;
};

/// A composition, camera, light or null.
struct SceneBlock {
    BlockKind kind = BlockKind::composition;
    const CComposition* composition = nullptr;  ///< its record, if it is a composition
    const CSceneObject* object = nullptr;       ///< its record, if it is anything else
    TextPosition name_at;
    std::vector<std::string> within;    ///< the blocks around it, ending with itself
    std::vector<SceneKeyword> entries;  ///< of a light: the last one of each word
    std::vector<SceneKey> keys;         ///< in file order, as in the record
};

/// A footage entry.
struct SceneFootage {
    const CFileItem* file = nullptr;  ///< its record
    bool top_level = false;
    TextPosition path_at;
    std::string written;
    bool opens_as_written = false;
    std::optional<ReadErrorCode> problem;  ///< why no path could be read
    std::vector<std::string> within;
};

/// A token that is skipped.
struct ScenePassed {
    std::string text;
    TextPosition at;
    std::vector<std::string> within;
};

/// Everything that a warning can be about, beside the model.
struct SceneFacts {
    std::vector<SceneKeyword> settings;  ///< the last one of each word
    std::vector<SceneChange> changes;
    std::vector<SceneBlock> compositions;
    std::vector<SceneBlock> objects;  ///< cameras, lights and nulls in file order
    std::vector<SceneFootage> footage;
    std::vector<ScenePassed> passed;
    std::optional<TextPosition> ignored_from;     ///< where the text begins that is not read
    std::optional<diagnostic::Diagnostic> error;  ///< why reading stopped
};

/// Collects the facts while a file is read into a model that outlives them.
class SceneObserver : public ReadObserver {
  public:
    explicit SceneObserver(SceneFacts& facts) : facts_(facts) {}

    void on_failure(const diagnostic::Diagnostic& error) override;
    void on_keyword(std::string_view keyword, const TextPosition& at) override;
    void on_value(const ReadValue& value) override;
    /// Plain numbers are always kept as written: of such a key only the place is of interest.
    [[nodiscard]] bool takes_plain_keys() const override { return true; }
    void on_plain_key(const TextPosition& at, std::int32_t frame, std::span<const float> others) override;
    void on_block_begin(const ReadBlock& block) override;
    void on_footage(const ReadFootage& footage) override;
    void on_ignored(std::string_view text, const TextPosition& at) override;
    void on_end(const TextPosition& at, bool at_end_of_file) override;

  private:
    [[nodiscard]] bool in_object() const;
    std::vector<SceneKeyword>& keywords();
    void note_change(const ReadValue& value);

    SceneFacts& facts_;
    std::size_t own_changes_ = 0;  ///< index of the first change in the settings or block being read
};

/// The last occurrence of a setting or of a light's entry; null when there was none.
const SceneKeyword* find_keyword(const std::vector<SceneKeyword>& keywords, std::string_view word);

/// `composition "Main"`
std::string block_label(const ReadBlock& block);

/// The number of keys that have both a place and a record. The last one may lack its record if memory ran
/// out.
std::size_t key_count(const SceneBlock& object);

}  // namespace cli
