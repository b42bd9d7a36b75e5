#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <optional>

namespace bridge {

/// How many of each kind of thing the plug-in may register. Each place has functions of its own, because
/// not every callback gives back a refcon by which to tell two registrations apart, and what the plug-in gave
/// as one must arrive unchanged.
inline constexpr std::size_t kPlaces = 4;

/// What the plug-in registered, for the functions that the host got in its place.
template <typename Record>
class Registrations {
  public:
    /// A place with a copy of the record; none when all are taken.
    std::optional<std::size_t> claim(const Record& record) {
        for (std::size_t place = 0; place < kPlaces; ++place) {
            if (!taken_[place].exchange(true)) {
                records_[place] = record;
                return place;
            }
        }
        return std::nullopt;
    }
    /// After the host has refused the registration.
    void give_back(std::size_t place) { taken_[place] = false; }
    void give_back_all() {
        for (std::atomic<bool>& taken : taken_)
            taken = false;
    }
    /// Of a place that is taken; written before the host hears of it, and not again.
    const Record& operator[](std::size_t place) const { return records_[place]; }

  private:
    std::array<std::atomic<bool>, kPlaces> taken_ = {};
    std::array<Record, kPlaces> records_ = {};
};

}  // namespace bridge
