#pragma once

/// Refuses allocations of the reader, which all ask without exceptions. This program's operators of that kind
/// count.
class RefusedMemory {
  public:
    /// The allocation of that index, from 0, and all behind it yield null until the object goes.
    explicit RefusedMemory(long first_refused);
    ~RefusedMemory();
    RefusedMemory(const RefusedMemory&) = delete;
    RefusedMemory& operator=(const RefusedMemory&) = delete;

    /// Allocations asked for so far.
    [[nodiscard]] static long asked();
};
