#pragma once

// The part of a host that an input module sees, for a host that calls it from many threads at once.

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/current_interface.h"
#include "support/host_generation.h"

/// What a host keeps of one footage item. Set by the thread that opens it, read by all that draw it.
struct AEIO_SeqSpec {
    void* options = nullptr;
    A_long width_px = 0;
    A_long height_px = 0;
};

/// A frame's bytes, padding and the fill around the picture included: two are the same only if nobody wrote
/// where the other did not.
struct DrawnFrame {
    A_Err code = kHostErrorNone;
    std::vector<unsigned char> bytes;
    friend bool operator==(const DrawnFrame&, const DrawnFrame&) = default;
};

/// The frame that is asked for.
struct FrameGeometry {
    A_long width_px = 0;
    A_long height_px = 0;
    A_long padding_bytes = 0;  ///< behind every row
    bool upwards = false;      ///< rows run upwards in memory
};

/// Loads the bundle and calls its input module. **Its suites take no lock and order nothing between threads**
/// (what they count, they count with relaxed atomics), so that a race in the bundle is not hidden behind the
/// host's own synchronisation. One at a time is alive.
class ThreadedHost {
  public:
    /// Throws std::runtime_error when the bundle does not load.
    ThreadedHost(const std::string& bundle, HostGeneration generation);
    ~ThreadedHost();
    ThreadedHost(const ThreadedHost&) = delete;
    ThreadedHost& operator=(const ThreadedHost&) = delete;

    /// One footage item, disposed of with the object.
    class Item {
      public:
        /// Opens `path`; `code()` is the module's result.
        Item(ThreadedHost& host, const std::string& path);
        ~Item();
        Item(const Item&) = delete;
        Item& operator=(const Item&) = delete;

        [[nodiscard]] A_Err code() const { return code_; }
        [[nodiscard]] A_long width_px() const { return footage_.width_px; }
        [[nodiscard]] A_long height_px() const { return footage_.height_px; }
        /// Safe on several threads at a time, like the module's callback behind it.
        [[nodiscard]] DrawnFrame draw(const FrameGeometry& geometry) const;

      private:
        ThreadedHost& host_;
        AEIO_SeqSpec footage_;
        mutable AEIO_SeqSpec* footage_pointer_ = &footage_;
        A_Err code_ = kHostErrorNone;
    };

    /// What the module did wrong so far: a handle freed twice or while locked, an unlock without a lock, an
    /// unknown suite.
    [[nodiscard]] long misuses() const { return misuses_; }
    [[nodiscard]] long reports() const { return reports_; }
    /// Handles that were lent and not given back.
    [[nodiscard]] long handles_lent() const { return handles_lent_; }
    /// Suites that were acquired and not given back.
    [[nodiscard]] long suites_lent() const { return suites_lent_; }

    // For the suites' functions.
    [[nodiscard]] static ThreadedHost& current();
    static void count(std::atomic<long>& counter, long by = 1) {
        counter.fetch_add(by, std::memory_order_relaxed);
    }
    std::atomic<long> misuses_{0};
    std::atomic<long> reports_{0};
    std::atomic<long> handles_lent_{0};
    std::atomic<long> suites_lent_{0};
    std::atomic<AEGP_MemHandle> newest_handle_{nullptr};
    void keep_module(const AEIO_FunctionBlock2& functions) { classic_module_ = functions; }
    void keep_module(const AEIO_FunctionBlock4& functions) { current_module_ = functions; }
    const HostGeneration generation_;

  private:
    template <typename Function>
    Function entry(const char* name) const;
    A_Err enter();
    A_Err init_in_spec(const std::string& path, AEIO_InSpecH spec);
    A_Err draw_sparse_frame(AEIO_InSpecH spec, PF_LayerDef* world);
    A_Err dispose_in_spec(AEIO_InSpecH spec);

    struct Unload {
        void operator()(void* bundle) const;
    };

    std::unique_ptr<void, Unload> bundle_;
    SPBasicSuite basic_suite_ = {};
    AEIO_BasicData basic_ = {};
    std::optional<AEIO_FunctionBlock2> classic_module_;
    std::optional<AEIO_FunctionBlock4> current_module_;
};
