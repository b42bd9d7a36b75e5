#pragma once

/// Lets one allocation of this thread fail: that of this index, from 0, counted as long as the object lives.
/// This program's throwing operator new counts.
class RefusedMemory {
  public:
    explicit RefusedMemory(int index);
    ~RefusedMemory();
    RefusedMemory(const RefusedMemory&) = delete;
    RefusedMemory& operator=(const RefusedMemory&) = delete;

    /// Whether there was such an allocation.
    [[nodiscard]] bool refused() const;
};
