// "AEGP Proj Suite" 5, in current hosts 8, and "AEGP Item Suite" 10, in current hosts also 13: the project
// and its folders.

#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

A_Err get_project(A_long index, AEGP_ProjectH* project) {
    return host_call(
        Fn::AEGP_GetProjectByIndex, [&](CallValues& args) { args.integer("index", index); },
        [&](Session& session) -> A_Err {
            session.require_true(index == 0, "index", "is not 0, and this host has one project");
            session.require(project, "project") = session.handles.handle<AEGP_ProjectH>(1);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("project", *project); });
}

A_Err get_root_folder(AEGP_ProjectH project, AEGP_ItemH* root_folder) {
    return host_call(
        Fn::AEGP_GetProjectRootFolder, [&](CallValues& args) { args.handle("project", project); },
        [&](Session& session) -> A_Err {
            session.id(project, "project");
            session.require(root_folder, "root_folder") = session.handles.handle<AEGP_ItemH>(kRootFolder);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("root_folder", *root_folder); });
}

/// A name is narrow in one version of the suite and UTF-16 in the other.
template <SuiteId Suite, class Char>
A_Err create_folder(const Char* name, AEGP_ItemH parent_folder, AEGP_ItemH* folder) {
    return host_call(
        {Fn::AEGP_CreateNewFolder, Suite},
        [&](CallValues& args) {
            args.text("name", name);
            args.handle("parent_folder", parent_folder);
        },
        [&](Session& session) -> A_Err {
            const Id parent = session.parent_folder_id(parent_folder, name, "parent_folder");
            session.require(folder, "folder");
            const Item& made = session.add_item(ItemKind::folder, session.name(name, "name"), parent, 0);
            session.changed();
            *folder = session.handles.handle<AEGP_ItemH>(made.id);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("folder", *folder); });
}

A_Err set_item_name(AEGP_ItemH item, const A_UTF16Char* name) {
    return host_call(
        Fn::AEGP_SetItemName,
        [&](CallValues& args) {
            args.handle("item", item);
            args.text("name", name);
        },
        [&](Session& session) -> A_Err {
            const Id id = session.id(item, "item");
            session.require_true(id != kRootFolder, "item", "is the root folder");
            GivenName given = session.name(name, "name");
            Item& renamed = session.item(id);
            renamed.name = std::move(given.text);
            renamed.unicode_name = given.unicode;
            session.changed();
            return kHostErrorNone;
        });
}

template <class Table>
Table filled_project_table() {
    auto suite = reserved_table<Table, SuiteId::project>();
    suite.AEGP_GetProjectByIndex = get_project;
    suite.AEGP_GetProjectRootFolder = get_root_folder;
    return suite;
}

}  // namespace

const AEGP_ProjSuite5* project_suite() {
    static const auto table = filled_project_table<AEGP_ProjSuite5>();
    return &table;
}

const AEGP_ProjSuite8* project_suite_of_today() {
    static const auto table = filled_project_table<AEGP_ProjSuite8>();
    return &table;
}

const AEGP_ItemSuite10* item_suite() {
    static const AEGP_ItemSuite10 table = [] {
        auto suite = reserved_table<AEGP_ItemSuite10, SuiteId::item>();
        suite.AEGP_CreateNewFolder = create_folder<SuiteId::item>;
        return suite;
    }();
    return &table;
}

const AEGP_ItemSuite13* unicode_item_suite() {
    static const AEGP_ItemSuite13 table = [] {
        auto suite = reserved_table<AEGP_ItemSuite13, SuiteId::unicode_item>();
        suite.AEGP_SetItemName = set_item_name;
        suite.AEGP_CreateNewFolder = create_folder<SuiteId::unicode_item>;
        return suite;
    }();
    return &table;
}

}  // namespace embedded
