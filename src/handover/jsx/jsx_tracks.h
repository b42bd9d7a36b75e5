#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "handover/jsx/jsx_text.h"

namespace handover {

/// "position", as the script's runtime calls it.
[[nodiscard]] const char* jsx_name(Property property);

/// What of a track can be written: the keys whose numbers are finite and whose frames ascend.
class JsxTrack {
  public:
    explicit JsxTrack(const Track& track);

    [[nodiscard]] const Track& track() const { return track_; }
    /// A sum over what is written, the same on every machine: digits and lower-case letters.
    [[nodiscard]] const std::string& mark() const { return mark_; }
    /// Keys, or the one value, that are left out.
    [[nodiscard]] std::size_t left_out() const { return left_out_; }
    /// Nothing is written.
    [[nodiscard]] bool empty() const { return left_out_ == count_; }

    /// Writes the calls that give the track to the runtime. `before` is what was written for the same layer
    /// last.
    void write(JsxText& text, const JsxTrack* before) const;

  private:
    [[nodiscard]] bool keeps(std::size_t key) const { return left_out_ == 0 || kept_[key]; }
    [[nodiscard]] std::vector<double> kept_frames() const;
    /// Places among the keys that are written.
    [[nodiscard]] std::vector<double> kept_holds() const;

    const Track& track_;
    std::size_t count_;
    std::vector<bool> kept_;  ///< empty: all
    std::size_t left_out_ = 0;
    std::string mark_;
};

}  // namespace handover
