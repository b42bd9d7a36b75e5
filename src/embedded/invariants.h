#pragma once

// Whether what the embedded host keeps fits together. Whatever a bundle does, it does: a complaint is a
// defect of the host.

#include <optional>
#include <string>

namespace embedded {

struct Project;
class Session;

/// The first thing in a project that no sequence of host calls can have brought about, with its place:
/// "layer:2: it is in no composition"; nothing for a sound one. Follows every id to what it names, in both
/// directions, and looks at every name, time, key and range. The work grows with the project alone. Between
/// callbacks only.
[[nodiscard]] std::optional<std::string> validate_project(const Project& project);

/// The same for the handles, streams, additions and memory of a host: every handle is found under its own
/// address, stands for something that is there, and is alive as long as that is.
[[nodiscard]] std::optional<std::string> validate_session(const Session& session);

}  // namespace embedded
