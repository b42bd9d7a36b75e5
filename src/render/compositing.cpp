#include "render/compositing.h"

#include <algorithm>

namespace render {
namespace {

// All three are written for colours that are already multiplied, S = as cs and C = ab cb, so no pixel is
// divided: as ab min(1, cs + cb) is min(as ab, ab S + as C).

struct Normal {
    static float colour(float layer, float /*layer_coverage*/, float below, float /*below_coverage*/,
                        float uncovered) {
        return layer + uncovered * below;
    }
};

struct Add {
    static float colour(float layer, float layer_coverage, float below, float below_coverage,
                        float uncovered) {
        const float both =
            std::min(layer_coverage * below_coverage, below_coverage * layer + layer_coverage * below);
        return both + (1.0F - below_coverage) * layer + uncovered * below;
    }
};

struct Multiply {
    static float colour(float layer, float /*layer_coverage*/, float below, float below_coverage,
                        float uncovered) {
        return layer * below + (1.0F - below_coverage) * layer + uncovered * below;
    }
};

template <class Mode>
void composite(const float* layer, float* below, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i, layer += kChannels, below += kChannels) {
        const float layer_coverage = layer[3];
        const float below_coverage = below[3];
        const float uncovered = 1.0F - layer_coverage;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            below[channel] =
                Mode::colour(layer[channel], layer_coverage, below[channel], below_coverage, uncovered);
        }
        below[3] = layer_coverage + uncovered * below_coverage;
    }
}

}  // namespace

void composite_row(Blend blend, const float* layer, float* below, std::size_t pixels) {
    switch (blend) {
        case Blend::normal:
            return composite<Normal>(layer, below, pixels);
        case Blend::add:
            return composite<Add>(layer, below, pixels);
        case Blend::multiply:
            return composite<Multiply>(layer, below, pixels);
    }
}

}  // namespace render
