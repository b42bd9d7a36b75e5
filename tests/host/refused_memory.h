#pragma once

/// Fails one allocation of this thread: the one with this index, from 0, during the object's lifetime. Counts
/// the calls of this program's throwing operator new.
class RefusedMemory {
  public:
    explicit RefusedMemory(int index);
    ~RefusedMemory();
    RefusedMemory(const RefusedMemory&) = delete;
    RefusedMemory& operator=(const RefusedMemory&) = delete;

    /// Whether the allocation happened and was refused.
    [[nodiscard]] bool refused() const;
};
