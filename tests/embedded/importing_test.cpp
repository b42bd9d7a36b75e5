// Importers: which one the host calls, with what, and what it does with the result.

#include <gtest/gtest.h>

#include "embedded/bundle_side.h"

namespace {

struct Seen {
    std::string path;
    AEGP_ItemH folder = nullptr;
    AE_FIM_SpecialAction action = 0;
    AE_FIM_ImportOptions options = nullptr;
    AE_FIM_Refcon refcon = nullptr;
    int imports = 0;
};
Seen seen;
A_Err import_result = kHostErrorNone;
A_Err verify_result = kHostErrorNone;

A_Err import(const A_char* path, AE_FIM_ImportOptions options, AE_FIM_SpecialAction action, AEGP_ItemH folder,
             AE_FIM_Refcon refcon) {
    seen = {path, folder, action, options, refcon, seen.imports + 1};
    return import_result;
}

A_Err verify(const A_char* path, AE_FIM_Refcon, A_Boolean* importable) {
    *importable = std::string(path).find("good") != std::string::npos ? 1 : 0;
    return verify_result;
}

AE_FIM_ImportFlavorRef add_flavor(BundleSide& bundle, const char* name, const char (&extension)[5],
                                  void* refcon) {
    AE_FIM_ImportFlavorRef flavor = kInvalidImportFlavor;
    bundle.import_suite->AEGP_RegisterImportFlavor(name, &flavor);
    AEIO_FileKind type{};
    type.mac = {four_char_code("AEC_"), -1};
    AEIO_FileKind ext{};
    ext.ext = {extension[0], {extension[1], extension[2], extension[3]}};
    bundle.import_suite->AEGP_RegisterImportFlavorFileTypes(flavor, 1, &type, 1, &ext);
    const AE_FIM_ImportCallbacks callbacks{refcon, import, verify};
    bundle.import_suite->AEGP_RegisterImportFlavorImportCallbacks(flavor, kImportFlagComposition, &callbacks);
    return flavor;
}

class Importing : public ::testing::Test {
  protected:
    void SetUp() override {
        seen = {};
        import_result = kHostErrorNone;
        verify_result = kHostErrorNone;
    }
    BundleSide bundle;
    int first = 1;
    int second = 2;
};

TEST_F(Importing, KeepsWhatWasRegistered) {
    add_flavor(bundle, "VORTAN XR Composition", ".AEC", &first);
    ASSERT_EQ(bundle.host.flavors().size(), 1U);
    const embedded::ImportFlavor& flavor = bundle.host.flavors()[0];
    EXPECT_EQ(flavor.name, "VORTAN XR Composition");
    EXPECT_EQ(flavor.extensions, std::vector<std::string>{".aec"});
    ASSERT_EQ(flavor.file_types.size(), 1U);
    EXPECT_EQ(flavor.file_types[0].type, four_char_code("AEC_"));
    EXPECT_EQ(flavor.flags, kImportFlagComposition);
}

TEST_F(Importing, GivesTheImporterThePathTheRootFolderAndItsRefcon) {
    add_flavor(bundle, "first", ".aec", &first);
    EXPECT_EQ(bundle.host.import_file("/a/b.aec").code, kHostErrorNone);
    EXPECT_EQ(seen.path, "/a/b.aec");
    EXPECT_EQ(seen.folder, bundle.root());
    EXPECT_EQ(seen.action, kSpecialActionNone);
    EXPECT_EQ(seen.options, nullptr);
    EXPECT_EQ(seen.refcon, &first);
    EXPECT_EQ(seen.imports, 1);
}

TEST_F(Importing, CallsTheImporterOfTheExtensionElseTheFirst) {
    add_flavor(bundle, "first", ".aec", &first);
    add_flavor(bundle, "second", ".xyz", &second);
    struct {
        const char* name;
        const char* path;
        void* refcon;
    } const cases[] = {
        {"its extension", "a.aec", &first},
        {"the other importer's", "a.xyz", &second},
        {"letters of either case", "a.XyZ", &second},
        {"an unknown one", "a.txt", &first},
        {"none", "a", &first},
        {"a full stop in the folder", "/a.xyz/b", &first},
    };
    for (const auto& c : cases) {
        bundle.host.import_file(c.path);
        EXPECT_EQ(seen.refcon, c.refcon) << c.name;
    }
}

TEST_F(Importing, PassesResultsOn) {
    add_flavor(bundle, "first", ".aec", &first);
    import_result = 41;
    EXPECT_EQ(bundle.host.import_file("a.aec").code, 41);
    EXPECT_FALSE(bundle.host.import_file("a.aec").missing_suite);
    EXPECT_TRUE(bundle.host.verify("good.aec").importable);
    EXPECT_FALSE(bundle.host.verify("bad.aec").importable);
    verify_result = 1;
    EXPECT_FALSE(bundle.host.verify("good.aec").importable) << "the result of a failing callback counts";
    EXPECT_EQ(bundle.host.verify("good.aec").callback.code, 1);
}

TEST_F(Importing, NeedsCallbacks) {
    AE_FIM_ImportFlavorRef flavor = kInvalidImportFlavor;
    bundle.import_suite->AEGP_RegisterImportFlavor("without callbacks", &flavor);
    EXPECT_EQ(bundle.host.import_file("a.aec").code, kHostErrorGeneric);
    EXPECT_FALSE(bundle.host.verify("good.aec").importable);
}

}  // namespace
