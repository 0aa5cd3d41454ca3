// What the linear seek test itself costs per read. The drive is simulated and its reads cost
// nothing, so the time is the test's own work (clock readings, bookkeeping, the call through the
// drive). Beside it, the same reads issued straight to the drive show what the drive costs.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "libDrive/LibDrive.h"
#include "libDrive/LinearSeekTest.h"
#include "quel5/Registry.h"
#include "sim/SimulatedDrive.h"

namespace {

constexpr uint64_t kReads = 10'000'000;

sim::SimulatedDriveConfig freeDrive() {
    sim::SimulatedDriveConfig config;
    config.totalSectors = kReads;
    config.unwritten = sim::UnwrittenContent::Zeros;
    config.recordOperations = false;
    return config;
}

bool setParameter(const wchar_t* key, const wchar_t* text) {
    kiv::String error;
    return quel5::Registry::instance().setParameter(key, text, &error);
}

// Reports the time per read: `reads` reads per iteration over the measured time.
void reportPerRead(benchmark::State& state, uint64_t reads) {
    state.counters["time_per_read"] = benchmark::Counter(
        static_cast<double>(reads),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void LinearSeekTestRun(benchmark::State& state) {
    kivrlibdrive::initLibDrive();
    // One read per sector of the whole drive: jump 1.
    if (!setParameter(L"NumberOfSeeks", L"10000000") || !setParameter(L"MaxErrors", L"10")) {
        state.SkipWithError("the test parameters cannot be set");
        return;
    }
    quel5::DiagDevice device(L"sim:bench");
    sim::SimulatedDrive drive(device, freeDrive());
    for (auto _ : state) {
        kivrlibdrive::CLinearSeekTest test(drive);
        if (test.Run() != quel5::TestResult::PASS) {
            state.SkipWithError("the linear seek test did not pass");
            return;
        }
    }
    if (drive.counters().prepareRead != kReads * static_cast<uint64_t>(state.iterations())) {
        state.SkipWithError("the test did not read every sector once");
        return;
    }
    reportPerRead(state, kReads);
}

void DirectDriveReads(benchmark::State& state) {
    quel5::DiagDevice device(L"sim:bench");
    sim::SimulatedDrive drive(device, freeDrive());
    std::vector<unsigned char> sector(512);
    for (auto _ : state) {
        for (uint64_t lba = 0; lba < kReads; ++lba) {
            drive.PrepareRead();
            if (drive.ReadSectors(lba, 1, sector.data(), 512) != quel5::TestResult::PASS) {
                state.SkipWithError("a simulated read failed");
                return;
            }
        }
        benchmark::DoNotOptimize(sector.data());
    }
    reportPerRead(state, kReads);
}

BENCHMARK(LinearSeekTestRun)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(DirectDriveReads)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
