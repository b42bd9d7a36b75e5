#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// A command of a document and the output that the document shows for it.
struct ConsoleCommand {
    std::string command;   ///< behind "$ "
    std::string output;    ///< the lines below it, each with its line break
    std::size_t line = 0;  ///< of the command in the document, from 1
};

/// The commands of every ```console block of a Markdown text, in order. A line that begins with "$ " is a
/// command, everything up to the next one or the end of the block its output.
std::vector<ConsoleCommand> console_commands(std::string_view markdown);
