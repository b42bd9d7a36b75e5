#include "composition/model/composition.h"

#include <memory>
#include <new>

#include "composition/read/ascii_parser.h"
#include "composition/read/read_report.h"
#include "composition/read/read_values.h"
#include "limit/limits.h"

CComposition::~CComposition() {
    delete[] name;
    while (CCompoChild* const child = children.RemoveFirst()) {
        DeleteCompoChild(child);
    }
}

CFileItem* CComposition::AddFile() {
    std::unique_ptr<CCompoChild> child(new (std::nothrow) CCompoChild);
    CFileItem* const file = child == nullptr ? nullptr : child->CreateFile();
    if (file != nullptr) {
        children.AddAtTail(child.release());
    }
    return file;
}

CComposition* CComposition::AddComposition() {
    std::unique_ptr<CCompoChild> child(new (std::nothrow) CCompoChild);
    CComposition* const composition = child == nullptr ? nullptr : child->CreateComposition();
    if (composition != nullptr) {
        composition->parent = this;
        children.AddAtTail(child.release());
    }
    return composition;
}

// Walks down and up again instead of calling itself for every nested composition: the depth of a file then
// costs no stack here.
int CComposition::ReadComposition(ASCIIParser& p) {
    A_long level = 1;
    for (const CComposition* above = parent; above != nullptr; above = above->parent) {
        ++level;
    }
    bool in_block = false;
    if (ReadHead(p, in_block) == 0) {
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
                            "at most 1024 compositions inside one another");
            }
            CComposition* const nested = current->AddComposition();
            if (nested == nullptr) {
                return fail(p, ReadErrorCode::out_of_memory, "a composition that fits into memory");
            }
            bool nested_block = false;
            if (nested->ReadHead(p, nested_block) == 0) {
                return 0;
            }
            if (nested_block) {
                current = nested;
                ++level;
            }
        } else if (is_word(p, "FILE") || is_word(p, "FSEQ")) {
            if (current->ReadFileEntry(p) == 0) {
                return 0;
            }
        } else {
            // Deliberate: a word from a later exporter is passed over by itself, without any values it may
            // have.
            ignore_token(p);
        }
    }
    return 1;
}

// Blend word, name and the token behind: `opens_block` says whether that is an opening brace. Any other token
// is Deliberately consumed with it.
int CComposition::ReadHead(ASCIIParser& p, bool& opens_block) {
    enter_block(p, BlockKind::composition);
    if (read_blend_mode(p, blendMode) == 0 || read_name(p, name) == 0) {
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
int CComposition::ReadFileEntry(ASCIIParser& p) {
    CFileItem* const file = AddFile();
    if (file == nullptr) {
        return fail(p, ReadErrorCode::out_of_memory, "a footage entry that fits into memory");
    }
    file->isSequence = is_word(p, "FSEQ") ? 1 : 0;
    return file->Read(p);
}
