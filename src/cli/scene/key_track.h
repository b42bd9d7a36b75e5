#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/scene/scene_facts.h"
#include "cli/scene/warning_list.h"

namespace cli {

/// The keys of one object that have the same fault.
class FaultyKeys {
  public:
    void add(const SceneKey& key, A_long frame);

    [[nodiscard]] std::int64_t count() const { return count_; }
    /// Adds a warning at the first of them, "REASON: frames 9, 12 and 3 more", if there is any.
    void report(WarningList& warnings, ToolCode code, const std::string& reason, const std::string& effect,
                const SceneBlock& object) const;

  private:
    const SceneKey* first_ = nullptr;
    std::string frames_;  ///< the first few: "9, 12"
    std::int64_t count_ = 0;
};

/// The keys of an object as a host keeps them: by rising frame, and of one frame the one written last.
/// Without a last key that was not read to its end.
class KeyTrack {
  public:
    /// `object` outlives it.
    explicit KeyTrack(const SceneBlock& object);

    [[nodiscard]] std::size_t size() const { return count_; }
    [[nodiscard]] const tagKeyFrame& operator[](std::size_t i) const {
        return *object_.object->keys[place(i)];
    }
    [[nodiscard]] const SceneKey& written(std::size_t i) const { return object_.keys[place(i)]; }
    /// Whether there are frames between a key and the next one. Without frames, what a host does
    /// between the two is never seen.
    [[nodiscard]] bool has_frames_after(std::size_t i) const;

  private:
    [[nodiscard]] std::size_t place(std::size_t i) const { return order_.empty() ? i : order_[i]; }

    const SceneBlock& object_;
    std::size_t count_ = 0;
    std::vector<std::size_t> order_;  ///< empty when the file has this order, as most have
};

}  // namespace cli
