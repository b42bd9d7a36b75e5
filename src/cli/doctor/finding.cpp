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
         {"not-a-binary", error, "The file is not an ELF, PE or Mach-O file.",
          "name the plug-in itself: the .aex, the .plugin folder, the .so"}},
        {not_a_bundle,
         {"not-a-bundle", error,
          "The folder has no Contents, so it is not a macOS bundle; or Mach-O code is outside of a bundle.",
          "hosts on macOS list *.plugin folders with the code in Contents/MacOS"}},
        {damaged,
         {"damaged", error, "The file does not contain what its own tables say.", "copy or build it again"}},
        {wrong_kind,
         {"wrong-kind", error, "The code is not a library that a program can load.",
          "link it as a loadable module"}},
        {wrong_processor,
         {"wrong-processor", error, "The code is for a processor that current hosts do not run on.",
          "build it for x86-64, and on macOS for arm64 too"}},
        {wrong_name,
         {"wrong-name", error, "Hosts list *.aex files on Windows and *.plugin folders on macOS.",
          "rename it"}},
        {no_properties,
         {"no-properties", error, "There is no PiPL resource, which hosts read before they load anything.",
          "script/pipl writes it, and the build adds it"}},
        {properties_damaged,
         {"properties-damaged", error,
          "The PiPL resource, or the file that contains it, ends too early or is in another form.",
          "script/pipl writes one in the right form"}},
        {properties_number,
         {"properties-number", error, "The number of the PiPL resource is not 16000.",
          "give it the number 16000"}},
        {property_missing,
         {"property-missing", error, "The PiPL resource lacks a property that hosts require.",
          "add it in script/pipl"}},
        {property_wrong,
         {"property-wrong", error, "A property has a value that hosts do not accept.",
          "correct it in script/pipl"}},
        {entry_missing,
         {"entry-missing", error, "The code exports neither EntryPointFunc nor Main_VORTANXR_AE.",
          "export the function under its undecorated name"}},
        {entry_not_exported,
         {"entry-not-exported", error, "The function that the PiPL resource names is not exported.",
          "export it, or name one that is exported"}},
        {plist_missing,
         {"plist-missing", error, "There is no Contents/Info.plist.", "copy the whole bundle again"}},
        {plist_unreadable,
         {"plist-unreadable", error, "Info.plist is not a property list in XML.",
          "plutil -lint on macOS says what is wrong with it"}},
        {plist_value,
         {"plist-value", error, "A value that hosts read in Info.plist is missing or wrong.",
          "correct Info.plist, then sign the bundle again"}},
        {executable_missing,
         {"executable-missing", error, "The file that CFBundleExecutable names is not in Contents/MacOS.",
          "copy the whole bundle again"}},
        {library_missing,
         {"library-missing", error, "The code needs a library that is not where the system looks for it.",
          "install it, put it beside the plug-in, or link it in"}},
        {not_loadable,
         {"not-loadable", error, "This system cannot load the file.",
          "the system's own message says what is missing"}},
        {load_crashed,
         {"load-crashed", error, "The process that loaded the plug-in ended on its own.",
          "vxr doctor --load does the same in one process, for a debugger"}},
        {load_timed_out,
         {"load-timed-out", error, "The plug-in did not return from its entry point in time.",
          "vxr doctor --load does the same in one process, for a debugger"}},
        {entry_failed,
         {"entry-failed", error, "The plug-in was loaded and reported that it cannot work in this host.",
          "its message, or the suite that it could not get, says why"}},
        {plist_binary,
         {"plist-binary", warning, "Info.plist is a binary property list, which is not read here.",
          "plutil -convert xml1 writes it as XML"}},
        {property_unusual,
         {"property-unusual", warning, "A property has a value that is unusual for plug-ins of this kind.",
          "strict hosts may not list it"}},
        {one_generation,
         {"one-generation", warning, "The code exports the entry point of only one generation of hosts.",
          "the other generation does not list it"}},
        {processor_missing,
         {"processor-missing", warning, "The bundle has code for only one of the two processors of macOS.",
          "build it for both: CMAKE_OSX_ARCHITECTURES is arm64;x86_64"}},
        {not_signed,
         {"not-signed", warning,
          "The code for macOS has no signature; Arm processors do not run unsigned code.",
          "codesign signs it; docs/hosts.md has the command"}},
        {library_elsewhere,
         {"library-elsewhere", warning,
          "The code needs a library that does not come with the system, or can run without one that is "
          "missing.",
          "make sure that it is installed wherever the plug-in is"}},
        {registers_nothing,
         {"registers-nothing", warning,
          "The plug-in was loaded and registered neither an importer nor an input module.",
          "it may offer something that the embedded host does not look at"}},
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
