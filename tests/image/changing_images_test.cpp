// Images that change while they are probed or read: the result is a picture or a refusal with a reason, and
// nothing waits. Covers the format of every example, because OpenImageIO reads each with a different reader.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "image/image.h"
#include "support/changing_file.h"
#include "support/file_content.h"

namespace {

constexpr const char* kImages[] = {
#if !defined(VXR_SANITIZED)
    // OpenImageIO's PNG reader leaks a text when the file is too short, which the leak sanitizer reports.
    "square/contact.png",
#endif
    "square/haze.tga", "square/grey_card.jpg", "interlaced/lantern0017.tif", "interlaced/street.rla"};

bool is_error(const std::vector<diagnostic::Diagnostic>& diagnostics) {
    return diagnostics.size() == 1 && diagnostics.front().severity() == diagnostic::Severity::error &&
           !diagnostics.front().reason.empty();
}

void expect_both_outcomes_of(const char* image, int runs,
                             const std::function<bool(const std::string&)>& reads) {
    expect_both_outcomes(std::filesystem::path(image).filename(),
                         content_of(std::string(VXR_EXAMPLES_DIR "/") + image), runs, reads);
}

TEST(ChangingImages, AreProbedOrRefused) {
    for (const char* const image : kImages) {
        expect_both_outcomes_of(image, 4000, [](const std::string& path) {
            const image::Probe probe = image::probe(path);
            EXPECT_NE(probe.header.has_value(), probe.error.has_value());
            return probe.header.has_value();
        });
    }
}

TEST(ChangingImages, AreReadOrRefused) {
    for (const char* const image : kImages) {
        expect_both_outcomes_of(image, 300, [](const std::string& path) {
            const image::Reading reading = image::read(path);
            EXPECT_TRUE(reading.texture.has_value() || is_error(reading.diagnostics));
            return reading.texture.has_value();
        });
    }
}

}  // namespace
