#pragma once

// What this project uses of macOS's CoreFoundation and of its loader, in our own words: a build needs no
// header of the system for them. The names and types are the system's own, and CoreFoundation.tbd in
// cmake/macos lists the same names for the linker. script/lint checks the sources that use them for types on
// any system, script/macos links them.

#include <cstdint>

using CFTypeRef = const void*;
using CFAllocatorRef = const struct CFAllocatorDeclaredHere*;
using CFStringRef = const struct CFStringDeclaredHere*;
using CFURLRef = const struct CFURLDeclaredHere*;

using Boolean = unsigned char;
using CFIndex = long;
using CFStringEncoding = std::uint32_t;

enum CFURLPathStyle : CFIndex {
    kCFURLPOSIXPathStyle = 0,
    kCFURLHFSPathStyle = 1,
};

inline constexpr CFStringEncoding kCFStringEncodingMacRoman = 0;
inline constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;

extern "C" {
extern const CFAllocatorRef kCFAllocatorDefault;
void CFRelease(CFTypeRef object);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef text, char* buffer, CFIndex size, CFStringEncoding encoding);
CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path, CFURLPathStyle style,
                                       Boolean is_folder);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);

int _NSGetExecutablePath(char* buffer, std::uint32_t* size);
}
