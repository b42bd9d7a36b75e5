#pragma once

#include <string>

#include "cli/doctor/diagnosis.h"
#include "cli/terminal/terminal.h"

namespace cli::doctor {

/// For a person: a line for each kind of host, then the findings, then what the bundle is made of.
std::string diagnosis_text(const Diagnosis& diagnosis, const Paint& paint);

/// For a script: one JSON document, "schema": 1.
std::string diagnosis_document(const Diagnosis& diagnosis);

}  // namespace cli::doctor
