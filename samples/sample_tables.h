#pragma once

class SAMPLE_CATALOGUE;

// The tables of the sample game, by area. Each function appends its tables
// to the catalogue in generation order; a later area may read the rows of an
// earlier one.
namespace SAMPLE_TABLES
{
// languages, cultures, factions, provinces, regions, the steppe table.
void add_world(SAMPLE_CATALOGUE& catalogue);
// Units, abilities, technologies, buildings and what factions may have of them.
void add_military(SAMPLE_CATALOGUE& catalogue);
// Traits, ancillaries, advice and the four trigger tables.
void add_characters(SAMPLE_CATALOGUE& catalogue);
// Campaigns, their start positions and civil war set-ups.
void add_campaign(SAMPLE_CATALOGUE& catalogue);
// Spoken lines, voice-over scripts and characters, subtitles.
void add_voice(SAMPLE_CATALOGUE& catalogue);
// Interface components and their texts.
void add_interface(SAMPLE_CATALOGUE& catalogue);
// TExc_ImplementedTables, TExc_LocalisableFields, translated_texts.
void add_bookkeeping(SAMPLE_CATALOGUE& catalogue);
} // namespace SAMPLE_TABLES
