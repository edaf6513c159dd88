// Date-time text and calendar arithmetic: the conversions that every signing
// time, CRL and OCSP time passes through.
#include <benchmark/benchmark.h>
#include <korvex/core/DateAdd.h>
#include <korvex/core/DateTime.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr uint64_t kYear10000Ticks = 2650467744000000000ull;

// A fixed set of microsecond-resolution dates between 1601 and 9999.
std::vector<Korvex::CDateTime> sampleDates() {
  std::mt19937_64 random(1601);
  std::uniform_int_distribution<uint64_t> microseconds(0, kYear10000Ticks / 10 - 1);
  std::vector<Korvex::CDateTime> dates;
  for (int i = 0; i < 1024; ++i) {
    const uint64_t ticks = microseconds(random) * 10;
    _FILETIME ft;
    ft.dwLowDateTime = static_cast<DWORD>(ticks);
    ft.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
    dates.emplace_back(ft);
  }
  return dates;
}

std::vector<std::string> sampleTexts() {
  std::vector<std::string> texts;
  for (Korvex::CDateTime const& d : sampleDates()) texts.push_back(d.getGeneralizedTime().c_str());
  return texts;
}

void BM_DateFromGeneralizedTime(benchmark::State& state) {
  const std::vector<std::string> texts = sampleTexts();
  std::size_t i = 0;
  for (auto _ : state) {
    Korvex::CDateTime d(texts[i++ % texts.size()].c_str());
    benchmark::DoNotOptimize(d);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DateFromGeneralizedTime);

void BM_DateToGeneralizedTime(benchmark::State& state) {
  const std::vector<Korvex::CDateTime> dates = sampleDates();
  std::size_t i = 0;
  for (auto _ : state) {
    Korvex::CStringProxy text = dates[i++ % dates.size()].getGeneralizedTime();
    benchmark::DoNotOptimize(text.c_str());
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DateToGeneralizedTime);

void BM_SpanToText(benchmark::State& state) {
  const std::vector<Korvex::CDateTime> dates = sampleDates();
  const Korvex::CDateTime epoch(0, 0);
  std::vector<Korvex::CDateTimeSpan> spans;
  for (Korvex::CDateTime const& d : dates) {
    if (epoch < d) spans.push_back(d - epoch);
  }
  std::size_t i = 0;
  for (auto _ : state) {
    Korvex::CStringProxy text = spans[i++ % spans.size()].tostring();
    benchmark::DoNotOptimize(text.c_str());
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SpanToText);

void BM_SpanFromText(benchmark::State& state) {
  const char* const texts[] = {"00010203040506.789012Z", "00000000250000", "12345678901234.5Z"};
  std::size_t i = 0;
  for (auto _ : state) {
    Korvex::CDateTimeSpan span(texts[i++ % 3]);
    benchmark::DoNotOptimize(span);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SpanFromText);

void BM_DateAddMonths(benchmark::State& state) {
  std::vector<Korvex::CDateTime> dates;
  for (Korvex::CDateTime const& d : sampleDates()) {
    if (d.year() > 1602) dates.push_back(d);  // keep every step inside the calendar
  }
  const int months = static_cast<int>(state.range(0));
  std::size_t i = 0;
  for (auto _ : state) {
    Korvex::CDateTime d = Korvex::DateAddA("m", months, dates[i++ % dates.size()]);
    benchmark::DoNotOptimize(d);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DateAddMonths)->Arg(1)->Arg(-13)->Arg(120);

}  // namespace
