#pragma once

/// Refuses allocations of the reader, all of which use operator new without exceptions. This program replaces
/// those operators to count them.
class RefusedMemory {
  public:
    /// The allocation of that index, from 0, and all later ones return null until this object is destroyed.
    explicit RefusedMemory(long first_refused);
    ~RefusedMemory();
    RefusedMemory(const RefusedMemory&) = delete;
    RefusedMemory& operator=(const RefusedMemory&) = delete;

    /// The number of allocations requested so far.
    [[nodiscard]] static long asked();
};
