#include "cli/doctor/finding.h"

#include <algorithm>
#include <array>
#include <utility>

namespace cli::doctor {
namespace {

constexpr std::array kTable{
    FindingRow{Finding::cannot_read, "cannot-read", Severity::error,
               "The file does not exist, may not be read, or is neither a regular file nor a folder.",
               "name the plug-in itself: the .aex, the .plugin folder, the .so"},
    FindingRow{Finding::not_a_binary, "not-a-binary", Severity::error,
               "The file is no ELF, PE or Mach-O file.",
               "name the plug-in itself: the .aex, the .plugin folder, the .so"},
    FindingRow{Finding::not_a_bundle, "not-a-bundle", Severity::error,
               "The folder has no Contents, so it is no Macintosh bundle; or Mach-O code is outside of one.",
               "hosts on the Macintosh list folders *.plugin with the code in Contents/MacOS"},
    FindingRow{Finding::damaged, "damaged", Severity::error,
               "The file does not hold what its own tables say.", "copy or build it again"},
    FindingRow{Finding::wrong_kind, "wrong-kind", Severity::error,
               "The code is no library that a program can load.", "link it as a loadable module"},
    FindingRow{Finding::wrong_processor, "wrong-processor", Severity::error,
               "The code is for a processor that today's hosts do not run on.",
               "build it for x86-64, on the Macintosh for arm64 too"},
    FindingRow{Finding::wrong_name, "wrong-name", Severity::error,
               "Hosts list files *.aex on Windows and folders *.plugin on the Macintosh.", "rename it"},
    FindingRow{Finding::no_properties, "no-properties", Severity::error,
               "There is no PiPL resource, which hosts read before they load anything.",
               "script/pipl writes it; the build adds it"},
    FindingRow{Finding::properties_damaged, "properties-damaged", Severity::error,
               "The PiPL resource, or the file that it is in, ends too early or has another form.",
               "script/pipl writes one of the right form"},
    FindingRow{Finding::properties_number, "properties-number", Severity::error,
               "The PiPL resource has another number than 16000.", "give it the number 16000"},
    FindingRow{Finding::property_missing, "property-missing", Severity::error,
               "The PiPL resource lacks a property that hosts ask for.", "add it in script/pipl"},
    FindingRow{Finding::property_wrong, "property-wrong", Severity::error,
               "A property has a value that hosts do not take.", "correct it in script/pipl"},
    FindingRow{Finding::entry_missing, "entry-missing", Severity::error,
               "The code exports neither EntryPointFunc nor Main_VORTANXR_AE.",
               "export the function, and without decoration of its name"},
    FindingRow{Finding::entry_not_exported, "entry-not-exported", Severity::error,
               "The function that the PiPL resource names is not exported.",
               "export it, or name one that is exported"},
    FindingRow{Finding::plist_missing, "plist-missing", Severity::error, "There is no Contents/Info.plist.",
               "copy the bundle again, as a whole"},
    FindingRow{Finding::plist_unreadable, "plist-unreadable", Severity::error,
               "Info.plist is no property list in XML.",
               "plutil -lint says on a Macintosh what is wrong with it"},
    FindingRow{Finding::plist_value, "plist-value", Severity::error,
               "Info.plist lacks a value that hosts look at, or has another one.",
               "correct Info.plist, then sign the bundle again"},
    FindingRow{Finding::executable_missing, "executable-missing", Severity::error,
               "The file that CFBundleExecutable names is not in Contents/MacOS.",
               "copy the bundle again, as a whole"},
    FindingRow{Finding::library_missing, "library-missing", Severity::error,
               "The code needs a library that is not where the system looks for it.",
               "install it, put it beside the plug-in, or link it in"},
    FindingRow{Finding::not_loadable, "not-loadable", Severity::error,
               "The system does not load the file here.", "the system's own words say what it misses"},
    FindingRow{Finding::load_crashed, "load-crashed", Severity::error,
               "The process that loaded the plug-in came to an end of its own.",
               "vxr doctor --load does the same in one process, for a debugger"},
    FindingRow{Finding::load_timed_out, "load-timed-out", Severity::error,
               "The plug-in did not return from its entry in time.",
               "vxr doctor --load does the same in one process, for a debugger"},
    FindingRow{Finding::entry_failed, "entry-failed", Severity::error,
               "The plug-in was loaded and said that it cannot work in this host.",
               "its message, or the suite that it asked for in vain, says why"},
    FindingRow{Finding::plist_binary, "plist-binary", Severity::warning,
               "Info.plist is a binary property list, which is not looked into.",
               "plutil -convert xml1 writes it as XML"},
    FindingRow{Finding::property_unusual, "property-unusual", Severity::warning,
               "A property has another value than plug-ins of this kind have.",
               "hosts that are strict may not list it"},
    FindingRow{Finding::one_generation, "one-generation", Severity::warning,
               "The code exports the entry of one generation of hosts only.",
               "the other generation does not list it"},
    FindingRow{Finding::processor_missing, "processor-missing", Severity::warning,
               "The bundle has code for one of the Macintosh's two processors.",
               "build it for both: CMAKE_OSX_ARCHITECTURES is arm64;x86_64"},
    FindingRow{Finding::not_signed, "not-signed", Severity::warning,
               "The code for a Macintosh has no signature; Arm processors run none without.",
               "codesign signs it; docs/hosts.md has the command"},
    FindingRow{
        Finding::library_elsewhere, "library-elsewhere", Severity::warning,
        "The code needs a library that does not come with the system, or can do without one that is missing.",
        "make sure that it is installed wherever the plug-in is"},
    FindingRow{Finding::registers_nothing, "registers-nothing", Severity::warning,
               "The plug-in is loaded and offers neither an importer nor an input module.",
               "it may offer what the embedded host does not look at"},
};

}  // namespace

std::span<const FindingRow> finding_table() {
    return kTable;
}

const diagnostic::CodeInfo& code_info(Finding finding) {
    static const auto kInfos = [] {
        std::array<diagnostic::CodeInfo, kTable.size()> infos{};
        std::transform(kTable.begin(), kTable.end(), infos.begin(), [](const FindingRow& row) {
            return diagnostic::CodeInfo{row.code, row.severity, row.meaning, row.remedy};
        });
        return infos;
    }();
    return kInfos[static_cast<std::size_t>(finding)];
}

Diagnostic found(Finding finding, Place at, std::string reason, std::vector<std::string> effects) {
    const FindingRow& row = kTable[static_cast<std::size_t>(finding)];
    Diagnostic diagnostic = diagnostic::make(finding, std::move(at), std::move(reason));
    diagnostic.effects = std::move(effects);
    diagnostic.effects.emplace_back(row.remedy);
    return diagnostic;
}

}  // namespace cli::doctor
