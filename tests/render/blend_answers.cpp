// Answers blend_test.py: reads one case a line, and writes what compositing makes of it.
//
//   BLEND COVERAGE MATTE  r g b a of the layer  r g b a of what is below, straight
//   red, green, blue, coverage of the row  r g b a as bytes

#include <cstdio>
#include <iostream>
#include <string>

#include "render/compositing.h"
#include "render/pixel_rows.h"

namespace {

render::Blend blend_of(const std::string& word) {
    return word == "ADD" ? render::Blend::add
                         : (word == "MUL" ? render::Blend::multiply : render::Blend::normal);
}

render::Coverage coverage_of(const std::string& word) {
    return word == "straight"
               ? render::Coverage::straight
               : (word == "premultiplied" ? render::Coverage::premultiplied : render::Coverage::full);
}

}  // namespace

int main(int argc, char** argv) {
    const render::Light light =
        argc > 1 && std::string(argv[1]) == "linear" ? render::Light::linear : render::Light::as_stored;
    const render::RowReader straight({render::Coverage::straight, false, {}, light});
    const render::RowWriter writer(light);
    std::string blend;
    std::string coverage;
    int matte = 0;
    while (std::cin >> blend >> coverage >> matte) {
        std::uint8_t bytes[2][4];
        for (auto& pixel : bytes) {
            for (std::uint8_t& byte : pixel) {
                int value = 0;
                std::cin >> value;
                byte = static_cast<std::uint8_t>(value);
            }
        }
        const auto shade = static_cast<std::uint8_t>(matte);
        const render::RowReader reader({coverage_of(coverage), false, {shade, shade, shade}, light});
        float layer[4];
        float below[4];
        reader.read(bytes[0], layer, 1);
        straight.read(bytes[1], below, 1);
        render::composite_row(blend_of(blend), layer, below, 1);
        std::uint8_t result[4];
        writer.write(below, result, 1);
        std::printf("%.9g %.9g %.9g %.9g %d %d %d %d\n", below[0], below[1], below[2], below[3], result[0],
                    result[1], result[2], result[3]);
    }
}
