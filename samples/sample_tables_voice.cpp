#include "sample_catalogue.h"
#include "sample_context.h"
#include "sample_tables.h"
#include "sample_words.h"

namespace
{
const char* const SPEAKERS[][2] = {
    {"Cassia", "aurelian"},
    {"Temur Khan", "khar"},
    {"Satrap Vahram", "veshan"},
    {"Jarl Sigurd", "norl"},
    {"Archon Nikias", "thalassan"},
    {"High Priestess Nefru", "sundari"},
    {"The Narrator", ""},
    {"Old Soldier", ""},
    {"Messenger", ""},
    {"Advisor Livia", "aurelian"},
    {"Scout", ""},
    {"Ship Captain", ""},
};

const char* const LINES[] = {
    "The Republic stands at the edge of a great age. Will you lead it, or watch it fall?",
    "Our scouts report an army on the river. We must march before the harvest.",
    "The walls of the city are old, but its people are stubborn.",
    "Send gold to the temple. The gods remember those who remember them.",
    "Riders on the horizon! The horde has found us.",
    "Hold the line! Hold, and the day is ours!",
    "The envoy waits in the hall, my lord. He brings an offer of peace.",
    "The sea is calm tonight. By dawn our fleet will reach the isles.",
    "A traitor sits at your table. Watch the hands, not the words.",
    "Winter has closed the passes. Our armies will not cross until spring.",
    "The people cheer your name in the streets of the capital.",
    "They burned the fields as they fled. There is nothing left to eat.",
    "Another victory! The enemy's banners lie in the dust.",
    "We are too few. Recruit more men, or we will not last the season.",
    "The old king is dead. His sons already quarrel over the crown.",
    "Storm clouds over the mountains. The gods are angry.",
};

const char* const SCRIPTS[] = {"Prologue introduction",   "Main campaign advisor", "Battle barks",
                               "Steppe campaign victory", "Diplomacy greetings",   "Naval events"};
} // namespace

