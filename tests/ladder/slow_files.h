#pragma once

/// During its lifetime, files that are opened by descriptor, as the bundle opens its input, yield one byte at
/// a time.
class SlowFiles {
  public:
    SlowFiles();
    ~SlowFiles();
    SlowFiles(const SlowFiles&) = delete;
    SlowFiles& operator=(const SlowFiles&) = delete;

    /// The number of bytes read one by one so far.
    [[nodiscard]] static long bytes();
};
