#include "cli/scene/scene_facts.h"

#include <algorithm>
#include <utility>

#include "cli/scene/written_number.h"

namespace cli {
namespace {

// Enough to recognise a name, and more blocks than anyone nests by hand: the facts about a file must not grow
// with the square of its size.
constexpr std::size_t kKeptNameBytes = 60;
constexpr std::size_t kBlocksAround = 8;

std::vector<std::string> labels_of(const std::vector<ReadBlock>& blocks) {
    std::vector<std::string> labels;
    const std::size_t left_out = blocks.size() > kBlocksAround ? blocks.size() - kBlocksAround : 0;
    if (left_out > 0) {
        labels.push_back(std::to_string(left_out) + " more compositions");
    }
    std::transform(blocks.begin() + static_cast<std::ptrdiff_t>(left_out), blocks.end(),
                   std::back_inserter(labels), block_label);
    return labels;
}

}  // namespace

std::string block_label(const ReadBlock& block) {
    std::string label = block_word(block.kind);
    const std::string_view name = block.name();
    if (name.size() > kKeptNameBytes) {
        return label + " \"" + std::string(name.substr(0, kKeptNameBytes)) + "...\"";
    }
    return name.empty() ? label : label + " \"" + std::string(name) + '"';
}

std::size_t key_count(const SceneBlock& object) {
    return std::min(object.keys.size(), static_cast<std::size_t>(object.object->keyCount));
}

const SceneKeyword* find_keyword(const std::vector<SceneKeyword>& keywords, std::string_view word) {
    const auto found = std::find_if(keywords.begin(), keywords.end(),
                                    [&](const SceneKeyword& keyword) { return keyword.word == word; });
    return found == keywords.end() ? nullptr : &*found;
}

void SceneObserver::on_failure(const diagnostic::Diagnostic& error) {
    facts_.error = error;
}

void SceneObserver::on_keyword(std::string_view keyword, const TextPosition& at) {
    if (keyword == "KEY") {
        facts_.objects.back().keys.emplace_back(at, 0);
        return;
    }
    // The last one wins, so an earlier one no longer matters.
    std::vector<SceneKeyword>& list = keywords();
    std::erase_if(list, [&](const SceneKeyword& one) { return one.word == keyword; });
    list.push_back({std::string(keyword), at, {}});
    const auto own = facts_.changes.begin() + static_cast<std::ptrdiff_t>(own_changes_);
    facts_.changes.erase(std::remove_if(own, facts_.changes.end(),
                                        [&](const SceneChange& one) { return one.keyword == keyword; }),
                         facts_.changes.end());
}

void SceneObserver::on_value(const ReadValue& value) {
    if (value.keyword == "KEY") {
        facts_.objects.back().keys.back().numbers_read = value.index + 1;
    } else {
        keywords().back().values.push_back({std::string(value.text), value.at});
    }
    if (value.kind != ValueKind::word &&
        !is_kept_as_written(value.written, value.kept, value.kind == ValueKind::integer)) {
        note_change(value);
    }
}

void SceneObserver::on_plain_key(const TextPosition& at, std::int32_t /*frame*/,
                                 std::span<const float> others) {
    facts_.objects.back().keys.emplace_back(at, static_cast<int>(others.size()) + 1);
}

void SceneObserver::note_change(const ReadValue& value) {
    const auto same =
        std::find_if(facts_.changes.begin() + static_cast<std::ptrdiff_t>(own_changes_), facts_.changes.end(),
                     [&](const SceneChange& one) { return one.keyword == value.keyword; });
    if (same != facts_.changes.end()) {
        ++same->count;
        return;
    }
    facts_.changes.push_back({std::string(value.keyword),
                              {std::string(value.text), value.at},
                              value.index,
                              value.written,
                              value.kept,
                              1,
                              labels_of(blocks())});
}

void SceneObserver::on_block_begin(const ReadBlock& block) {
    std::vector<SceneBlock>& list =
        block.kind == BlockKind::composition ? facts_.compositions : facts_.objects;
    list.push_back({block.kind, block.composition, block.object, block.name_at, labels_of(blocks()), {}, {}});
    own_changes_ = facts_.changes.size();
}

void SceneObserver::on_footage(const ReadFootage& footage) {
    SceneFootage kept;
    kept.file = &footage.file;
    kept.top_level = footage.top_level;
    kept.path_at = footage.path_at;
    kept.written = footage.written;
    kept.opens_as_written = footage.opens_as_written;
    kept.problem = footage.problem;
    kept.within = labels_of(blocks());
    facts_.footage.push_back(std::move(kept));
}

void SceneObserver::on_ignored(std::string_view text, const TextPosition& at) {
    facts_.passed.push_back({std::string(text.substr(0, kKeptNameBytes)), at, labels_of(blocks())});
}

void SceneObserver::on_end(const TextPosition& at, bool at_end_of_file) {
    if (!at_end_of_file) {
        facts_.ignored_from = at;
    }
}

bool SceneObserver::in_object() const {
    return !blocks().empty() && blocks().back().kind != BlockKind::composition;
}

std::vector<SceneKeyword>& SceneObserver::keywords() {
    return in_object() ? facts_.objects.back().entries : facts_.settings;
}

}  // namespace cli
