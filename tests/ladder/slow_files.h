#pragma once

/// While one of these lives, files that are opened by descriptor, as the bundle opens those that it reads,
/// are given out one byte at a time.
class SlowFiles {
  public:
    SlowFiles();
    ~SlowFiles();
    SlowFiles(const SlowFiles&) = delete;
    SlowFiles& operator=(const SlowFiles&) = delete;

    /// Bytes that were read one by one so far.
    [[nodiscard]] static long bytes();
};
