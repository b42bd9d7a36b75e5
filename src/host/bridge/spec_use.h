#pragma once

#include <memory>
#include <vector>

#include "host/bridge/frame_reduction.h"
#include "host/current_interface.h"

namespace bridge {

/// Memory handles that the host neither knows nor frees. One thread at a time may change it; any number may
/// ask for addresses.
class OwnMemory {
  public:
    /// Allocates cleared memory. 4 when memory is short.
    A_Err allocate(AEGP_MemSize size_bytes, AEGP_MemHandle* handle);
    A_Err free(AEGP_MemHandle handle);
    /// Null for a handle that is not one of these.
    [[nodiscard]] void* address(AEGP_MemHandle handle) const;

  private:
    struct Block;
    struct Deleted {
        void operator()(Block* block) const;
    };
    std::vector<std::unique_ptr<Block, Deleted>> blocks_;
};

/// An in-spec while a callback of an input module works on it, on the thread of that callback. It answers the
/// module's questions in place of the host and sees what the module sets. Lives on the stack of the callback.
class SpecUse {
  public:
    explicit SpecUse(AEIO_InSpecH spec);
    virtual ~SpecUse();
    SpecUse(const SpecUse&) = delete;
    SpecUse& operator=(const SpecUse&) = delete;

    /// The innermost use of this in-spec on this thread; null without one.
    static SpecUse* of(AEIO_InSpecH spec);
    /// The memory for a module's new handles while it loads a file for the bridge; null when the host makes
    /// them.
    static OwnMemory* memory_for_new_handles();
    /// Whether the bridge itself reports what goes wrong on this thread. The module's reports, which name no
    /// file, are then dropped.
    static bool reports_are_the_bridges();
    /// The memory that this handle belongs to; null when it is not the bridge's.
    static OwnMemory* memory_with(AEGP_MemHandle handle);

    [[nodiscard]] AEIO_InSpecH spec() const { return spec_; }

    // What the module asks for and sets. Unless overridden, these call the host.
    virtual A_Err get_options(void** options);
    virtual A_Err set_options(void* options, void** old_options);
    virtual A_Err set_dimensions(A_long width_px, A_long height_px);
    /// False for an in-spec that the host does not have and must not hear of.
    [[nodiscard]] virtual bool is_the_hosts() const { return true; }

  protected:
    [[nodiscard]] virtual bool bridge_reports() const { return false; }
    /// The bridge's memory that the module may use; null without one.
    [[nodiscard]] virtual OwnMemory* memory() const { return nullptr; }

  private:
    AEIO_InSpecH spec_;
    SpecUse* outer_;
};

/// An in-spec that the bridge lends to a module and the host does not know. It keeps what the module
/// attaches.
class LentSpec final : public SpecUse {
  public:
    /// Handles are made in `memory`, which must live longer.
    explicit LentSpec(OwnMemory& memory, void* options = nullptr)
        : SpecUse(&content_), memory_(memory), options_(options) {}

    [[nodiscard]] void* options() const { return options_; }
    [[nodiscard]] FrameSize size() const { return size_; }

    A_Err get_options(void** options) override;
    A_Err set_options(void* options, void** old_options) override;
    A_Err set_dimensions(A_long width_px, A_long height_px) override;
    [[nodiscard]] bool is_the_hosts() const override { return false; }

  protected:
    [[nodiscard]] bool bridge_reports() const override { return true; }
    [[nodiscard]] OwnMemory* memory() const override { return &memory_; }

  private:
    AEIO_SeqSpec* content_ = nullptr;  // what the handle points to; never read
    OwnMemory& memory_;
    void* options_;
    FrameSize size_;
};

}  // namespace bridge
