// Functions of a current host that throw. The plug-in calls some of them in destructors, so their exceptions
// become errors.

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>

#include "host/bridged_plugin.h"
#include "host/suite_handler.h"

namespace {

std::string thrown_by;  ///< the host's function that throws
bool throws_bad_alloc = false;

A_Err answer(const char* function) {
    if (thrown_by == function) {
        if (throws_bad_alloc) {
            throw std::bad_alloc();
        }
        throw std::runtime_error("the host's own");
    }
    return kHostErrorNone;
}

const AEGP_UtilitySuite7 kUtility = [] {
    AEGP_UtilitySuite7 suite = {};
    suite.AEGP_ReportInfo = [](AEGP_PluginID, const A_char*) { return answer("ReportInfo"); };
    suite.AEGP_StartUndoGroup = [](const A_char*) { return answer("StartUndoGroup"); };
    suite.AEGP_EndUndoGroup = [] { return answer("EndUndoGroup"); };
    return suite;
}();

const AEGP_StreamSuite7 kStream = [] {
    AEGP_StreamSuite7 suite = {};
    suite.AEGP_DisposeStream = [](AEGP_StreamRefH) { return answer("DisposeStream"); };
    return suite;
}();

const AEGP_PersistentDataSuite3 kPersistentData = [] {
    AEGP_PersistentDataSuite3 suite = {};
    suite.AEGP_SetData = [](AEGP_PersistentBlobH, const A_char*, const A_char*, A_u_long, const void*) {
        return answer("SetData");
    };
    return suite;
}();

/// Runs `clean_up` in a destructor, as the plug-in's guards do.
struct Guard {
    explicit Guard(std::function<void()> clean_up_with) : clean_up(std::move(clean_up_with)) {}
    ~Guard() { clean_up(); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
    std::function<void()> clean_up;
};

/// The result of a plug-in's entry that has its guards end an undo group, put back a preference and dispose
/// of a stream, and then ends with `own_result` or, with -1, with an exception of its own.
A_Err result_of_entry(A_Err own_result) {
    SPBasicSuite basic = {};
    basic.AcquireSuite = [](const char* name, A_long, const void** suite) {
        const std::string asked = name;
        *suite = asked == "AEGP Utility Suite"  ? static_cast<const void*>(&kUtility)
                 : asked == "AEGP Stream Suite" ? static_cast<const void*>(&kStream)
                                                : static_cast<const void*>(&kPersistentData);
        return answer("AcquireSuite");
    };
    basic.ReleaseSuite = [](const char*, A_long) { return answer("ReleaseSuite"); };
    BridgedPlugin::entry = [own_result](SPBasicSuite* bridge) {
        AEGP_SuiteHandler suites(bridge);
        const auto* utility = suites.UtilitySuite7();
        const auto* stream = suites.StreamSuite7();
        const auto* data = suites.PersistentDataSuite1();
        const Guard guard([=] {
            utility->AEGP_EndUndoGroup();
            data->AEGP_SetData(nullptr, "section", "key", 1, "");
            stream->AEGP_DisposeStream(nullptr);
        });
        if (own_result < 0) {
            throw std::runtime_error("the plug-in's own");
        }
        return own_result;
    };
    return EntryPointFunc(&basic, 13, 28, RecordingHost::kPluginId, nullptr);
}

TEST(HostExceptions, InCleanupAreErrors) {
    const struct {
        const char* name;
        const char* function;
        bool bad_alloc;
        A_Err own_result;
        A_Err result;
    } cases[] = {
        {"nothing throws", "", false, 0, 0},
        {"an undo group", "EndUndoGroup", false, 0, 1},
        {"a preference", "SetData", false, 0, 1},
        {"a stream", "DisposeStream", false, 0, 1},
        {"a suite", "ReleaseSuite", false, 0, 1},
        {"no memory", "EndUndoGroup", true, 0, 4},
        {"the plug-in's own error is returned", "EndUndoGroup", false, 31, 31},
        {"while an exception passes through", "EndUndoGroup", false, -1, 1},
        {"acquiring a suite", "AcquireSuite", false, 0, 13},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        thrown_by = c.function;
        throws_bad_alloc = c.bad_alloc;
        EXPECT_EQ(result_of_entry(c.own_result), c.result);
    }
    thrown_by.clear();
}

TEST(HostExceptions, OfOneCallDoNotFailTheNext) {
    thrown_by = "EndUndoGroup";
    EXPECT_EQ(result_of_entry(0), 1);
    thrown_by.clear();
    EXPECT_EQ(result_of_entry(0), 0);
}

}  // namespace
