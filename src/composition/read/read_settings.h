#pragma once

class ASCIIParser;
struct tagProjectSettings;

/// Reads the settings of a composition file, which come in any order and any number of times; the last value
/// wins. The current token is the word before them; on success it is the word COMPOSITION after them. Returns
/// 1, or 0 on the first failure.
int read_settings(ASCIIParser& p, tagProjectSettings& settings);
