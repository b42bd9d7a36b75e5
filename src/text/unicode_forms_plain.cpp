#include "text/ascii.h"
#include "text/unicode_forms.h"

namespace text {

std::string composed(std::string_view utf8) {
    return std::string(utf8);
}

std::string case_folded(std::string_view utf8) {
    return lower_case(utf8);
}

}  // namespace text
