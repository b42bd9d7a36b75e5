#pragma once

// Every argument that the host checks has a row that says what is wrong with it and which rule that breaks.
// Each group of suites has a source with its tables.

#include <gtest/gtest.h>

#include <functional>

#include "embedded/bundle_side.h"

struct BadArgument {
    const char* name;
    embedded::RuleViolation violation;
    std::function<A_Err(BundleSide&)> call;
};

/// A handle that the host never gave out.
template <class H>
H foreign() {
    static double not_a_handle[2] = {};
    return reinterpret_cast<H>(not_a_handle);
}

/// Makes each call on a host of its own, with an undo group open unless the row is about undo groups.
template <class Table>
void expect_refused(const Table& cases) {
    using embedded::RuleViolation;
    for (const BadArgument& c : cases) {
        SCOPED_TRACE(c.name);
        BundleSide bundle;
        bundle.utility_suite->AEGP_StartUndoGroup("test");
        if (c.violation == RuleViolation::undo_group_unbalanced) {
            bundle.utility_suite->AEGP_EndUndoGroup();
        }
        const A_Err result = c.call(bundle);
        EXPECT_NE(result, kHostErrorNone);
        ASSERT_EQ(bundle.host.conformance().violations().size(), 1U) << bundle.host.conformance().to_text();
        const diagnostic::Diagnostic& found = bundle.host.conformance().violations().front();
        EXPECT_EQ(found.code, c.violation) << bundle.host.conformance().to_text();
        EXPECT_TRUE(found.at.line.has_value()) << "the finding does not name the call";
    }
}
