#include "sample_catalogue.h"
#include "sample_context.h"
#include "sample_tables.h"
#include "sample_words.h"

namespace
{
// Who wrote the code of a game table.
QString implementer_of(const SAMPLE_TABLE& table)
{
    static const QStringList programmers = {"kmori", "hlindqvist", "tbrandt"};
    if (!table.has_code())
        return QString();
    // Not qHash: its result depends on the process and the processor.
    uint hash = 2166136261u;
    for (const QChar c : table.name())
        hash = (hash ^ c.unicode()) * 16777619u;
    return programmers.at(int(hash % uint(programmers.size())));
}

// Sheets whose texts are names, which every language has.
bool is_name_sheet(const QString& sheet)
{
    return sheet == "factions" || sheet == "regions" || sheet == "campaign";
}
} // namespace

void SAMPLE_TABLES::add_bookkeeping(SAMPLE_CATALOGUE& catalogue)
{
    catalogue.add(
        SAMPLE_TABLE("TExc_ImplementedTables")
            .with({SAMPLE_FIELD::key("table_name"), SAMPLE_FIELD::text("Designer"),
                   SAMPLE_FIELD::yesno("Implemented").required().with_default(false),
                   SAMPLE_FIELD::yesno("Modified").with_default(false),
                   SAMPLE_FIELD::text("destination_pack")
                       .required()
                       .fixed({"non-pack", "loc-only", "raw-data-only-localisation"})
                       .describe("Only tables in \"non-pack\" have code that the schema editor may update"),
                   SAMPLE_FIELD::text("Implementer")})
            .tool_table("ivarga")
            .describing_others()
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                for (const SAMPLE_TABLE& table : context.catalogue().tables())
                    rows.add()
                        .set("table_name", table.name())
                        .set("Designer", table.designer())
                        .set("Implemented", table.is_implemented())
                        .set("Modified", table.has_code() && context.random().chance(0.15))
                        .set("destination_pack", table.destination_pack())
                        // Hashing the name (not drawing) keeps a table's implementer when tables are added.
                        .set("Implementer", implementer_of(table));
            }));

    catalogue.add(
        SAMPLE_TABLE("TExc_LocalisableFields")
            .with({SAMPLE_FIELD::key("key", KFT_AUTONUMBER), SAMPLE_FIELD::text("table_name").required(),
                   SAMPLE_FIELD::text("field").required(), SAMPLE_FIELD::text("spreadsheet").required(),
                   SAMPLE_FIELD::yesno("for_vo").with_default(false),
                   SAMPLE_FIELD::text("destination_file").with_default("design.txt"),
                   SAMPLE_FIELD::yesno("ready_for_export").with_default(true)})
            .tool_table("ivarga")
            .describing_others()
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                int key = 0;
                for (const SAMPLE_TABLE& table : context.catalogue().tables())
                    for (const SAMPLE_FIELD& field : table.fields())
                    {
                        if (!field.is_localised())
                            continue;
                        rows.add()
                            .set("key", ++key)
                            .set("table_name", table.name())
                            .set("field", field.name)
                            .set("spreadsheet", field.spreadsheet)
                            .set("for_vo", field.for_vo)
                            .set("destination_file", field.spreadsheet == "ui" ? "ui.txt" : "design.txt")
                            // A table the game does not read yet is not exported.
                            .set("ready_for_export", table.name() != "steppe_horde_types");
                    }
            }));

    catalogue.add(
        SAMPLE_TABLE("translated_texts")
            .with({SAMPLE_FIELD::key("key").describe(
                       "Table, field and record key of the text, then the language"),
                   SAMPLE_FIELD::text("language").required().refers_to("languages", "key", {"full_name"}),
                   SAMPLE_FIELD::text("translated_text").max_length(1024),
                   SAMPLE_FIELD::text("last_english_text").max_length(1024),
                   SAMPLE_FIELD::yesno("requires_translation").with_default(false),
                   SAMPLE_FIELD::yesno("requires_recording").with_default(false)})
            .tool_table("ivarga")
            .describing_others()
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const QStringList all_languages = SAMPLE_WORDS::translated_languages();
                for (const SAMPLE_TABLE& table : context.catalogue().tables())
                {
                    if (table.describes_others())
                        continue;
                    const SAMPLE_ROWS& source = context.rows(table.name());
                    for (const SAMPLE_FIELD& field : table.fields())
                    {
                        if (!field.is_localised())
                            continue;
                        QStringList languages = all_languages.mid(0, context.small() ? 2 : 3);
                        if (is_name_sheet(field.spreadsheet) && !context.small())
                            languages = all_languages;
                        for (const SAMPLE_ROW& row : source)
                        {
                            const auto approval = row.approvals.constFind(field.name);
                            if (approval == row.approvals.constEnd() || approval->state == 2 ||
                                row.text(field.name).startsWith("text_rejected"))
                                continue;
                            // Translators work from the last approved English.
                            const QString english = approval->last_approved_text;
                            if (english.isEmpty())
                                continue;
                            const bool outdated = approval->state == 0;
                            const QString label = table.name() + "_" + field.name + "_" + source.key_of(row);
                            for (const QString& language : languages)
                                rows.add()
                                    .set("key", label + language)
                                    .set("language", language)
                                    .set("translated_text", context.words().translate(english, language))
                                    .set("last_english_text", english)
                                    .set("requires_translation", outdated)
                                    .set("requires_recording",
                                         field.for_vo && (outdated || approval->requires_recording));
                        }
                    }
                }
            }));
}
