#pragma once

#include <cstdint>
#include <string>

#include "cli/report/diagnostic.h"
#include "limit/limits.h"

namespace cli {

/// "1,048,576"
std::string grouped(std::int64_t number);

/// "nesting of compositions: 1,024 levels are allowed (see `vxr limits`)"
std::string limit_text(const limits::Limit& limit);

/// Has `diagnostic` name the limit that a file is above of; null changes nothing.
void name_limit(Diagnostic& diagnostic, const limits::Limit* limit);

}  // namespace cli
