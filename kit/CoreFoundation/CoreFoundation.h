#pragma once

// The declarations of macOS's CoreFoundation that this project uses, after Apple's documentation,
// because Linux lacks its headers. scripts/check-macos alone includes this file.

extern "C" {

using Boolean = unsigned char;
using UInt8 = unsigned char;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFStringEncoding = unsigned int;
using CFTimeInterval = double;
using CFAbsoluteTime = CFTimeInterval;
struct CFRange {
    CFIndex location;
    CFIndex length;
};
using CFTypeRef = const void*;
using CFPropertyListRef = CFTypeRef;
using CFAllocatorRef = const struct __CFAllocator*;
using CFDateRef = const struct __CFDate*;
using CFDictionaryRef = const struct __CFDictionary*;
using CFStringRef = const struct __CFString*;

constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;
extern const CFStringRef kCFPreferencesCurrentUser;
extern const CFStringRef kCFPreferencesAnyHost;

#define CFSTR(text) reinterpret_cast<CFStringRef>(__builtin___CFStringMakeConstantString(text))

void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeID CFDateGetTypeID(void);
CFTypeID CFNumberGetTypeID(void);
CFTypeID CFStringGetTypeID(void);
CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime time);
CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean isExternal);
CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator, CFDictionaryRef options,
                                     CFStringRef format, ...);
CFIndex CFStringGetLength(CFStringRef text);
CFIndex CFStringGetBytes(CFStringRef text, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                         Boolean isExternal, UInt8* buffer, CFIndex size, CFIndex* usedSize);
CFPropertyListRef CFPreferencesCopyValue(CFStringRef key, CFStringRef domain, CFStringRef user,
                                         CFStringRef host);
void CFPreferencesSetValue(CFStringRef key, CFPropertyListRef value, CFStringRef domain,
                           CFStringRef user, CFStringRef host);
Boolean CFPreferencesSynchronize(CFStringRef domain, CFStringRef user, CFStringRef host);
Boolean CFPreferencesGetAppBooleanValue(CFStringRef key, CFStringRef domain, Boolean* isValid);

} // extern "C"
