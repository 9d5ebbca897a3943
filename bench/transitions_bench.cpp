// Time per frame of every declared transition at PAL and full-HD sizes, with
// default fields and with its heavier setting, Progress swept over the frame
// range; beside them two floors: a memcpy of one frame, and a loop that reads
// two frames and writes one (a per-byte average). The table at the end gives
// each transition's median time per frame and its ratio to that
// read-two-write-one floor, measured in the same run.
//
//   build/<abi>/bin/krl_bench [--out results.json] [--table table.tsv] [Google Benchmark flags]
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/emulated_cpu.h"
#include "bench/table_reporter.h"
#include "cli/fields.h"
#include "emulator/test_profile.h"
#include "emulator/host.h"
#include "emulator/instance.h"
#include "emulator/sample_clips.h"

namespace {

using krl::bench::kMedianCounter;
using krl::emu::Frame;

struct Size {
  int32_t w, h;
  std::string Name() const { return std::to_string(w) + "x" + std::to_string(h); }
};
const Size kSizes[] = {{720, 576}, {1920, 1080}};

// Each frame of a run uses the next of these positions.
const double kProgress[] = {0.05, 0.15, 0.25, 0.35, 0.45, 0.55, 0.65, 0.75, 0.85, 0.95};

struct Inputs {
  Frame a, b;
};
const Inputs& InputsOf(const Size& size) {
  static std::map<int32_t, Inputs> inputs;
  auto it = inputs.find(size.w);
  if (it == inputs.end()) {
    it = inputs.emplace(size.w, Inputs{krl::emu::SampleClipA(size.w, size.h, 1), krl::emu::SampleClipB(size.w, size.h, 1)}).first;
  }
  return it->second;
}

double Median(std::vector<double>& values) {
  const size_t middle = values.size() / 2;
  std::nth_element(values.begin(), values.begin() + middle, values.end());
  if (values.size() % 2 == 1) return values[middle];
  return (values[middle] + *std::max_element(values.begin(), values.begin() + middle)) / 2;
}

// The CPU time of this thread: a frame's own work, not the time other
// processes on a shared machine held the core while it waited.
double ThreadSeconds() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// Runs `frame(progress)` once an iteration, Progress stepping through
// kProgress, and times each frame. The run's time per frame is the median at
// each position of the sweep, averaged over the sweep: every position counts
// alike, and the odd frame slowed by a cold cache or an interrupt hardly moves it.
template <class OneFrame>
void TimeSweep(benchmark::State& state, const Size& size, OneFrame&& frame) {
  std::array<std::vector<double>, std::size(kProgress)> seconds;
  for (std::vector<double>& s : seconds) s.reserve(static_cast<size_t>(state.max_iterations) / seconds.size() + 1);
  size_t n = 0;
  for (auto _ : state) {
    const size_t position = n++ % seconds.size();
    const double start = ThreadSeconds();
    frame(kProgress[position]);
    benchmark::ClobberMemory();
    seconds[position].push_back(ThreadSeconds() - start);
  }
  double sum = 0;
  int positions = 0;
  for (std::vector<double>& s : seconds) {
    if (s.empty()) continue;
    sum += Median(s);
    ++positions;
  }
  state.counters[kMedianCounter] = positions == 0 ? 0.0 : sum / positions * 1e3;
  const double frames = static_cast<double>(state.iterations());
  state.counters["frames/s"] = benchmark::Counter(frames, benchmark::Counter::kIsRate);
  state.counters["MP/s"] = benchmark::Counter(frames * size.w * size.h / 1e6, benchmark::Counter::kIsRate);
}

void MemcpyFloor(benchmark::State& state, Size size) {
  const Inputs& in = InputsOf(size);
  Frame out(size.w, size.h);
  TimeSweep(state, size, [&](double) {
    std::memcpy(out.Bytes(), in.a.Bytes(), out.ByteCount());
    benchmark::DoNotOptimize(out.pixels.data());
  });
}

void ReadTwoWriteOneFloor(benchmark::State& state, Size size) {
  const Inputs& in = InputsOf(size);
  Frame out(size.w, size.h);
  TimeSweep(state, size, [&](double) {
    const uint8_t* a = in.a.Bytes();
    const uint8_t* b = in.b.Bytes();
    uint8_t* o = out.Bytes();
    for (size_t i = 0, n = out.ByteCount(); i < n; ++i) o[i] = static_cast<uint8_t>((a[i] + b[i]) >> 1);
    benchmark::DoNotOptimize(out.pixels.data());
  });
}

void Transition(benchmark::State& state, const krl::emu::Host* host, const krl::emu::DeclaredEffect* effect, Size size,
                std::vector<std::string> settings) {
  krl::emu::Instance instance(*host, *effect);
  for (const std::string& s : settings) krl::cli::ApplySetting(instance, s);
  const Inputs& in = InputsOf(size);
  Frame out(size.w, size.h);
  TimeSweep(state, size, [&](double progress) {
    instance.Render(in.a, in.b, out, progress);
    benchmark::DoNotOptimize(out.pixels.data());
  });
}

// Smouldering Paper caches its height field until the frame size, its degree
// or its variation changes; this row changes the variation every frame, so
// every frame pays for a new field.
void RegeneratingEveryFrame(benchmark::State& state, const krl::emu::Host* host, const krl::emu::DeclaredEffect* effect,
                            Size size) {
  krl::emu::Instance instance(*host, *effect);
  const Inputs& in = InputsOf(size);
  Frame out(size.w, size.h);
  int32_t frame = 0;
  TimeSweep(state, size, [&](double progress) {
    instance.SetValue("Variations of Transition", 1 + frame++ % 5000);
    instance.Render(in.a, in.b, out, progress);
    benchmark::DoNotOptimize(out.pixels.data());
  });
}

// How many rand() calls one render makes. rand() is seeded with kReplay
// before it (Smouldering Paper reseeds it with its variation, which its rows
// set to the same value), so replaying the generator from there until it
// meets the three values drawn right after the render counts them.
constexpr int32_t kReplay = 4321;
int64_t RandCallsOfARender(krl::emu::Instance& instance, const Inputs& in, Frame& out, double progress) {
  std::srand(kReplay);
  instance.Render(in.a, in.b, out, progress);
  const int after[3] = {std::rand(), std::rand(), std::rand()};
  std::srand(kReplay);
  int window[3] = {std::rand(), std::rand(), std::rand()};
  for (int64_t calls = 0; calls < (int64_t{1} << 32); ++calls) {
    if (window[0] == after[0] && window[1] == after[1] && window[2] == after[2]) return calls;
    window[0] = window[1];
    window[1] = window[2];
    window[2] = std::rand();
  }
  return 0;
}

// The cost of a transition's rand() calls alone, made one by one as a
// render without its own generator would: what bounds the transitions that
// draw for their pixels. Smouldering Paper's are those of a new field (the
// first render of an instance makes one); Random Dissolve's depend on Progress.
void RandCallsAlone(benchmark::State& state, const krl::emu::Host* host, const krl::emu::DeclaredEffect* effect,
                    Size size) {
  const Inputs& in = InputsOf(size);
  Frame out(size.w, size.h);
  std::map<double, int64_t> calls;
  for (const double progress : kProgress) {
    krl::emu::Instance instance(*host, *effect);
    if (effect->DisplayName() == "Smouldering Paper") instance.SetValue("Variations of Transition", kReplay);
    calls[progress] = RandCallsOfARender(instance, in, out, progress);
  }
  TimeSweep(state, size, [&](double progress) {
    for (int64_t i = 0, n = calls[progress]; i < n; ++i) benchmark::DoNotOptimize(std::rand());
  });
  int64_t total = 0;
  for (const auto& [progress, n] : calls) total += n;
  state.counters["rand() calls"] = static_cast<double>(total) / static_cast<double>(calls.size());
}

}  // namespace

