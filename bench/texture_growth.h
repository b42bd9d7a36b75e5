#pragma once

/// Registers loading and saving of textures that grow in one thing: pixels, alpha channels, chunks that
/// nothing reads. Names end in its number.
void register_texture_growth();
