#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "composition/read/read_error.h"
#include "composition/read/text_cursor.h"
#include "diagnostic/diagnostic.h"

class CComposition;
class CFileItem;
class CSceneObject;

/// Blocks that can be around a place in the file.
enum class BlockKind { composition, camera, light, null_object };

/// "composition", "camera", "light" or "null".
[[nodiscard]] const char* block_word(BlockKind kind);

/// A composition, camera, light or null of the file, and its record in the model.
struct ReadBlock {
    BlockKind kind;
    TextPosition at;                            ///< of its keyword
    const CComposition* composition = nullptr;  ///< of the kind composition
    const CSceneObject* object = nullptr;       ///< of every other kind
    TextPosition name_at = {};                  ///< of the opening quote, once the name has been read

    /// As the model has it; empty until it has been read.
    [[nodiscard]] std::string_view name() const;
};

enum class ValueKind { integer, real, word };

/// A value after a keyword.
struct ReadValue {
    std::string_view keyword;  ///< "FPS", "KEY", "SHADOW" ...
    TextPosition keyword_at;
    int index;  ///< from 0; 7 is the field of view of a camera's KEY, 8 its target distance
    ValueKind kind;
    std::string_view text;          ///< as written
    std::optional<double> written;  ///< what the text says, if all of it is one number
    double kept;                    ///< what the model has; 0 for a word
    TextPosition at;
};

/// A footage entry, in a composition or at the top level.
struct ReadFootage {
    const CFileItem& file;  ///< its record in the model; `path` is null when it could not be read
    bool top_level;
    TextPosition at;                       ///< of FILE or FSEQ
    TextPosition path_at;                  ///< of the opening quote, or where reading the path began
    std::string_view written;              ///< the path between the quotes; empty when there is none
    bool opens_as_written;                 ///< false: the path in the model is beside the composition file
    std::optional<ReadErrorCode> problem;  ///< why the path could not be read; fatal except at the top level
};

/// Is told what is read where, and why reading failed. Has no influence on what is read; the plug-in has
/// none. One observer follows one file. Texts are valid only during the call and hold any bytes except NUL.
/// Every event does nothing unless overridden.
class ReadObserver {
  public:
    ReadObserver() = default;
    virtual ~ReadObserver() = default;
    ReadObserver(const ReadObserver&) = delete;
    ReadObserver& operator=(const ReadObserver&) = delete;

    /// Reading stopped: why, where (without the file's name) and inside which blocks. Called at most once, as
    /// the last event.
    virtual void on_failure(const diagnostic::Diagnostic& /*error*/) {}
    /// A keyword of the settings or of an object's block, before its values: FPS, LOCAL, KEY ...
    virtual void on_keyword(std::string_view /*keyword*/, const TextPosition& /*at*/) {}
    /// A value of that keyword, after conversion and before the check of its range.
    virtual void on_value(const ReadValue& /*value*/) {}
    /// Whether this observer takes a KEY as a whole where all its numbers are plain (PlainKey). Reading is
    /// then several times faster.
    [[nodiscard]] virtual bool takes_plain_keys() const { return false; }
    /// Such a KEY, for observers that take them, instead of on_keyword and on_value. Other keys come with
    /// those.
    virtual void on_plain_key(const TextPosition& /*at*/, std::int32_t /*frame*/,
                              std::span<const float> /*others*/) {}
    /// A block whose name has just been read. It is the last of blocks().
    virtual void on_block_begin(const ReadBlock& /*block*/) {}
    /// The end of a block: its closing brace, or the token after the name of a composition without a block.
    virtual void on_block_end(const ReadBlock& /*block*/, const TextPosition& /*at*/) {}
    /// A footage entry, including one at the top level whose path could not be read.
    virtual void on_footage(const ReadFootage& /*footage*/) {}
    /// A token that the reader skips: an unknown word in a composition, or the token in place of a
    /// composition's brace. `text` is empty for a token that could not be finished.
    virtual void on_ignored(std::string_view /*text*/, const TextPosition& /*at*/) {}
    /// The file was read successfully up to `at`. `at_end_of_file` is false when ignored text follows there.
    virtual void on_end(const TextPosition& /*at*/, bool /*at_end_of_file*/) {}

    /// The blocks around the current place, outermost first.
    [[nodiscard]] const std::vector<ReadBlock>& blocks() const { return blocks_; }

    // For the grammar readers.
    /// Reports the failure and forgets the blocks, whose records may go before the observer does.
    void fail(const diagnostic::Diagnostic& error);
    void enter_block(const ReadBlock& block);
    void name_block(const TextPosition& at);
    void leave_block(const TextPosition& at);

  private:
    std::vector<ReadBlock> blocks_;
};
