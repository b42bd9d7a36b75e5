#include "render/footage_pictures.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <new>

#include "image/image.h"
#include "limit/limits.h"
#include "render/code.h"
#include "render/colour_bars.h"
#include "render/parallel.h"
#include "text/ascii.h"
#include "text/plain_number.h"
#include "text/printable.h"

namespace render {
namespace {

constexpr std::int32_t kLargestBars_px = 4096;  // a side
/// Pictures with more pixels are decoded one at a time: 4K.
constexpr std::int64_t kLargePicture_px = std::int64_t{4096} * 2304;

}  // namespace

PictureReading read_picture(const std::string& file, bool& too_large) {
    static std::mutex one_large;
    const image::Probe probe = image::probe(file);
    if (!probe.header) {
        return {std::nullopt, probe.error->reason};
    }
    const std::int64_t pixels = std::int64_t{probe.header->width_px} * probe.header->height_px;
    too_large = pixels > limits::kPreviewPixels;
    if (too_large) {
        return {std::nullopt, "it has " + text::size_text(probe.header->width_px, probe.header->height_px) +
                                  " pixels, and a preview reads pictures of at most " +
                                  std::to_string(limits::kPreviewPixels)};
    }
    std::unique_lock<std::mutex> alone(one_large, std::defer_lock);
    if (pixels * std::max(probe.header->channels, 4) > 4 * kLargePicture_px) {
        alone.lock();
    }
    const image::Reading reading = image::read(file);
    if (!reading.texture) {
        return {std::nullopt,
                reading.diagnostics.empty() ? "it cannot be read" : reading.diagnostics.front().reason};
    }
    // Another file may be there by now.
    if (reading.texture->width_px != probe.header->width_px ||
        reading.texture->height_px != probe.header->height_px) {
        return {std::nullopt, "it was changed while it was read"};
    }
    // What the header does not call alpha is an extra channel.
    const bool has_alpha = probe.header->has_alpha && !reading.texture->alphas.empty();
    return {picture_of(*reading.texture, has_alpha ? &reading.texture->alphas.front().values : nullptr), {}};
}

FootagePictures::FootagePictures(const embedded::Project& project, ModulePictures module_pictures,
                                 std::size_t most_bytes)
    : project_(project), module_pictures_(std::move(module_pictures)), most_bytes_(most_bytes) {}

FootagePictures::Made FootagePictures::make(const Wanted& wanted) const {
    const embedded::Footage& footage = project_.footage_of(wanted.first);
    const std::int32_t width_px = std::clamp(footage.width, 1, kLargestBars_px);
    const std::int32_t height_px = std::clamp(footage.height, 1, kLargestBars_px);
    const auto bars = [&](Code code, const std::string& name, const std::string& note,
                          std::string reason) -> Made {
        return {std::make_shared<const Picture>(colour_bars(width_px, height_px, name, note)),
                diagnostic::make(code, {wanted.second}, std::move(reason))};
    };
    if (footage.kind == embedded::FootageKind::placeholder) {
        return bars(Code::placeholder_shown, footage.name, "is missing",
                    text::quoted(footage.name) + " is missing");
    }
    const bool from_module = footage.kind == embedded::FootageKind::module_file;
    bool too_large = std::int64_t{footage.width} * footage.height > limits::kPreviewPixels && from_module;
    PictureReading reading;
    try {
        reading = from_module ? (too_large ? PictureReading{std::nullopt, "it has too many pixels"}
                                           : module_pictures_(footage))
                              : read_picture(wanted.second, too_large);
    } catch (const std::bad_alloc&) {
        reading.error = "there is not enough memory for it";
    }
    if (reading.picture) {
        return {std::make_shared<const Picture>(std::move(*reading.picture)), std::nullopt};
    }
    return too_large ? bars(Code::picture_too_large, std::string(text::last_component(wanted.second, "/\\")),
                            "is too large", reading.error)
                     : bars(Code::picture_unreadable, std::string(text::last_component(wanted.second, "/\\")),
                            "cannot be read", reading.error);
}

std::vector<SharedPicture> FootagePictures::get(const std::vector<Wanted>& wanted, std::size_t threads,
                                                std::size_t most_bytes,
                                                std::vector<diagnostic::Diagnostic>& findings) {
    std::map<Wanted, SharedPicture> found;
    std::vector<SharedPicture> pictures;
    std::size_t bytes = 0;
    // A few at a time: how large they are is known only when they have been read.
    for (std::size_t begin = 0; begin < wanted.size() && (begin == 0 || bytes < most_bytes);) {
        const std::size_t end = std::min(begin + threads, wanted.size());
        find(wanted, begin, end, threads, found, findings);
        for (; begin < end; ++begin) {
            pictures.push_back(found.at(wanted[begin]));
        }
        bytes = 0;
        for (const auto& [key, picture] : found) {
            bytes += picture->bytes.size();
        }
    }
    return pictures;
}

void FootagePictures::find(const std::vector<Wanted>& wanted, std::size_t begin, std::size_t end,
                           std::size_t threads, std::map<Wanted, SharedPicture>& found,
                           std::vector<diagnostic::Diagnostic>& findings) {
    std::vector<Wanted> missing;
    for (std::size_t i = begin; i < end; ++i) {
        const Wanted& one = wanted[i];
        if (!found.emplace(one, nullptr).second) {
            continue;
        }
        if (const auto kept = by_key_.find(one); kept != by_key_.end()) {
            kept_.splice(kept_.begin(), kept_, kept->second);
            found[one] = kept->second->picture;
        } else {
            missing.push_back(one);
        }
    }
    std::vector<Made> made(missing.size());
    // Modules draw on this thread, while no other reads.
    const auto by_module = [this](const Wanted& one) {
        return project_.footage_of(one.first).kind == embedded::FootageKind::module_file;
    };
    for (std::size_t i = 0; i < missing.size(); ++i) {
        if (by_module(missing[i])) {
            made[i] = make(missing[i]);
        }
    }
    for_each_index(missing.size(), threads, [&](std::size_t i, std::size_t /*thread*/) {
        if (!by_module(missing[i])) {
            made[i] = make(missing[i]);
        }
    });
    for (std::size_t i = 0; i < missing.size(); ++i) {
        if (made[i].finding && told_.insert(missing[i]).second) {
            findings.push_back(std::move(*made[i].finding));
        }
        found[missing[i]] = made[i].picture;
        keep(missing[i], made[i].picture);
    }
}

void FootagePictures::keep(const Wanted& key, SharedPicture picture) {
    const std::size_t bytes = picture->bytes.size();
    if (bytes > most_bytes_) {
        return;
    }
    kept_.push_front({key, std::move(picture)});
    by_key_[key] = kept_.begin();
    bytes_ += bytes;
    while (bytes_ > most_bytes_) {
        bytes_ -= kept_.back().picture->bytes.size();
        by_key_.erase(kept_.back().key);
        kept_.pop_back();
    }
}

}  // namespace render
