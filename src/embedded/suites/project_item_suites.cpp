// "AEGP Proj Suite" 5, in current hosts 8, and "AEGP Item Suite" 10: the project and its folders.

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

A_Err create_folder(const A_char* name, AEGP_ItemH parent_folder, AEGP_ItemH* folder) {
    return host_call(
        Fn::AEGP_CreateNewFolder,
        [&](CallValues& args) {
            args.text("name", name);
            args.handle("parent_folder", parent_folder);
        },
        [&](Session& session) -> A_Err {
            const Id parent = session.folder_id(parent_folder, "parent_folder");
            session.require(folder, "folder");
            const Item& made = session.add_item(ItemKind::folder, session.name(name, "name"), parent, 0);
            session.changed();
            *folder = session.handles.handle<AEGP_ItemH>(made.id);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("folder", *folder); });
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
        suite.AEGP_CreateNewFolder = create_folder;
        return suite;
    }();
    return &table;
}

}  // namespace embedded
