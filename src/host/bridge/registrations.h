#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <optional>

#include "host/current_interface.h"

namespace bridge {

/// How many of each kind of thing the plug-in may register. Each place has functions of its own, because not
/// every callback passes back a refcon that tells two registrations apart, and the refcon that the plug-in
/// gave must arrive unchanged.
inline constexpr std::size_t kPlaces = 4;

/// What the plug-in registered, for the functions that the host got in its place.
template <typename Record>
class Registrations {
  public:
    /// A place with a copy of the record; nothing when all are taken.
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
        for (std::atomic<bool>& taken : taken_) {
            taken = false;
        }
    }
    /// The record at a place that is taken. It is written before the host learns of it, and not again.
    const Record& operator[](std::size_t place) const { return records_[place]; }

  private:
    std::array<std::atomic<bool>, kPlaces> taken_ = {};
    std::array<Record, kPlaces> records_ = {};
};

/// The classic function blocks of the plug-in's input modules.
inline Registrations<AEIO_FunctionBlock2> input_modules;

/// The current block over the classic one at this place. Each function gives the plug-in's the host's basic
/// data with the bridge's basic suite and a message function, clears the outputs and stands in for those that
/// are null, and stops exceptions; a field that is null stays null. Paths are converted. Opening, drawing and
/// disposing are those of drawing.h. The three fields that the classic block lacks ask for the host's
/// default.
AEIO_FunctionBlock4 function_block_at(std::size_t place);

}  // namespace bridge
