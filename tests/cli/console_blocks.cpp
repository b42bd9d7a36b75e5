#include "cli/console_blocks.h"

#include <sstream>

std::vector<ConsoleCommand> console_commands(std::string_view markdown) {
    std::vector<ConsoleCommand> commands;
    std::istringstream lines{std::string(markdown)};
    bool in_block = false;
    bool in_command = false;
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (line.compare(0, 3, "```") == 0) {
            in_block = !in_block && line == "```console";
            in_command = false;
        } else if (in_block && line.compare(0, 2, "$ ") == 0) {
            commands.push_back({line.substr(2), {}, number});
            in_command = true;
        } else if (in_command) {
            commands.back().output += line + '\n';
        }
    }
    return commands;
}
