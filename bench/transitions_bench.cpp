// Time per frame of every declared transition at PAL and full-HD sizes, with
// default fields and with its heavier setting, Progress swept over the frame
// range; beside them two floors: a memcpy of one frame, and a loop that reads
// two frames and writes one (a per-byte average). The table at the end gives
// each transition's ratio to that read-two-write-one floor.
//
//   build/x64/bin/krl_bench [--out results.json] [Google Benchmark flags]
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cli/fields.h"
#include "emulator/test_profile.h"
#include "emulator/host.h"
#include "emulator/instance.h"
#include "emulator/sample_clips.h"

namespace {

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

void CountFrames(benchmark::State& state, const Size& size) {
  const double frames = static_cast<double>(state.iterations());
  state.counters["frames/s"] = benchmark::Counter(frames, benchmark::Counter::kIsRate);
  state.counters["MP/s"] = benchmark::Counter(frames * size.w * size.h / 1e6, benchmark::Counter::kIsRate);
}

void MemcpyFloor(benchmark::State& state, Size size) {
  const Inputs& in = InputsOf(size);
  Frame out(size.w, size.h);
  for (auto _ : state) {
    std::memcpy(out.Bytes(), in.a.Bytes(), out.ByteCount());
    benchmark::DoNotOptimize(out.pixels.data());
    benchmark::ClobberMemory();
  }
  CountFrames(state, size);
}

void ReadTwoWriteOneFloor(benchmark::State& state, Size size) {
  const Inputs& in = InputsOf(size);
  Frame out(size.w, size.h);
  for (auto _ : state) {
    const uint8_t* a = in.a.Bytes();
    const uint8_t* b = in.b.Bytes();
    uint8_t* o = out.Bytes();
    for (size_t i = 0, n = out.ByteCount(); i < n; ++i) o[i] = static_cast<uint8_t>((a[i] + b[i]) >> 1);
    benchmark::DoNotOptimize(out.pixels.data());
    benchmark::ClobberMemory();
  }
  CountFrames(state, size);
}

void Transition(benchmark::State& state, const krl::emu::Host* host, const krl::emu::DeclaredEffect* effect, Size size,
                std::vector<std::string> settings) {
  krl::emu::Instance instance(*host, *effect);
  for (const std::string& s : settings) krl::cli::ApplySetting(instance, s);
  const Inputs& in = InputsOf(size);
  Frame out(size.w, size.h);
  size_t frame = 0;
  for (auto _ : state) {
    instance.Render(in.a, in.b, out, kProgress[frame++ % std::size(kProgress)]);
    benchmark::DoNotOptimize(out.pixels.data());
    benchmark::ClobberMemory();
  }
  CountFrames(state, size);
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
  for (auto _ : state) {
    instance.SetValue("Variations of Transition", 1 + frame % 5000);
    instance.Render(in.a, in.b, out, kProgress[frame++ % std::size(kProgress)]);
    benchmark::DoNotOptimize(out.pixels.data());
    benchmark::ClobberMemory();
  }
  CountFrames(state, size);
}

// How many rand() calls one regeneration makes. The transition reseeds
// rand() with its variation, so replaying the generator from that value
// until it meets the three values drawn right after the render counts them.
int64_t RandCallsOfARegeneration(const krl::emu::Host* host, const krl::emu::DeclaredEffect* effect, Size size) {
  constexpr int32_t kVariation = 4321;
  krl::emu::Instance instance(*host, *effect);
  const Inputs& in = InputsOf(size);
  Frame out(size.w, size.h);
  instance.SetValue("Variations of Transition", kVariation);
  instance.Render(in.a, in.b, out, 0.5);
  const int after[3] = {std::rand(), std::rand(), std::rand()};
  std::srand(kVariation);
  int window[3] = {std::rand(), std::rand(), std::rand()};
  for (int64_t calls = 0; calls < (int64_t{1} << 32); ++calls) {
    if (window[0] == after[0] && window[1] == after[1] && window[2] == after[2]) return calls;
    window[0] = window[1];
    window[1] = window[2];
    window[2] = std::rand();
  }
  return 0;
}

// The cost of those rand() calls alone: what bounds the regeneration frame.
void RandCallsOfRegeneration(benchmark::State& state, const krl::emu::Host* host, const krl::emu::DeclaredEffect* effect,
                             Size size) {
  const int64_t calls = RandCallsOfARegeneration(host, effect, size);
  for (auto _ : state) {
    for (int64_t i = 0; i < calls; ++i) benchmark::DoNotOptimize(std::rand());
  }
  state.counters["rand() calls"] = static_cast<double>(calls);
  CountFrames(state, size);
}

// Collects each run's time per frame for the table at the end.
class TableReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.iterations > 0) msPerFrame_[run.run_name.function_name] = run.real_accumulated_time * 1e3 / run.iterations;
    }
    ConsoleReporter::ReportRuns(runs);
  }
  void PrintTable(const std::vector<std::string>& order) const {
    std::printf("\n%-44s %10s %9s %9s\n", "transition / size / setting", "ms/frame", "MP/s", "x floor");
    for (const std::string& name : order) {
      auto it = msPerFrame_.find(name);
      if (it == msPerFrame_.end()) continue;
      const std::string size = name.substr(name.find('/') + 1, name.find('/', name.find('/') + 1) - name.find('/') - 1);
      auto floor = msPerFrame_.find("floor read2write1/" + size);
      const int w = std::atoi(size.c_str()), h = std::atoi(size.c_str() + size.find('x') + 1);
      const double ratio = floor == msPerFrame_.end() ? 0.0 : it->second / floor->second;
      std::printf("%-44s %10.3f %9.1f %9.2f\n", name.c_str(), it->second, w * h / (it->second * 1e3), ratio);
    }
  }

 private:
  std::map<std::string, double> msPerFrame_;
};

}  // namespace

int main(int argc, char** argv) {
  // Our own flags: --out FILE (JSON results), --quiet-table (no table).
  std::vector<char*> args;
  std::string outFlag;
  bool table = true;
  for (int i = 0; i < argc; ++i) {
    if (std::strcmp(argv[i], "--out") == 0 && i + 1 < argc) {
      outFlag = std::string("--benchmark_out=") + argv[++i];
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
        add(e.DisplayName() + "/" + size.Name() + "/its rand() calls alone", RandCallsOfRegeneration, host.get(), &e, size);
      }
    }
  }
  TableReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  if (table) reporter.PrintTable(order);
  benchmark::Shutdown();
  return 0;
}
