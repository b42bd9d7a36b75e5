#include "render/square_pixels.h"

#include <algorithm>
#include <cmath>

#include "render/compositing.h"

namespace render {

std::int64_t SquarePixels::width(std::int64_t width_px, double aspect) {
    return std::max<std::int64_t>(1, std::llround(static_cast<double>(width_px) * aspect));
}

SquarePixels::SquarePixels(std::int64_t width_px, double aspect) : width_px_(width(width_px, aspect)) {
    if (width_px_ == width_px) {
        return;
    }
    const double last = static_cast<double>(width_px) - 1;
    const double step = static_cast<double>(width_px) / static_cast<double>(width_px_);
    for (std::int64_t x = 0; x < width_px_; ++x) {
        Span span;
        span.weights = weights_.size();
        if (step < 1) {
            const double centre = std::clamp((static_cast<double>(x) + 0.5) * step - 0.5, 0.0, last);
            const double left = std::min(std::floor(centre), std::max(last - 1, 0.0));
            span.first = static_cast<std::size_t>(left);
            weights_.push_back(static_cast<float>(1 - (centre - left)));
            if (last > 0) {
                weights_.push_back(static_cast<float>(centre - left));
            }
        } else {
            const double begin = static_cast<double>(x) * step;
            const double end = std::min(begin + step, last + 1);
            span.first = static_cast<std::size_t>(std::min(std::floor(begin), last));
            for (double pixel = std::floor(begin); pixel < end && pixel <= last; ++pixel) {
                const double covered = std::min(end, pixel + 1) - std::max(begin, pixel);
                weights_.push_back(static_cast<float>(covered / step));
            }
        }
        span.count = weights_.size() - span.weights;
        spans_.push_back(span);
    }
}

void SquarePixels::stretch(const float* row, float* stretched) const {
    for (const Span& span : spans_) {
        const float* pixel = row + span.first * kChannels;
        std::fill_n(stretched, kChannels, 0.0F);
        for (std::size_t i = 0; i < span.count; ++i, pixel += kChannels) {
            for (std::size_t channel = 0; channel < kChannels; ++channel) {
                stretched[channel] += weights_[span.weights + i] * pixel[channel];
            }
        }
        stretched += kChannels;
    }
}

}  // namespace render
