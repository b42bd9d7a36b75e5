// Mutates composition files by whole tokens and whole entries, so that the readers still get far into most
// of the results.

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "input.h"
#include "mutator.h"

namespace {

using Tokens = std::vector<std::string>;

// Every word of the language. make_dictionaries writes this file from the readers' own tables.
constexpr std::string_view kWords[] = {
#include "aec_words.inc"
};

constexpr std::string_view kNumbers[] = {
    "0",        "1",     "-1",       "25",         "100",         "0.01",       "100.5",
    "1e9",      "1e39",  "-0",       "2147483647", "-2147483648", "2147483648", "99999999",
    "0x1F",     "nan",   "inf",      ".5",         "5.",          "-",          "1e-46",
    "16777217", "29.97", "12345678", "123456789",  "-12345.678",
};

constexpr std::string_view kFootage[] = {
    "plate.tga", "still.jpg",      "s1.tif", "grain.txl", "missing0001.tif", "Disk:Renders:plate.tga",
    "a/b\\c:d",  "quoted \" path", ":",      "scene.aec",
};

// Whole entries: % stands for a number, $ for a path, @ for a name.
constexpr std::string_view kEntries[] = {
    "VORTAN XR COMPOSITION\n",
    "RESOLUTION % %\n",
    "FROM % TO % RANGE % FPS %\n",
    "ASPECT %\n",
    "LOCAL\n",
    "FIELDS EVEN\n",
    "FIELDS ODD\n",
    "COMPOSITION NRM \"@\" {\n}\n",
    "COMPOSITION ADD \"@\" {\nFILE MUL STRAIGHT \"$\"\n}\n",
    "FILE NRM PREMUL \"$\"\n",
    "FSEQ ADD STRAIGHT \"$\"\n",
    "FILE <-> PREMUL \"$\"\n",
    "FSEQ <-> STRAIGHT \"$\"\n",
    "CAMERA \"@\" {\nKEY % % % % % % % % %\n}\n",
    "CAMERA \"@\" {\nKEY % % % % % % % %\nKEY % % % % % % % %\n}\n",
    "LIGHT \"@\" {\nTYPE SPOT SHADOW SOFT COLOR % % % INTENSITY % ANGLE %\nKEY % % % % % % %\n}\n",
    "NULL \"@\" {\nKEY % % % % % % %\nKEY % % % % % % %\n}\n",
    "KEY % % % % % % %\n",
    "KEY % % % % % % % % %\n",
    "TYPE PAR\n",
    "SHADOW AREA\n",
    "/ a comment\n",
};

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Blanks are tokens too, so joining the tokens restores the text.
Tokens tokens_of(std::string_view text) {
    Tokens tokens;
    while (!text.empty()) {
        std::size_t length = 1;
        if (text[0] == '"') {
            length = std::min(text.find('"', 1), text.size() - 1) + 1;
        } else if (text[0] != '{' && text[0] != '}') {
            const bool blank = is_blank(text[0]);
            while (length < text.size() && is_blank(text[length]) == blank && text[length] != '"' &&
                   text[length] != '{' && text[length] != '}') {
                ++length;
            }
        }
        tokens.emplace_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return tokens;
}

std::string name_of(Dice& dice) {
    return dice.one_in(8) ? std::string(dice.below(80), 'n') : "name " + std::to_string(dice.below(4));
}

std::string entry_of(Dice& dice) {
    std::string entry;
    for (const char c : dice.one_of(kEntries)) {
        if (c == '%') {
            entry += dice.one_in(3) ? std::string(dice.one_of(kNumbers)) : std::to_string(dice.below(200));
        } else if (c == '$') {
            entry += dice.one_of(kFootage);
        } else if (c == '@') {
            entry += name_of(dice);
        } else {
            entry += c;
        }
    }
    return entry;
}

// A replacement for a token, usually of the same kind.
std::string token_for(const std::string& token, Dice& dice) {
    if (token.front() == '"') {
        return '"' + (dice.one_in(2) ? name_of(dice) : std::string(dice.one_of(kFootage))) + '"';
    }
    const bool number = token.find_first_of("0123456789") != std::string::npos;
    return std::string(number != dice.one_in(8) ? dice.one_of(kNumbers) : dice.one_of(kWords));
}

void change_tokens(Tokens& tokens, Dice& dice) {
    const auto at = [&] { return tokens.begin() + static_cast<std::ptrdiff_t>(dice.below(tokens.size())); };
    const auto place = at();
    const auto most = static_cast<std::size_t>(tokens.end() - place);
    const auto behind = place + static_cast<std::ptrdiff_t>(1 + dice.below(std::min<std::size_t>(most, 30)));
    switch (dice.below(6)) {
        case 0:
            *place = token_for(*place, dice);
            return;
        case 1:
            tokens.insert(place, entry_of(dice));
            return;
        case 2:
            tokens.erase(place, dice.one_in(3) ? behind : place + 1);
            return;
        case 3: {
            const Tokens copy(place, behind);
            tokens.insert(at(), copy.begin(), copy.end());
            return;
        }
        case 4: {
            // Repetition makes long lists and deep nesting.
            Tokens copies;
            for (std::size_t i = 1 + dice.below(20); i > 0; --i) {
                copies.insert(copies.end(), place, behind);
            }
            tokens.insert(place, copies.begin(), copies.end());
            return;
        }
        default:
            std::swap(*place, *at());
    }
}

MutatedBytes changed_text(const MutatedBytes& before, Dice& dice) {
    Tokens tokens = tokens_of({reinterpret_cast<const char*>(before.data()), before.size()});
    for (std::size_t changes = 1 + dice.below(3); changes > 0 && !tokens.empty(); --changes) {
        change_tokens(tokens, dice);
    }
    MutatedBytes after;
    for (const std::string& token : tokens) {
        after.insert(after.end(), token.begin(), token.end());
    }
    return after;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                               unsigned int seed) {
    Dice dice(seed);
    return mutate(data, size, max_size, kOptionBytes, dice,
                  [&dice](const MutatedBytes& before) { return changed_text(before, dice); });
}
