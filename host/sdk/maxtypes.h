// Basic types of the host: the platform's names, times and class identities.
#pragma once

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
using BOOL = int;
using BYTE = unsigned char;
using WORD = unsigned short;
using DWORD = unsigned int;  // 32 bits everywhere, as on Windows
using ULONG = DWORD;
using TCHAR = char;
using LPVOID = void*;
using HWND = struct HWND__*;
using HINSTANCE = struct HINSTANCE__*;
using LPTHREAD_START_ROUTINE = DWORD (*)(LPVOID);
#define WINAPI
#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif
#endif

static_assert(sizeof(TCHAR) == 1, "the host's texts are 8-bit");
static_assert(sizeof(DWORD) == 4);

using TimeValue = int;    // ticks; GetTicksPerFrame() of them make a frame
using SClass_ID = ULONG;  // the family of a class: geometry, material, ...
using MtlID = unsigned short;

// Identity of one class within its family.
class Class_ID {
 public:
  constexpr Class_ID() = default;
  constexpr Class_ID(ULONG partA, ULONG partB) : m_a(partA), m_b(partB) {}
  constexpr ULONG PartA() const { return m_a; }
  constexpr ULONG PartB() const { return m_b; }
  constexpr bool operator==(const Class_ID& other) const {
    return m_a == other.m_a && m_b == other.m_b;
  }
  constexpr bool operator!=(const Class_ID& other) const { return !(*this == other); }

 private:
  ULONG m_a = 0;
  ULONG m_b = 0;
};

// A range of time in ticks; both ends belong to it.
class Interval {
 public:
  Interval() = default;
  Interval(TimeValue start, TimeValue end) : m_start(start), m_end(end) {}
  TimeValue Start() const { return m_start; }
  TimeValue End() const { return m_end; }
  void Set(TimeValue start, TimeValue end) { *this = Interval(start, end); }

 private:
  TimeValue m_start = 0;
  TimeValue m_end = 0;
};
