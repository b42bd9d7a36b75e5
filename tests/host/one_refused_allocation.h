#pragma once

/// Fails one allocation of this thread: the one with this index, from 0, during the object's lifetime. Counts
/// the calls of this program's throwing operator new.
class OneRefusedAllocation {
  public:
    explicit OneRefusedAllocation(int index);
    ~OneRefusedAllocation();
    OneRefusedAllocation(const OneRefusedAllocation&) = delete;
    OneRefusedAllocation& operator=(const OneRefusedAllocation&) = delete;

    /// Whether the allocation happened and was refused.
    [[nodiscard]] bool refused() const;
};
