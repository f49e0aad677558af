#pragma once

#include <QString>
#include <QStringList>

#include <functional>

// Timing and memory readings of the harness, and what it says about the
// machine. Times are wall-clock milliseconds.
namespace BENCH_MEASURE
{
// The best time of `repeats` runs of `step`, each after `prepare` (untimed).
double best_of(int repeats, const std::function<void()>& step,
               const std::function<void()>& prepare = std::function<void()>());
// Runs a program to its end with its output thrown away; the best time of
// `repeats` runs, or a negative number when it could not be run.
double best_of_command(int repeats, const QString& program, const QStringList& arguments);
// Heap in use (malloc's view: what was allocated and not freed), in bytes.
double heap_bytes();
// Resident memory of the process, in bytes.
double resident_bytes();
// Gives freed memory back to the system, so resident readings start low.
void trim_heap();
// "AMD EPYC, 2 cores", the load averages, the date.
QString cpu_model();
int core_count();
QString load_average();
} // namespace BENCH_MEASURE
