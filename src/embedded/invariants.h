#pragma once

// What always holds for the host's project and handles, whatever a bundle does. A broken invariant is a bug
// in the host.

#include <optional>
#include <string>

namespace embedded {

struct Project;
class Session;

/// The first broken invariant with its place, as in "layer:2: it is in no composition"; nothing when all
/// hold. Follows every id to what it names, in both directions, and checks every name, time, key and range.
/// Takes time proportional to the project's size. Between callbacks only.
[[nodiscard]] std::optional<std::string> validate_project(const Project& project);

/// Checks the handles, streams, additions and memory of a host: every handle is found under its own address,
/// stands for something that exists, and is alive exactly as long as that is.
[[nodiscard]] std::optional<std::string> validate_session(const Session& session);

}  // namespace embedded
