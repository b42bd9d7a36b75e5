#include "cli/doctor/finding.h"

namespace cli::doctor {
namespace {

constexpr FindingTable kTable = [] {
    using enum diagnostic::Severity;
    using enum Finding;
    return FindingTable{{
        {cannot_read,
         {"cannot-read", error,
          "The file does not exist, may not be read, or is neither a regular file nor a folder.",
          "name the plug-in itself: the .aex, the .plugin folder, the .so"}},
        {not_a_binary,
         {"not-a-binary", error, "The file is no ELF, PE or Mach-O file.",
          "name the plug-in itself: the .aex, the .plugin folder, the .so"}},
        {not_a_bundle,
         {"not-a-bundle", error,
          "The folder has no Contents, so it is no Macintosh bundle; or Mach-O code is outside of one.",
          "hosts on the Macintosh list folders *.plugin with the code in Contents/MacOS"}},
        {damaged,
         {"damaged", error, "The file does not hold what its own tables say.", "copy or build it again"}},
        {wrong_kind,
         {"wrong-kind", error, "The code is no library that a program can load.",
          "link it as a loadable module"}},
        {wrong_processor,
         {"wrong-processor", error, "The code is for a processor that today's hosts do not run on.",
          "build it for x86-64, on the Macintosh for arm64 too"}},
        {wrong_name,
         {"wrong-name", error, "Hosts list files *.aex on Windows and folders *.plugin on the Macintosh.",
          "rename it"}},
        {no_properties,
         {"no-properties", error, "There is no PiPL resource, which hosts read before they load anything.",
          "script/pipl writes it; the build adds it"}},
        {properties_damaged,
         {"properties-damaged", error,
          "The PiPL resource, or the file that it is in, ends too early or has another form.",
          "script/pipl writes one of the right form"}},
        {properties_number,
         {"properties-number", error, "The PiPL resource has another number than 16000.",
          "give it the number 16000"}},
        {property_missing,
         {"property-missing", error, "The PiPL resource lacks a property that hosts ask for.",
          "add it in script/pipl"}},
        {property_wrong,
         {"property-wrong", error, "A property has a value that hosts do not take.",
          "correct it in script/pipl"}},
        {entry_missing,
         {"entry-missing", error, "The code exports neither EntryPointFunc nor Main_VORTANXR_AE.",
          "export the function, and without decoration of its name"}},
        {entry_not_exported,
         {"entry-not-exported", error, "The function that the PiPL resource names is not exported.",
          "export it, or name one that is exported"}},
        {plist_missing,
         {"plist-missing", error, "There is no Contents/Info.plist.", "copy the bundle again, as a whole"}},
        {plist_unreadable,
         {"plist-unreadable", error, "Info.plist is no property list in XML.",
          "plutil -lint says on a Macintosh what is wrong with it"}},
        {plist_value,
         {"plist-value", error, "Info.plist lacks a value that hosts look at, or has another one.",
          "correct Info.plist, then sign the bundle again"}},
        {executable_missing,
         {"executable-missing", error, "The file that CFBundleExecutable names is not in Contents/MacOS.",
          "copy the bundle again, as a whole"}},
        {library_missing,
         {"library-missing", error, "The code needs a library that is not where the system looks for it.",
          "install it, put it beside the plug-in, or link it in"}},
        {not_loadable,
         {"not-loadable", error, "The system does not load the file here.",
          "the system's own words say what it misses"}},
        {load_crashed,
         {"load-crashed", error, "The process that loaded the plug-in came to an end of its own.",
          "vxr doctor --load does the same in one process, for a debugger"}},
        {load_timed_out,
         {"load-timed-out", error, "The plug-in did not return from its entry in time.",
          "vxr doctor --load does the same in one process, for a debugger"}},
        {entry_failed,
         {"entry-failed", error, "The plug-in was loaded and said that it cannot work in this host.",
          "its message, or the suite that it asked for in vain, says why"}},
        {plist_binary,
         {"plist-binary", warning, "Info.plist is a binary property list, which is not looked into.",
          "plutil -convert xml1 writes it as XML"}},
        {property_unusual,
         {"property-unusual", warning, "A property has another value than plug-ins of this kind have.",
          "hosts that are strict may not list it"}},
        {one_generation,
         {"one-generation", warning, "The code exports the entry of one generation of hosts only.",
          "the other generation does not list it"}},
        {processor_missing,
         {"processor-missing", warning, "The bundle has code for one of the Macintosh's two processors.",
          "build it for both: CMAKE_OSX_ARCHITECTURES is arm64;x86_64"}},
        {not_signed,
         {"not-signed", warning,
          "The code for a Macintosh has no signature; Arm processors run none without.",
          "codesign signs it; docs/hosts.md has the command"}},
        {library_elsewhere,
         {"library-elsewhere", warning,
          "The code needs a library that does not come with the system, or can do without one that is "
          "missing.",
          "make sure that it is installed wherever the plug-in is"}},
        {registers_nothing,
         {"registers-nothing", warning,
          "The plug-in is loaded and offers neither an importer nor an input module.",
          "it may offer what the embedded host does not look at"}},
    }};
}();
static_assert(diagnostic::in_order(kTable, Finding::registers_nothing));

}  // namespace

const FindingTable& finding_table() {
    return kTable;
}

const diagnostic::CodeInfo& code_info(Finding finding) {
    return kTable[static_cast<std::size_t>(finding)].info;
}

}  // namespace cli::doctor