int main(int argc, char** argv) {
  // Our own flags: --out FILE (JSON results), --table FILE (the table,
  // tab-separated), --quiet-table (no table on standard output).
  std::vector<char*> args;
  std::string outFlag, tablePath;
  bool table = true;
  for (int i = 0; i < argc; ++i) {
    if (std::strcmp(argv[i], "--out") == 0 && i + 1 < argc) {
      outFlag = std::string("--benchmark_out=") + argv[++i];
    } else if (std::strcmp(argv[i], "--table") == 0 && i + 1 < argc) {
      tablePath = argv[++i];
    } else if (std::strcmp(argv[i], "--quiet-table") == 0) {
      table = false;
    } else {
      args.push_back(argv[i]);
    }
  }
  std::string format = "--benchmark_out_format=json";
  if (!outFlag.empty()) {
    args.push_back(outFlag.data());
    args.push_back(format.data());
  }
  int count = static_cast<int>(args.size());
  benchmark::Initialize(&count, args.data());
  if (benchmark::ReportUnrecognizedArguments(count, args.data())) return 2;

  const char* path = std::getenv("KRL_LIBRARY") ? std::getenv("KRL_LIBRARY") : KRL_LIBRARY_PATH;
  std::string error;
  const std::unique_ptr<krl::emu::Host> host = krl::emu::Host::Load(path, &error);
  if (!host) {
    std::fprintf(stderr, "krl_bench: %s\n", error.c_str());
    return 1;
  }
  std::vector<std::string> order;
  auto add = [&](const std::string& name, auto&&... fn) {
    benchmark::RegisterBenchmark(name.c_str(), fn...)->Unit(benchmark::kMillisecond)->UseRealTime();
    order.push_back(name);
  };
  for (const Size& size : kSizes) {
    add("floor memcpy/" + size.Name(), MemcpyFloor, size);
    add("floor read2write1/" + size.Name(), ReadTwoWriteOneFloor, size);
  }
  for (const krl::emu::DeclaredEffect& e : host->effects()) {
    for (const Size& size : kSizes) {
      add(e.DisplayName() + "/" + size.Name() + "/default", Transition, host.get(), &e, size, std::vector<std::string>{});
      const std::vector<std::string>& heavier = krl::emu::ProfileOf(e).heavier;
      if (!heavier.empty()) add(e.DisplayName() + "/" + size.Name() + "/heavier", Transition, host.get(), &e, size, heavier);
      if (e.DisplayName() == "Smouldering Paper") {
        add(e.DisplayName() + "/" + size.Name() + "/regenerating", RegeneratingEveryFrame, host.get(), &e, size);
      }
      if (e.DisplayName() == "Smouldering Paper" || e.DisplayName() == "Random Dissolve") {
        add(e.DisplayName() + "/" + size.Name() + "/its rand() calls alone", RandCallsAlone, host.get(), &e, size);
      }
    }
  }
  std::string title = sizeof(void*) == 4 ? "i386 build" : "x86-64 build";
  const std::string emulator = krl::bench::EmulatorOfThisProgram();
  if (!emulator.empty()) {
    title += ", run by the emulator " + emulator + ": these times measure the emulator, not the library";
    std::fprintf(stderr, "krl_bench: %s\n", title.c_str());
    benchmark::AddCustomContext("emulator", emulator);
  }
  krl::bench::TableReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  if (table) reporter.Write(stdout, title, order, false);
  if (!tablePath.empty()) {
    std::FILE* file = std::fopen(tablePath.c_str(), "w");
    if (!file) {
      std::fprintf(stderr, "krl_bench: cannot write %s\n", tablePath.c_str());
      return 1;
    }
    reporter.Write(file, title, order, true);
    std::fclose(file);
  }
  benchmark::Shutdown();
  return 0;
}
