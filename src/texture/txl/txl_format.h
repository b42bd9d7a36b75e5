#pragma once

#include <cstdint>

class BaseBitmap;
class Filename;

/// The format's entry points for a picture library that asks files for their kind.

/// Whether the four bytes at `probe` are "TFF" and a zero. `name` and `size` are ignored. Deliberately this
/// is not how the files of the texture filter begin; it is the mark of the format that the library asks for.
[[nodiscard]] bool TXLIdentify(Filename* name, unsigned char* probe, std::int32_t size);

/// Do nothing and return true: pictures are loaded and saved through the texture filter.
bool TXLLoad(const Filename& name, BaseBitmap* bitmap, std::int32_t);
bool TXLSave(const Filename& name, BaseBitmap* bitmap, int);
