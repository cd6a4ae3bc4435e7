// UTF-16 to UTF-8 and back through the converting strings, each beside its floor in the same run: one
// system call into a buffer that is ready. The closing lines print the ratio of the two. The string must
// also have a block of the heap to keep its text in, which the floor does not count; `heap_block` is its
// price.

#include <windows.h>

#include <string>

#include "bench/RatioReporter.h"
#include "common/client/utility/src/CmmConvert.h"

namespace {

constexpr size_t kUnits = 100;

// 100 UTF-16 units of the named kind of text.
std::wstring MakeText(const std::string& kind) {
  std::wstring pattern;
  if (kind == "ascii") pattern = L"{\"commandId\":2,\"name\":\"Velm Room\"}";
  if (kind == "latin")
    pattern =
        L"Gr\x00FC\x00DF"
        L"e aus M\x00FCnchen, \x00E0 bient\x00F4t! ";
  if (kind == "chinese") pattern = L"\x4F1A\x8BAE\x5BA4\x97F3\x9891\x8BBE\x5907";
  std::wstring text;
  while (text.size() < kUnits)
    text += pattern;
  text.resize(kUnits);
  return text;
}

void ToUtf8(benchmark::State& state, const std::wstring& text) {
  for (auto _ : state) {
    Cmm::A2BT<65001, wchar_t, char> utf8(text.data(), text.size());
    benchmark::DoNotOptimize(utf8.c_str());
  }
}

void ToUtf8Floor(benchmark::State& state, const std::wstring& text) {
  std::string buffer(4 * text.size(), '\0');
  for (auto _ : state) {
    const int written = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                            buffer.data(), static_cast<int>(buffer.size()), nullptr, nullptr);
    benchmark::DoNotOptimize(written);
    benchmark::ClobberMemory();
  }
}

void ToUtf16(benchmark::State& state, const std::string& utf8) {
  for (auto _ : state) {
    Cmm::A2BT<65001, char, wchar_t> text(utf8.data(), utf8.size());
    benchmark::DoNotOptimize(text.c_str());
  }
}

void ToUtf16Floor(benchmark::State& state, const std::string& utf8) {
  std::wstring buffer(utf8.size(), L'\0');
  for (auto _ : state) {
    const int written = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()),
                                            buffer.data(), static_cast<int>(buffer.size()));
    benchmark::DoNotOptimize(written);
    benchmark::ClobberMemory();
  }
}

void HeapBlock(benchmark::State& state, size_t size) {
  for (auto _ : state) {
    void* block = ::operator new(size);
    benchmark::DoNotOptimize(block);
    ::operator delete(block);
  }
}

}  // namespace

int main(int argc, char** argv) {
  for (const char* kind : {"ascii", "latin", "chinese"}) {
    const std::wstring text = MakeText(kind);
    const std::string utf8 = Cmm::A2BT<65001, wchar_t, char>(text).GetCData();
    velm_bench::Register(std::string("to_utf8_") + kind, ToUtf8, text);
    velm_bench::Register(std::string("to_utf8_") + kind + velm_bench::kFloorSuffix, ToUtf8Floor, text);
    velm_bench::Register(std::string("to_utf16_") + kind, ToUtf16, utf8);
    velm_bench::Register(std::string("to_utf16_") + kind + velm_bench::kFloorSuffix, ToUtf16Floor, utf8);
  }
  velm_bench::Register("heap_block", HeapBlock, kUnits + 1);
  return velm_bench::RunBenchmarks(argc, argv);
}
