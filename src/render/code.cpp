#include "render/code.h"

#include <array>
#include <cstddef>

namespace render {
namespace {

using diagnostic::CodeRow;
using diagnostic::Severity;

constexpr std::array<CodeRow<Code>, 6> kRenderCodes{{
    {Code::placeholder_shown,
     {"placeholder-shown", Severity::loss,
      "The import found no file for this footage, and colour bars stand in for it."}},
    {Code::picture_unreadable,
     {"picture-unreadable", Severity::loss, "A picture cannot be read, and colour bars stand in for it."}},
    {Code::picture_too_large,
     {"picture-too-large", Severity::loss,
      "A picture has more pixels than a preview reads, and colour bars stand in for it."}},
    {Code::frame_too_large,
     {"frame-too-large", Severity::error, "The frame has more pixels than a preview draws."}},
    {Code::too_many_layers,
     {"too-many-layers", Severity::error, "The frame shows more layers than a preview draws."}},
    {Code::compositions_too_deep,
     {"compositions-too-deep", Severity::error, "Compositions are nested too deep, or contain each other."}},
}};
static_assert(diagnostic::in_order(kRenderCodes, Code::compositions_too_deep));

}  // namespace

const diagnostic::CodeInfo& code_info(Code code) {
    return kRenderCodes[static_cast<std::size_t>(code)].info;
}

}  // namespace render
