// "PF ANSI Suite" 1, mathematics and text, and "PF AE Adv App Suite" 1, which bundles acquire and never call.

#include <cstring>

#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"
#include "system/trigonometry.h"

namespace embedded {
namespace {

/// These functions return values, not errors, and work without a host.
A_FpLong evaluate(Fn function, A_FpLong (*mathematics)(A_FpLong), A_FpLong x) {
    const A_FpLong value = mathematics(x);
    if (Session* session = Session::active()) {
        CallScope call(*session, function);
        if (call.logged()) {
            call.args().number("x", x);
            call.set_result(value);
        }
    }
    return value;
}

A_FpLong cosine(A_FpLong x) {
    return evaluate(Fn::cos, os::cosine, x);
}

A_FpLong sine(A_FpLong x) {
    return evaluate(Fn::sin, os::sine, x);
}

A_char* copy_string(A_char* destination, const A_char* source) {
    Session* session = Session::active();
    if (session == nullptr) {
        return destination;
    }
    CallScope call(*session, Fn::strcpy);
    if (call.logged()) {
        call.args().text("source", source);
    }
    if (destination == nullptr || source == nullptr) {
        session->found(RuleViolation::bad_argument,
                       destination == nullptr ? "destination is null" : "source is null");
        return destination;
    }
    std::memmove(destination, source, std::strlen(source) + 1);
    if (call.logged()) {
        call.out().text("destination", destination);
        call.set_result(destination);
    }
    return destination;
}

}  // namespace

const PF_ANSISuite1* ansi_suite() {
    static const PF_ANSISuite1 table = [] {
        auto suite = reserved_table<PF_ANSISuite1, SuiteId::ansi>();
        suite.cos = cosine;
        suite.sin = sine;
        suite.strcpy = copy_string;
        return suite;
    }();
    return &table;
}

const PF_AEAdvAppSuite1* adv_app_suite() {
    static const PF_AEAdvAppSuite1 table = reserved_table<PF_AEAdvAppSuite1, SuiteId::adv_app>();
    return &table;
}

}  // namespace embedded
