// The measuring itself and the printing of rows; see bench.h. Directories are in bench_files.cpp.
#include "bench/bench.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace tav {

namespace {

std::string sOnly; // text that a row's name must hold
int sPairs;        // pairs to measure, 0: as the row says
bool sLarge;       // rows that take minutes, too

double x_median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    size_t middle = values.size() / 2;
    if (values.size() % 2 == 1)
        return values[middle];
    return (values[middle - 1] + values[middle]) / 2;
}

double x_print(const BenchRow &row, double ratio, double ours, double baseline)
{
    std::printf("row %s %.3f %.3f %.6g %.6g\n", row.name.c_str(), ratio, row.limit, ours, baseline);
    std::fflush(stdout);
    return ratio;
}

double x_time_side(const BenchSide &side)
{
    if (side.prepare)
        side.prepare();
    double seconds = bench_seconds(side.run);
    if (side.finish)
        side.finish();
    return seconds;
}

} // namespace

void bench_start(int argc, char **argv)
{
    for (int i = 1; i < argc; i++) {
        if (!std::strcmp(argv[i], "--only") && i + 1 < argc) {
            sOnly = argv[++i];
        } else if (!std::strcmp(argv[i], "--pairs") && i + 1 < argc) {
            sPairs = std::atoi(argv[++i]);
        } else if (!std::strcmp(argv[i], "--large")) {
            sLarge = true;
        } else {
            std::fprintf(stderr, "usage: %s [--only TEXT] [--pairs N] [--large]\n", argv[0]);
            std::exit(2);
        }
    }
}

bool bench_wants(const std::string &name) { return name.find(sOnly) != std::string::npos; }

bool bench_large() { return sLarge; }

int bench_runs(const BenchRow &row) { return (sPairs > 0 ? sPairs : row.pairs) + 1; }

double bench_seconds(const std::function<void()> &f)
{
    auto start = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double bench_compare_values(const BenchRow &row, const std::function<double()> &ours,
                            const std::function<double()> &baseline)
{
    if (!bench_wants(row.name))
        return 0;
    ours();
    baseline();
    std::vector<double> ratios;
    std::vector<double> our_values;
    std::vector<double> base_values;
    for (int i = 0; i < bench_runs(row) - 1; i++) {
        // In turns who comes first: memory that the other has just given back is fast.
        double b = i % 2 ? baseline() : 0;
        double a = ours();
        b = i % 2 ? b : baseline();
        our_values.push_back(a);
        base_values.push_back(b);
        ratios.push_back(a / std::max(b, 1e-9));
    }
    return x_print(row, x_median(ratios), x_median(our_values), x_median(base_values));
}

double bench_compare(const BenchRow &row, const BenchSide &ours, const BenchSide &baseline)
{
    return bench_compare_values(
        row, [&] { return x_time_side(ours); }, [&] { return x_time_side(baseline); });
}

double bench_report(const BenchRow &row, double ours, double baseline)
{
    if (!bench_wants(row.name))
        return 0;
    return x_print(row, ours / std::max(baseline, 1e-9), ours, baseline);
}

} // namespace tav
