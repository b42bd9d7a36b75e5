#include "composition/model/composition.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "composition/parsed_text.h"
#include "limit/limits.h"

namespace {

constexpr auto kMostLevels = static_cast<A_long>(limits::kCompositionNesting.value);

// A tree in one line: name, blend mode, children in brackets; files as "f" or "q" for a sequence, blend and
// alpha mode.
std::string outline(CComposition& composition) {
    std::string text = std::string(composition.name) + std::to_string(composition.blendMode) + "[";
    for (const CCompoChild* const child : nodes_of(composition.children)) {
        if (child->type == kChildComposition) {
            EXPECT_EQ(child->item.composition->parent, &composition);
            text += outline(*child->item.composition);
        } else {
            const CFileItem& file = *child->item.file;
            EXPECT_NE(file.path, nullptr);
            text += (file.isSequence != 0 ? "q" : "f") + std::to_string(file.blendMode) +
                    std::to_string(file.alphaMode);
        }
    }
    return text + "]";
}

struct Case {
    const char* why;
    const char* text;     // after the word COMPOSITION
    const char* outline;  // null: refused
};

TEST(Composition, TableOfBlocks) {
    const Case cases[] = {
        {"empty block", "NRM \"a\" { }", "a0[]"},
        {"blend words", "ADD \"a\" { COMPOSITION MUL \"b\" { } COMPOSITION NRM \"c\" { } }", "a1[b2[]c0[]]"},
        {"empty name", "NRM \"\" { }", "0[]"},
        {"no block", "NRM \"a\" ", "a0[]"},
        {"no block, another token in its place", "NRM \"a\" FILE ", "a0[]"},
        {"nested without a block, which consumes a token in place of its brace",
         "NRM \"a\" { COMPOSITION ADD \"b\" FILE COMPOSITION MUL \"c\" ; }", "a0[b1[]c2[]]"},
        {"files and sequences",
         "NRM \"a\" { FILE NRM STRAIGHT \"x\"\n FSEQ ADD PREMUL \"y\"\n FILE MUL PREMUL \"z\"\n }",
         "a0[f01q10f20]"},
        {"order of the file",
         "NRM \"a\" { FILE NRM PREMUL \"x\"\n COMPOSITION NRM \"b\" { FSEQ ADD PREMUL \"x\"\n } FILE MUL "
         "PREMUL "
         "\"x\"\n }",
         "a0[f00b0[q10]f20]"},
        {"three deep and up again",
         "NRM \"a\" { COMPOSITION NRM \"b\" { COMPOSITION NRM \"c\" { } } COMPOSITION NRM \"d\" { } }",
         "a0[b0[c0[]]d0[]]"},
        {"an unknown word is skipped by itself", "NRM \"a\" { SOLID FILE NRM PREMUL \"x\"\n }", "a0[f00]"},
        {"a word in the wrong case is skipped too", "NRM \"a\" { file }", "a0[]"},
        {"a number after an unknown word fails", "NRM \"a\" { SOLID 5 }", nullptr},
        {"a text after an unknown word fails", "NRM \"a\" { SOLID \"5\" }", nullptr},
        {"no blend word", "\"a\" { }", nullptr},
        {"unknown blend word", "SUB \"a\" { }", nullptr},
        {"blend word in lower case", "nrm \"a\" { }", nullptr},
        {"blend word in quotes", "\"NRM\" \"a\" { }", nullptr},
        {"name in single quotes", "NRM 'a' { }", nullptr},
        {"name without quotes", "NRM a { }", nullptr},
        {"name never closed", "NRM \"a { }", nullptr},
        {"block never closed", "NRM \"a\" { ", nullptr},
        {"nested block never closed", "NRM \"a\" { COMPOSITION NRM \"b\" { }", nullptr},
        {"a number as an entry", "NRM \"a\" { 5 }", nullptr},
        {"an operator as an entry", "NRM \"a\" { ; }", nullptr},
        {"a keyword in quotes is not an entry", "NRM \"a\" { \"FILE\" NRM PREMUL \"x\"\n }", nullptr},
        {"file without a blend word", "NRM \"a\" { FILE PREMUL \"x\"\n }", nullptr},
        {"file without an alpha word", "NRM \"a\" { FILE NRM \"x\"\n }", nullptr},
        {"file with an unknown alpha word", "NRM \"a\" { FILE NRM IGNORE \"x\"\n }", nullptr},
        {"file with an alpha word in quotes", "NRM \"a\" { FILE NRM \"PREMUL\" \"x\"\n }", nullptr},
        {"file without a path", "NRM \"a\" { FILE NRM PREMUL }\n", nullptr},
        {"file with an empty path", "NRM \"a\" { FILE NRM PREMUL \"\"\n }", nullptr},
        {"file whose path is never closed", "NRM \"a\" { FILE NRM PREMUL \"x\n }", nullptr},
        {"file on the last line, which has no end", "NRM \"a\" { FILE NRM PREMUL \"x\"", nullptr},
        {"nested composition without a name", "NRM \"a\" { COMPOSITION NRM { } }", nullptr},
        {"a word of 512 characters", nullptr, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const std::string text = c.text != nullptr ? c.text : "NRM \"a\" { " + std::string(512, 'w') + " }";
        ParsedText parsed("COMPOSITION " + text + "\n");
        CComposition composition;
        EXPECT_EQ(composition.ReadComposition(parsed.p), c.outline == nullptr ? 0 : 1);
        if (c.outline != nullptr) {
            EXPECT_EQ(outline(composition), c.outline);
        }
    }
}

TEST(Composition, StopsAfterItsBrace) {
    ParsedText parsed("COMPOSITION NRM \"a\" { COMPOSITION NRM \"b\" { } } CAMERA ");
    CComposition composition;
    ASSERT_EQ(composition.ReadComposition(parsed.p), 1);
    EXPECT_EQ(parsed.p.nextsym(0), kTokenIdentifier);
    EXPECT_STREQ(parsed.p.text, "CAMERA");
}

// Outer levels also count when a composition in the middle of a tree is read on its own.
TEST(Composition, LevelsAreCountedFromTheRoot) {
    CComposition root;
    CComposition* deepest = &root;
    for (A_long level = 1; level < kMostLevels; ++level) {
        deepest = deepest->AddComposition();
    }
    const char* const text = "COMPOSITION NRM \"a\" { COMPOSITION NRM \"b\" ; } ";
    ParsedText at_the_limit(text);
    EXPECT_EQ(deepest->ReadComposition(at_the_limit.p), 0) << "there is no room for another level";
    CComposition* const above = deepest->parent->parent->AddComposition();
    ParsedText below_it(text);
    EXPECT_EQ(above->ReadComposition(below_it.p), 1);
}

TEST(Composition, NewObjects) {
    CComposition composition;
    EXPECT_EQ(composition.name, nullptr);
    EXPECT_EQ(composition.parent, nullptr);
    EXPECT_EQ(composition.itemH, nullptr);
    EXPECT_EQ(composition.children.count, 0);
    const CFileItem* const file = composition.AddFile();
    EXPECT_EQ(file->path, nullptr);
    EXPECT_EQ(file->isSequence, 0);
    const CComposition* const nested = composition.AddComposition();
    EXPECT_EQ(nested->parent, &composition);
    EXPECT_EQ(composition.children.count, 2);
    const std::vector<CCompoChild*> children = nodes_of(composition.children);
    EXPECT_EQ(children.at(0)->type, kChildFile);
    EXPECT_EQ(children.at(0)->item.file, file);
    EXPECT_EQ(children.at(1)->type, kChildComposition);
    EXPECT_EQ(children.at(1)->item.composition, nested);
}

}  // namespace
