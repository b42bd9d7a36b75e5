#include "composition/read/read_report.h"

#include <string>

namespace {

// Enough of a quoted text to recognise it.
constexpr std::size_t kQuotedBytes = 60;

std::string quoted(std::string_view text) {
    const bool whole = text.size() <= kQuotedBytes;
    return "\"" + std::string(text.substr(0, kQuotedBytes)) + (whole ? "\"" : "...\"");
}

ReadErrorCode code_of(TokenCut cut, ReadErrorCode otherwise) {
    switch (cut) {
        case TokenCut::none:
            return otherwise;
        case TokenCut::end_of_input:
            return ReadErrorCode::unexpected_end;
        case TokenCut::inside_word:
            return ReadErrorCode::word_cut_by_end;
        case TokenCut::inside_string:
            return ReadErrorCode::unclosed_string;
        case TokenCut::word_too_long:
            return ReadErrorCode::word_too_long;
        case TokenCut::read_failed:
            return ReadErrorCode::read_failed;
        case TokenCut::out_of_memory:
            break;
    }
    return ReadErrorCode::out_of_memory;
}

std::string whole_token(const ASCIIParser& p) {
    if (p.sym == kTokenOther && *p.text == '\0') {
        return "a NUL byte";
    }
    std::string text = quoted(p.text);
    switch (p.sym) {
        case kTokenString:
            return "the text " + text;
        case kTokenSingleQuoted:
            return "the text " + text + " in single quotes";
        case kTokenNumber:
            return "the number " + text;
        case kTokenLineEnd:
            return "the end of the line";
        default:
            return text;
    }
}

std::string found_token(const ASCIIParser& p) {
    switch (p.Cut()) {
        case TokenCut::none:
            return whole_token(p);
        case TokenCut::end_of_input:
            return "the end of the file";
        case TokenCut::inside_word:
            return "a word cut off by the end of the file";
        case TokenCut::inside_string:
            return "a text without its closing quote";
        case TokenCut::word_too_long:
            return "a word of more than 511 characters";
        case TokenCut::read_failed:
            return "a part of the file that cannot be read";
        case TokenCut::out_of_memory:
            break;
    }
    return "a text that does not fit into memory";
}

std::vector<std::string> names_of(const std::vector<ReadBlock>& blocks) {
    std::vector<std::string> names;
    for (const ReadBlock& block : blocks) {
        names.emplace_back(block_word(block.kind));
        if (!block.name().empty()) {
            names.back() += " " + quoted(block.name());
        }
    }
    return names;
}

}  // namespace

int fail(const ASCIIParser& p, ReadErrorCode code, std::string_view expected, const limits::Limit* limit) {
    if (p.Observer() == nullptr) {
        return 0;
    }
    if (p.Cut() != TokenCut::none) {
        limit = p.Cut() == TokenCut::word_too_long ? &limits::kWord : nullptr;
    }
    return fail_at(p, code_of(p.Cut(), code), p.TokenStart(), expected, found_token(p), limit);
}

int fail_at(const ASCIIParser& p, ReadErrorCode code, const TextPosition& at, std::string_view expected,
            std::string_view found, const limits::Limit* limit) {
    if (ReadObserver* const observer = p.Observer()) {
        diagnostic::Diagnostic error =
            diagnostic::make(code, {{}, at.offset_bytes, at.line, at.column},
                             "expected " + std::string(expected) + ", found " + std::string(found),
                             names_of(observer->blocks()));
        error.limit = limit;
        observer->fail(error);
    }
    return 0;
}

void enter_block(const ASCIIParser& p, const CComposition& composition) {
    if (ReadObserver* const observer = p.Observer()) {
        observer->enter_block({BlockKind::composition, p.TokenStart(), &composition});
    }
}

void enter_block(const ASCIIParser& p, BlockKind kind, const CSceneObject& object) {
    if (ReadObserver* const observer = p.Observer()) {
        observer->enter_block({kind, p.TokenStart(), nullptr, &object});
    }
}

void name_block(const ASCIIParser& p) {
    if (ReadObserver* const observer = p.Observer()) {
        observer->name_block(p.TokenStart());
    }
}

void leave_block(const ASCIIParser& p) {
    if (ReadObserver* const observer = p.Observer()) {
        observer->leave_block(p.TokenStart());
    }
}

void ignore_token(const ASCIIParser& p) {
    if (ReadObserver* const observer = p.Observer()) {
        observer->on_ignored(p.text, p.TokenStart());
    }
}
