#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace handover {

/// Makes the ids by which a program finds again what it made from a scene: a number that follows from the
/// scene's name and from the way to the thing, and not from what else the scene holds.
class StableIds {
  public:
    using Key = std::uint64_t;

    /// `scene` is the scene's path, of which the name without its extension counts.
    explicit StableIds(std::string_view scene);

    /// Of the scene itself: the parent of what has no other.
    [[nodiscard]] Key root() const { return root_; }

    /// The next thing of this kind and name below `parent`. Equal ones are told apart by their order.
    Key next(Key parent, std::string_view kind, std::string_view name);

    /// "vxr-" and 16 hexadecimal digits.
    [[nodiscard]] static std::string text(Key key);

  private:
    Key root_;
    std::unordered_map<Key, std::uint64_t> made_;  ///< how many things have this parent, kind and name
};

}  // namespace handover
