#pragma once

#include <filesystem>
#include <string>

#include "support/made_binary.h"
#include "support/temporary_folder.h"

/// A macOS bundle folder as hosts require it; a test changes one member. An empty text leaves its file out.
struct MadePlugin {
    std::string folder = "Sample.plugin";
    std::string executable = "Sample";
    std::string package_type = "AEgx";
    std::string signature = "FXTC";
    std::string executable_key = "Sample";
    std::string plist = {};  ///< instead of the one made from the members above
    bool has_plist = true;
    std::string code = made_universal({made_mach_o({.processor = 0x01000007}), made_mach_o()});
    std::string resources_name = "Sample.rsrc";
    std::string resources = made_resource_file();
};

/// Writes the bundle and returns the path of its folder.
inline std::string write_plugin(const TemporaryFolder& where, const MadePlugin& plugin = {}) {
    const std::string contents = plugin.folder + "/Contents";
    for (const char* const folder : {"/MacOS", "/Resources"}) {
        std::filesystem::create_directories(where.path(contents + folder));
    }
    if (plugin.has_plist) {
        std::string plist = plugin.plist;
        if (plist.empty()) {
            plist = "<plist version=\"1.0\"><dict>";
            for (const auto& [key, value] : {std::pair("CFBundlePackageType", plugin.package_type),
                                             std::pair("CFBundleSignature", plugin.signature),
                                             std::pair("CFBundleExecutable", plugin.executable_key)}) {
                if (!value.empty()) {
                    plist.append("<key>")
                        .append(key)
                        .append("</key><string>")
                        .append(value)
                        .append("</string>");
                }
            }
            plist += "</dict></plist>";
        }
        where.write(contents + "/Info.plist", plist);
    }
    if (!plugin.code.empty()) {
        where.write(contents + "/MacOS/" + plugin.executable, plugin.code);
    }
    if (!plugin.resources.empty()) {
        where.write(contents + "/Resources/" + plugin.resources_name, plugin.resources);
    }
    return where.path(plugin.folder);
}
