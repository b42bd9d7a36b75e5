#pragma once

// The part of a host that an input module sees, called from many threads at once.

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/current_interface.h"
#include "support/host_generation.h"

/// The host's record of a footage item. The thread that opens it writes it; every thread that draws it reads
/// it.
struct AEIO_SeqSpec {
    std::string path;
    void* options = nullptr;
    A_long width_px = 0;
    A_long height_px = 0;
};

/// A frame's bytes, including padding and the fill around the image: two frames are equal only if exactly the
/// same bytes were written.
struct DrawnFrame {
    A_Err code = kHostErrorNone;
    std::vector<unsigned char> bytes;
    friend bool operator==(const DrawnFrame&, const DrawnFrame&) = default;
};

/// The frame that the host requests.
struct FrameGeometry {
    A_long width_px = 0;
    A_long height_px = 0;
    A_long padding_bytes = 0;  ///< after every row
    bool upwards = false;      ///< rows run upwards in memory
};

/// Loads the bundle and calls its input module. **Its suites take no lock and order nothing between
/// threads**: they count with relaxed atomics, so that the host's own synchronisation does not hide a race in
/// the bundle. Only one host may exist at a time.
class ThreadedHost {
  public:
    /// Throws std::runtime_error if the bundle does not load.
    ThreadedHost(const std::string& bundle, HostGeneration generation);
    ~ThreadedHost();
    ThreadedHost(const ThreadedHost&) = delete;
    ThreadedHost& operator=(const ThreadedHost&) = delete;

    /// A footage item; the destructor disposes of it.
    class Item {
      public:
        /// Opens `path`; `code()` is the module's result.
        Item(ThreadedHost& host, const std::string& path);
        /// An item of a reopened project: it has a path, but no options of the module. Current hosts only.
        struct Reopened {};
        Item(ThreadedHost& host, const std::string& path, Reopened reopened);
        ~Item();
        Item(const Item&) = delete;
        Item& operator=(const Item&) = delete;

        [[nodiscard]] A_Err code() const { return code_; }
        [[nodiscard]] A_long width_px() const { return footage_.width_px; }
        [[nodiscard]] A_long height_px() const { return footage_.height_px; }
        /// Safe on several threads at a time, like the module's callback.
        [[nodiscard]] DrawnFrame draw(const FrameGeometry& geometry) const;

      private:
        ThreadedHost& host_;
        AEIO_SeqSpec footage_;
        mutable AEIO_SeqSpec* footage_pointer_ = &footage_;
        A_Err code_ = kHostErrorNone;
    };

    /// The number of the module's errors so far: handles freed twice or while locked, unlocks without a lock,
    /// unknown suites.
    [[nodiscard]] long misuses() const { return misuses_; }
    [[nodiscard]] long reports() const { return reports_; }
    /// The number of memory handles that are not freed.
    [[nodiscard]] long handles_lent() const { return handles_lent_; }
    /// The number of suites that are not released.
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
    void keep_death_hook(AEGP_DeathHook hook) { death_hook_ = hook; }
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
    AEGP_DeathHook death_hook_ = nullptr;
    std::optional<AEIO_FunctionBlock2> classic_module_;
    std::optional<AEIO_FunctionBlock4> current_module_;
};
