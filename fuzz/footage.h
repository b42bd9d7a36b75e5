#pragma once

class TemporaryFolder;

/// Puts the footage that seeds name into the folder, once: plate.tga and still.jpg, the sequence s1.tif,
/// s2.tif, s4.tif, and grain.txl.
void put_footage_into(const TemporaryFolder& folder);
