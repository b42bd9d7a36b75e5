#pragma once

class TemporaryFolder;

/// Writes the footage that the seeds refer to into the folder, once: plate.tga, still.jpg, grain.txl and the
/// sequence s1.tif, s2.tif, s4.tif.
void put_footage_into(const TemporaryFolder& folder);
