// Footage from real files, written with the image library that the host reads them with.

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include "embedded/bundle_side.h"
#include "image/image.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"

namespace {

using embedded::Footage;
using embedded::FootageKind;
using embedded::RuleViolation;

struct ImageCase {
    const char* name;
    const char* file;
    int channels;
    OIIO::TypeDesc format;
    int bits;  ///< per channel, as the host reports them
    bool has_alpha;
    bool premultiplied;
    A_long depth;  ///< of a whole pixel, in the interpretation
};

const ImageCase kImages[] = {
    {"PNG without alpha", "a.png", 3, OIIO::TypeDesc::UINT8, 8, false, false, 24},
    {"PNG with alpha, which is never premultiplied", "a.png", 4, OIIO::TypeDesc::UINT8, 8, true, false, 32},
    {"PNG of 16 bits", "a.png", 4, OIIO::TypeDesc::UINT16, 16, true, false, 64},
    {"grey PNG", "a.png", 1, OIIO::TypeDesc::UINT8, 8, false, false, 24},
    {"TIFF of 8 bits", "a.tif", 3, OIIO::TypeDesc::UINT8, 8, false, false, 24},
    {"TIFF with alpha", "a.tif", 4, OIIO::TypeDesc::UINT16, 16, true, true, 64},
    {"OpenEXR of 16-bit floats", "a.exr", 4, OIIO::TypeDesc::HALF, 16, true, true, 64},
    {"OpenEXR of 32-bit floats", "a.exr", 3, OIIO::TypeDesc::FLOAT, 32, false, false, 96},
    {"Targa, whose alpha is not premultiplied unless it says so", "a.tga", 4, OIIO::TypeDesc::UINT8, 8, true,
     false, 32},
    {"RLA with a matte channel", "a.rla", 4, OIIO::TypeDesc::UINT8, 8, true, true, 32},
    {"RLA without", "a.rla", 3, OIIO::TypeDesc::UINT8, 8, false, false, 24},
    {"JPEG", "a.jpg", 3, OIIO::TypeDesc::UINT8, 8, false, false, 24},
    {"Iris", "a.sgi", 4, OIIO::TypeDesc::UINT8, 8, true, true, 32},
};

void write_image(const std::string& path, int channels = 3,
                 const OIIO::TypeDesc& format = OIIO::TypeDesc::UINT8, int width = 12, int height = 7) {
    const auto output = OIIO::ImageOutput::create(path);
    ASSERT_NE(output, nullptr) << OIIO::geterror();
    OIIO::ImageSpec spec(width, height, channels, format);
    ASSERT_TRUE(output->open(path, spec)) << output->geterror();
    const std::vector<float> pixels(static_cast<std::size_t>(width * height * channels), 0.5F);
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, pixels.data())) << output->geterror();
    ASSERT_TRUE(output->close()) << output->geterror();
}

A_Err make(BundleSide& bundle, const std::string& path,
           const AEGP_FileSequenceImportOptions* options = nullptr) {
    AEGP_FootageH footage = nullptr;
    return bundle.footage_suite->AEGP_NewFootage(bundle.host.plugin_id(), path.c_str(), nullptr, options,
                                                 kInterpretationGuessWithoutDialog, nullptr, &footage);
}

constexpr AEGP_FileSequenceImportOptions kWholeSequence{1, 0, -1, -1};

TEST(Footage, HasThePropertiesOfTheFile) {
    for (const ImageCase& c : kImages) {
        SCOPED_TRACE(c.name);
        const TemporaryFolder folder;
        const std::string path = folder.path(c.file);
        write_image(path, c.channels, c.format);
        BundleSide bundle;
        ASSERT_EQ(make(bundle, path), kHostErrorNone);
        const Footage& footage = bundle.host.project().footage.at(0);
        EXPECT_EQ(footage.kind, FootageKind::file);
        EXPECT_EQ(footage.path, path);
        EXPECT_EQ(footage.name, c.file);
        EXPECT_EQ(footage.width, 12);
        EXPECT_EQ(footage.height, 7);
        EXPECT_EQ(footage.channels, c.channels);
        EXPECT_EQ(footage.bits_per_channel, c.bits);
        EXPECT_EQ(footage.has_alpha, c.has_alpha);
        EXPECT_EQ(footage.alpha_premultiplied, c.premultiplied);
        EXPECT_EQ(footage.duration.value, 0) << "a still";
        EXPECT_EQ(footage.interpretation.depth, c.depth);
        EXPECT_EQ(footage.interpretation.alpha.flags, c.premultiplied ? kAlphaFlagPremultiplied : 0U);
        EXPECT_TRUE(bundle.host.conformance().clean());
    }
}

