#pragma once

class SAMPLE_CATALOGUE;

// Tables for benchmarks: many middle-sized tables of every field type, with
// relationships to the game tables and to each other, and one table of a
// great many rows. Added to a catalogue after the game's tables, they leave
// the game's content as it is for the same seed.
namespace SAMPLE_SCALE
{
void add_tables(SAMPLE_CATALOGUE& catalogue, int table_count, int big_table_rows);
// The name of the table with the many rows.
const char* big_table_name();
} // namespace SAMPLE_SCALE
