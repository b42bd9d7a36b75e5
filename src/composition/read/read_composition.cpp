#include "composition/model/composition.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/read_report.h"
#include "composition/read/read_values.h"
#include "limit/limits.h"

namespace {

// Blend word, name and the token after it: `opens_block` says whether that is an opening brace. Any other
// token is deliberately consumed as well.
int read_head(ASCIIParser& p, CComposition& composition, bool& opens_block) {
    enter_block(p, composition);
    if (read_blend_mode(p, composition.blendMode) == 0 || read_name(p, composition.name) == 0) {
        return 0;
    }
    opens_block = p.nextsym(0) == kTokenOpenBrace;
    if (!opens_block) {
        leave_block(p);
        if (p.Cut() != TokenCut::end_of_input) {
            ignore_token(p);
        }
    }
    return 1;
}

// The current token is FILE or FSEQ.
int read_file_entry(ASCIIParser& p, CComposition& composition) {
    CFileItem* const file = composition.AddFile();
    if (file == nullptr) {
        return fail(p, ReadErrorCode::out_of_memory, "a footage entry that fits into memory");
    }
    file->isSequence = is_word(p, "FSEQ") ? 1 : 0;
    return file->Read(p);
}

}  // namespace

// Iterates down and up the tree instead of recursing, so that deep nesting uses no stack here.
int CComposition::ReadComposition(ASCIIParser& p) {
    A_long level = 1;
    for (const CComposition* above = parent; above != nullptr; above = above->parent) {
        ++level;
    }
    bool in_block = false;
    if (read_head(p, *this, in_block) == 0) {
        return 0;
    }
    CComposition* current = this;
    while (in_block) {
        p.nextsym(0);
        if (p.sym == kTokenCloseBrace) {
            leave_block(p);
            in_block = current != this;
            current = current->parent;
            --level;
        } else if (p.sym != kTokenIdentifier) {
            return fail(p, ReadErrorCode::expected_entry, "FILE, FSEQ, COMPOSITION or \"}\"");
        } else if (is_word(p, "COMPOSITION")) {
            if (level >= limits::kCompositionNesting.value) {
                return fail(p, ReadErrorCode::nesting_too_deep,
                            "compositions nested at most 1024 levels deep", &limits::kCompositionNesting);
            }
            CComposition* const nested = current->AddComposition();
            if (nested == nullptr) {
                return fail(p, ReadErrorCode::out_of_memory, "a composition that fits into memory");
            }
            bool nested_block = false;
            if (read_head(p, *nested, nested_block) == 0) {
                return 0;
            }
            if (nested_block) {
                current = nested;
                ++level;
            }
        } else if (is_word(p, "FILE") || is_word(p, "FSEQ")) {
            if (read_file_entry(p, *current) == 0) {
                return 0;
            }
        } else {
            // Deliberately skips the word alone, which a later exporter may write; any values after it fail.
            ignore_token(p);
        }
    }
    return 1;
}
