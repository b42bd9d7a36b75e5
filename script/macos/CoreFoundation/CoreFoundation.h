#pragma once

// What src/texture/file/path_conversion_macos.cpp uses of macOS's CoreFoundation, in our own words:
// for script/check-macintosh, which looks at syntax and types where there is no Macintosh. Nothing is linked
// or built with it.

using CFTypeRef = const void*;
using CFStringRef = const struct CheckedString*;
using CFURLRef = const struct CheckedUrl*;
using CFAllocatorRef = const struct CheckedAllocator*;

using Boolean = unsigned char;
using CFIndex = signed long;
using CFStringEncoding = unsigned int;

enum CFURLPathStyle : CFIndex {
    kCFURLPOSIXPathStyle = 0,
    kCFURLHFSPathStyle = 1,
};

enum : CFStringEncoding {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingASCII = 0x0600,
};

extern "C" {
extern const CFAllocatorRef kCFAllocatorDefault;
void CFRelease(CFTypeRef object);
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef text, char* buffer, CFIndex size, CFStringEncoding encoding);
CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path, CFURLPathStyle style,
                                       Boolean is_folder);
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
}
