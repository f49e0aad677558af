#pragma once

#include <QString>

class BENCH_REPORT;

// The figures, each with its baseline. A figure that cannot run says why in
// the report and leaves the others to run.
namespace BENCH_FIGURES
{
struct CONTEXT
{
    QString database; // read only
    QString copy;     // written by the apply figure
    QString big_table;
    int repeats = 3;
    BENCH_REPORT* report = nullptr;
};

// Engine: a table's load against pugixml parsing its file, the memory it
// takes against its size, connecting against reading the schema files, and
// a one-cell apply against copying the table's file and syncing it.
void load_and_memory(const CONTEXT& context);
void connect(const CONTEXT& context);
void apply(const CONTEXT& context);
// The editor's model and proxy: open, a three-row filter, sorts.
void model(const CONTEXT& context);
// The global search against grep, the comparison of two copies against md5sum.
void search(const CONTEXT& context);
void comparison(const CONTEXT& context);
} // namespace BENCH_FIGURES