void SAMPLE_TABLES::add_voice(SAMPLE_CATALOGUE& catalogue)
{
    catalogue.add(
        SAMPLE_TABLE("campaign_dialogue_lines")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("campaign")
                       .required()
                       .refers_to("campaigns", "campaign_name", {"onscreen_name"}),
                   SAMPLE_FIELD::text("speaker").required(),
                   SAMPLE_FIELD::text("text").required().localised("dialogue").voiced().max_length(1024),
                   SAMPLE_FIELD::text("mood").fixed({"neutral", "angry", "triumphant", "grim", "afraid"}),
                   SAMPLE_FIELD::integer("sequence").with_default(0)})
            .in_code("ohart")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                static const QStringList moods = {"neutral", "angry", "triumphant", "grim", "afraid"};
                const int line_count = int(sizeof(LINES) / sizeof(LINES[0]));
                const int per_campaign = context.small() ? 3 : 14;
                for (const SAMPLE_ROW& campaign : context.rows("campaigns"))
                    for (int n = 1; n <= per_campaign; ++n)
                    {
                        const char* const* speaker = SPEAKERS[context.random().index(12)];
                        rows.add()
                            .set("key", QString("%1_line_%2")
                                            .arg(campaign.text("campaign_name"))
                                            .arg(n, 3, 10, QChar('0')))
                            .set("campaign", campaign.text("campaign_name"))
                            .set("speaker", speaker[0])
                            .set("text", LINES[context.random().index(line_count)])
                            .set("mood", context.random().pick(moods))
                            .set("sequence", n * 10);
                    }
            }));

    catalogue.add(SAMPLE_TABLE("vo_characters")
                      .with({SAMPLE_FIELD::key("key", KFT_AUTONUMBER), SAMPLE_FIELD::text("name").required()})
                      .tool_table("ohart")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          const int count = context.small() ? 4 : 12;
                          for (int i = 0; i < count; ++i)
                              rows.add().set("key", i + 1).set("name", SPEAKERS[i][0]);
                      }));

    catalogue.add(SAMPLE_TABLE("vo_scripts")
                      .with({SAMPLE_FIELD::key("id", KFT_AUTONUMBER), SAMPLE_FIELD::text("name").required()})
                      .tool_table("ohart")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          const int count = context.small() ? 2 : 6;
                          for (int i = 0; i < count; ++i)
                              rows.add().set("id", i + 1).set("name", SCRIPTS[i]);
                      }));

    catalogue.add(SAMPLE_TABLE("vo_texts")
                      .with({SAMPLE_FIELD::key("key").describe("A uuid, made when the line is added"),
                             SAMPLE_FIELD::of("script_id", KFT_INTEGER)
                                 .required()
                                 .refers_to("vo_scripts", "id", {"name"}),
                             SAMPLE_FIELD::text("recorded_filename"),
                             SAMPLE_FIELD::integer("order").required(), SAMPLE_FIELD::text("comment"),
                             SAMPLE_FIELD::text("table_field")
                                 .required()
                                 .describe("Table and field of the text, as table:field"),
                             SAMPLE_FIELD::text("foreign_key").required()})
                      .tool_table("ohart")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          static const QStringList comments = {"",
                                                               "",
                                                               "Whispered",
                                                               "Shouted over battle noise",
                                                               "Slow, tired",
                                                               "Pick-up session",
                                                               "Needs a retake"};
                          const SAMPLE_ROWS& lines = context.rows("campaign_dialogue_lines");
                          const SAMPLE_ROWS& advice = context.rows("advice_threads");
                          for (const SAMPLE_ROW& script : context.rows("vo_scripts"))
                          {
                              const bool advisor = script.text("name").contains("advisor");
                              const SAMPLE_ROWS& source = advisor ? advice : lines;
                              const QString table_field =
                                  advisor ? "advice_threads:text" : "campaign_dialogue_lines:text";
                              const QString key_field = "key";
                              const int count =
                                  qMin(source.size(), context.small() ? 3 : context.random().range(6, 12));
                              int order = 0;
                              for (const QString& foreign :
                                   context.random().sample(source.texts(key_field), count))
                                  rows.add()
                                      .set("key", context.random().uuid().toString())
                                      .set("script_id", script.value("id"))
                                      .set("recorded_filename", foreign + ".wav")
                                      .set("order", ++order)
                                      .set("comment", context.random().pick(comments))
                                      .set("table_field", table_field)
                                      .set("foreign_key", foreign);
                          }
                      }));

    catalogue.add(
        SAMPLE_TABLE("vo_text_characters")
            .with(
                {SAMPLE_FIELD::key("vo_text").refers_to("vo_texts", "key", {"foreign_key"}),
                 SAMPLE_FIELD::key("vo_character", KFT_INTEGER).refers_to("vo_characters", "key", {"name"})})
            .tool_table("ohart")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const QStringList characters = context.rows("vo_characters").texts("key");
                for (const SAMPLE_ROW& text : context.rows("vo_texts"))
                    for (const QString& character :
                         context.random().sample(characters, context.random().chance(0.2) ? 2 : 1))
                        rows.add().set("vo_text", text.text("key")).set("vo_character", character.toInt());
            }));

    catalogue.add(
        SAMPLE_TABLE("subtitle_timings")
            .with({SAMPLE_FIELD::key("text_id"), SAMPLE_FIELD::text("subtitle_field").required(),
                   SAMPLE_FIELD::text("language").required().refers_to("languages", "key", {"full_name"}),
                   SAMPLE_FIELD::of("start", KFT_SINGLE)
                       .required()
                       .describe("Seconds from the start of the video"),
                   SAMPLE_FIELD::of("end", KFT_SINGLE).required(),
                   SAMPLE_FIELD::of("script_id", KFT_INTEGER)
                       .required()
                       .refers_to("vo_scripts", "id", {"name"}),
                   SAMPLE_FIELD::integer("text_section")
                       .with_default(0)
                       .describe("Which part of a text cut by '|' is shown"),
                   SAMPLE_FIELD::text("foreign_key").required()})
            .tool_table("ohart")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                QMap<int, float> clock;
                for (const SAMPLE_ROW& text : context.rows("vo_texts"))
                {
                    const int script = text.value("script_id").toInt();
                    for (const QString& language : {QString("en"), QString("fr"), QString("de")})
                    {
                        if (language != "en" && !context.random().chance(0.5))
                            continue;
                        float& start = clock[script * 10 + (language == "en" ? 0 : language == "fr" ? 1 : 2)];
                        const float length = float(context.random().range(15, 60)) / 10.0f;
                        rows.add()
                            .set("text_id", context.random().uuid().toString())
                            .set("subtitle_field", text.text("table_field"))
                            .set("language", language)
                            .set("start", start)
                            .set("end", start + length)
                            .set("script_id", script)
                            .set("text_section", 0)
                            .set("foreign_key", text.text("foreign_key"));
                        start += length + 0.5f;
                    }
                }
            }));
}