TEST(Footage, StartsWithTheHostsInterpretation) {
    const TemporaryFolder folder;
    write_image(folder.path("a.png"));
    BundleSide bundle;
    ASSERT_EQ(make(bundle, folder.path("a.png")), kHostErrorNone);
    const AEGP_FootageInterp& guess = bundle.host.project().footage[0].interpretation;
    EXPECT_EQ(FIEL_Type{guess.interlace.type}, kFieldTypeWholeFrames);
    EXPECT_EQ(guess.pixel_aspect.num, 1);
    EXPECT_EQ(guess.pixel_aspect.den, 1U);
    EXPECT_EQ(guess.native_fps, 30.0);
    EXPECT_EQ(guess.conform_fps, 0.0);
    EXPECT_EQ(guess.loop.loops, 1);
    EXPECT_FALSE(bundle.host.project().footage[0].interpretation_set);
}

TEST(Footage, OfASequenceCoversItsFramesAndNotesItsGaps) {
    const TemporaryFolder folder;
    for (const int frame : {17, 18, 20, 21, 24}) {
        write_image(folder.path("shot.00" + std::to_string(frame) + ".png"));
    }
    BundleSide bundle;
    ASSERT_EQ(make(bundle, folder.path("shot.0017.png"), &kWholeSequence), kHostErrorNone);
    const Footage& footage = bundle.host.project().footage.at(0);
    EXPECT_EQ(footage.kind, FootageKind::sequence);
    EXPECT_EQ(footage.name, "shot.[0017-0024].png");
    ASSERT_TRUE(footage.sequence.has_value());
    EXPECT_EQ(footage.sequence->range, (embedded::FrameRange{17, 24}));
    EXPECT_EQ(footage.sequence->count, 5);
    EXPECT_EQ(footage.duration.value, 8);
    EXPECT_EQ(footage.duration.scale, 30U);
    ASSERT_EQ(bundle.host.conformance().notes().size(), 1U);
    EXPECT_EQ(bundle.host.conformance().notes()[0].code, RuleViolation::sequence_gap);
    EXPECT_EQ(bundle.host.conformance().notes()[0].reason, "shot.####.png has gaps: 19 22-23");
    EXPECT_TRUE(bundle.host.conformance().clean()) << "a gap is a note, not a violation";
}

TEST(Footage, OfASequenceIsNamedByItsNumberNotByANumberSign) {
    const TemporaryFolder folder;
    for (const char* name : {"#2 shot 0001.png", "#2 shot 0002.png"}) {
        write_image(folder.path(name));
    }
    BundleSide bundle;
    ASSERT_EQ(make(bundle, folder.path("#2 shot 0001.png"), &kWholeSequence), kHostErrorNone);
    const Footage& footage = bundle.host.project().footage.at(0);
    EXPECT_EQ(footage.name, "#2 shot [0001-0002].png");
    EXPECT_EQ(footage.sequence->pattern, "#2 shot ####.png");
}

TEST(Footage, OfASequenceWithoutANumberIsOneFrame) {
    const TemporaryFolder folder;
    write_image(folder.path("still.png"));
    BundleSide bundle;
    ASSERT_EQ(make(bundle, folder.path("still.png"), &kWholeSequence), kHostErrorNone);
    const Footage& footage = bundle.host.project().footage.at(0);
    EXPECT_EQ(footage.kind, FootageKind::sequence);
    EXPECT_FALSE(footage.sequence.has_value());
    EXPECT_EQ(footage.duration.value, 1);
}

