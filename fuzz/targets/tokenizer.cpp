// Runs the tokenizer over a file of any bytes. One option byte: bit 0 makes line ends tokens, bit 1 turns
// numbers off, bit 2 rewinds every token once.

#include <cstring>

#include "check.h"
#include "composition/read/ascii_parser.h"
#include "input.h"

const std::size_t kOptionBytes = 1;

namespace {

constexpr A_long kLastKind = kTokenOther;

void check_token(ASCIIParser& p, std::int64_t last_offset) {
    require(p.sym >= kTokenNone && p.sym <= kLastKind && p.sym != 8, "a token is of a known kind");
    require(p.text != nullptr, "a token has a text");
    require(p.textOnHeap != 0 || std::strlen(p.text) < ASCIIParser::kTextBytes,
            "a short text is in its buffer");
    require((p.sym == kTokenNone) == (p.Cut() != TokenCut::none), "what is no token has a reason");
    require(p.TokenStart().offset_bytes >= last_offset, "tokens follow each other");
    float real = 0;
    A_long number = 0;
    const int is_number = p.sym == kTokenNumber ? 1 : 0;
    require(p.GetReal(real) == is_number && p.GetLong(number) == is_number, "numbers alone have a value");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::uint8_t how = input.take();
    const std::string path = scratch().write("tokens.aec", input.rest_text());
    ASCIIParser p;
    if (p.Init(Filename(path.c_str()), 1, how & 1) != 0) {
        require(input.rest().empty(), "a file with bytes opens");
        return 0;
    }
    std::int64_t last_offset = -1;
    std::size_t tokens = 0;
    while (p.sym != kTokenNone || p.status == 0) {
        check_token(p, last_offset);
        require(++tokens <= size + 1, "there are no more tokens than bytes");
        last_offset = p.TokenStart().offset_bytes;
        if ((how & 4) != 0) {
            const std::string text = p.text;
            p.rewindsym();
            p.nextsym(how >> 1 & 1);
            require(text == p.text, "a token that was handed back comes again");
        }
        p.nextsym(how >> 1 & 1);
    }
    check_token(p, last_offset);
    return 0;
}
