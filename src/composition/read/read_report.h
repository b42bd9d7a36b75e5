#pragma once

#include <string_view>

#include "composition/read/ascii_parser.h"
#include "composition/read/read_error.h"
#include "composition/read/read_observer.h"

// What the grammar readers tell the observer of their parser, if it has one. Nothing here affects what is
// read.

/// Reports that the current token is not what was `expected`. A token that could not be finished is reported
/// as such, whatever `code` and `limit` say. Returns 0, the readers' failure.
int fail(const ASCIIParser& p, ReadErrorCode code, std::string_view expected,
         const limits::Limit* limit = nullptr);

/// Reports that `found` is not what was `expected` `at` this place. `limit` is the limit that the file
/// exceeds, if that is the reason. Returns 0, the readers' failure.
int fail_at(const ASCIIParser& p, ReadErrorCode code, const TextPosition& at, std::string_view expected,
            std::string_view found, const limits::Limit* limit = nullptr);

/// A composition or an object begins with the current token, its keyword.
void enter_block(const ASCIIParser& p, const CComposition& composition);
void enter_block(const ASCIIParser& p, BlockKind kind, const CSceneObject& object);
/// The current token is the name of that block.
void name_block(const ASCIIParser& p);
/// The block ends with the current token.
void leave_block(const ASCIIParser& p);
/// The current token is skipped.
void ignore_token(const ASCIIParser& p);