TEST(Footage, OfASequenceOutsideItsFramesIsRefused) {
    const TemporaryFolder folder;
    write_image(folder.path("a1.png"));
    BundleSide bundle;
    const AEGP_FileSequenceImportOptions options{1, 0, 5, 9};
    EXPECT_EQ(make(bundle, folder.path("a1.png"), &options), kHostErrorGeneric);
    EXPECT_TRUE(bundle.host.project().footage.empty());
}

TEST(Footage, ThatCannotBeReadIsRefused) {
    const TemporaryFolder folder;
    write_image(folder.path("whole.png"));
    const std::string pipe = folder.path("pipe.png");
    make_pipe(pipe);
    std::filesystem::create_directory(folder.path("folder.png"));
    struct {
        const char* name;
        std::string path;
    } const cases[] = {
        {"missing", folder.path("missing.png")},
        {"empty", folder.write("empty.png", "")},
        {"text", folder.write("text.png", "not a picture at all, whatever its name says")},
        {"text with an unknown extension", folder.write("text.zzz", "nothing")},
        {"no extension", folder.write("noextension", "nothing")},
        {"a folder", folder.path("folder.png")},
        {"a pipe, which nobody waits on", pipe},
        {"an RLA of a few bytes", folder.write("short.rla", "\x01\x02\x03")},
        {"an empty path", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        BundleSide bundle;
        EXPECT_EQ(make(bundle, c.path), kHostErrorGeneric);
        EXPECT_TRUE(bundle.host.project().footage.empty());
        EXPECT_TRUE(bundle.host.conformance().clean()) << "the file is bad, not the argument";
        const image::Probe probe = image::probe(c.path);
        EXPECT_FALSE(probe.header.has_value());
        ASSERT_TRUE(probe.error.has_value());
        EXPECT_FALSE(probe.error->reason.empty());
    }
}

TEST(Footage, PlaceholdersHaveTheGivenSizeAndDuration) {
    BundleSide bundle;
    bundle.utility_suite->AEGP_StartUndoGroup("test");
    bundle.placeholder_item();
    const Footage& footage = bundle.host.project().footage.at(0);
    EXPECT_EQ(footage.kind, FootageKind::placeholder);
    EXPECT_EQ(footage.name, "missing.tif");
    EXPECT_EQ(footage.width, 64);
    EXPECT_EQ(footage.height, 32);
    EXPECT_EQ(footage.duration.value, 100);
    EXPECT_EQ(footage.item, 2);
    const embedded::Item& item = bundle.host.project().item(2);
    EXPECT_EQ(item.kind, embedded::ItemKind::footage);
    EXPECT_EQ(item.name, "missing.tif");
    EXPECT_EQ(item.parent_folder, embedded::kRootFolder);
    EXPECT_TRUE(bundle.host.conformance().clean()) << bundle.host.conformance().to_text();
}

TEST(Footage, KeepsTheInterpretationThatIsSet) {
    BundleSide bundle;
    const AEGP_ItemH item = bundle.placeholder_item();
    AEGP_FootageInterp record{};
    ASSERT_EQ(bundle.footage_suite->AEGP_GetFootageInterpretation(item, 0, &record), kHostErrorNone);
    record.alpha.flags = kAlphaFlagIgnore;
    record.interlace.type = kFieldTypeInterlaced;
    record.interlace.order = kFieldOrderLowerFirst;
    record.pixel_aspect = {109, 100};
    record.conform_fps = 25.0;
    record.motion = 1;
    ASSERT_EQ(bundle.footage_suite->AEGP_SetFootageInterpretation(item, 0, &record), kHostErrorNone);
    AEGP_FootageInterp again{};
    ASSERT_EQ(bundle.footage_suite->AEGP_GetFootageInterpretation(item, 0, &again), kHostErrorNone);
    EXPECT_EQ(again.alpha.flags, kAlphaFlagIgnore);
    EXPECT_EQ(FIEL_Order{again.interlace.order}, kFieldOrderLowerFirst);
    EXPECT_EQ(again.pixel_aspect.num, 109);
    EXPECT_EQ(again.conform_fps, 25.0);
    EXPECT_EQ(again.motion, 1);
    EXPECT_TRUE(bundle.host.project().footage[0].interpretation_set);
}

}  // namespace
