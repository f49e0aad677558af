#include "sample_catalogue.h"
#include "sample_context.h"
#include "sample_tables.h"
#include "sample_words.h"

namespace
{
// Key, name, negative, opposite.
const char* const TRAITS[][4] = {
    {"brave", "Brave", "false", "coward"},
    {"coward", "Coward", "true", "brave"},
    {"sober", "Sober", "false", "drunkard"},
    {"drunkard", "Drunkard", "true", "sober"},
    {"strategist", "Strategist", "false", "reckless"},
    {"reckless", "Reckless", "true", "strategist"},
    {"loyal", "Loyal", "false", "disloyal"},
    {"disloyal", "Disloyal", "true", "loyal"},
    {"pious", "Pious", "false", "blasphemer"},
    {"blasphemer", "Blasphemer", "true", "pious"},
    {"frugal", "Frugal", "false", "spendthrift"},
    {"spendthrift", "Spendthrift", "true", "frugal"},
    {"just", "Just", "false", "cruel"},
    {"cruel", "Cruel", "true", "just"},
    {"siegemaster", "Siegemaster", "false", ""},
    {"horse_lord", "Horse Lord", "false", ""},
    {"sea_wolf", "Sea Wolf", "false", ""},
    {"scholar", "Scholar", "false", ""},
    {"ambitious", "Ambitious", "false", ""},
    {"wounded", "Old Wound", "true", ""},
    {"patient", "Patient", "false", ""},
    {"paranoid", "Paranoid", "true", ""},
};

const char* const ANCILLARIES[][3] = {
    {"loyal_bodyguard", "Loyal Bodyguard", "follower"},
    {"old_campaign_map", "Old Campaign Map", "item"},
    {"veteran_centurion", "Veteran Centurion", "follower"},
    {"court_poet", "Court Poet", "follower"},
    {"steppe_guide", "Steppe Guide", "follower"},
    {"temple_scribe", "Temple Scribe", "follower"},
    {"navigator", "Navigator", "follower"},
    {"physician", "Physician", "follower"},
    {"spymaster", "Spymaster", "follower"},
    {"horse_master", "Horse Master", "follower"},
    {"quartermaster", "Quartermaster", "follower"},
    {"ancestral_blade", "Ancestral Blade", "item"},
    {"bronze_standard", "Bronze Standard", "item"},
    {"war_drums", "War Drums", "item"},
    {"sacred_relic", "Sacred Relic", "item"},
    {"star_chart", "Star Chart", "item"},
};

const char* const ADVICE[][2] = {
    {"recruitment", "My lord, our armies are thin. Recruit more units before the enemy marches."},
    {"taxes", "The treasury is low. Raise taxes, but beware of unrest in the provinces."},
    {"sieges", "A city with walls will not fall to a charge. Build siege engines or starve them out."},
    {"diplomacy", "An envoy has arrived. Hear their offer before you answer with the sword."},
    {"public_order", "The people grow restless. A temple or a festival would calm them."},
    {"research", "Our scholars ask for your guidance. Choose what they should study next."},
    {"naval", "The sea is a road as well as a wall. A fleet can carry our armies far."},
    {"winter", "Winter is coming to the north. Armies in the field will suffer."},
    {"trade", "Merchants wait at our borders. A trade agreement would fill our coffers."},
    {"rebellion", "Rebels have risen in the provinces. Crush them before they spread."},
    {"succession", "Our leader grows old. Think now of who shall follow."},
    {"victory", "A great victory, my lord! Our enemies will remember this day."},
};

const QStringList EVENTS = {"CharacterTurnStart",
                            "CharacterTurnEnd",
                            "CharacterCompletedBattle",
                            "CharacterSackedSettlement",
                            "CharacterBesiegesSettlement",
                            "BuildingCompleted",
                            "FactionTurnStart",
                            "UnitTrained",
                            "ResearchCompleted",
                            "SettlementSelected",
                            "PanelOpened"};

QString condition(SAMPLE_RANDOM& random)
{
    static const QStringList conditions = {
        "character:won_battle() and character:battles_fought() > 3",
        "character:is_general() and not character:is_at_sea()",
        "faction:treasury() < 1000",
        "character:has_trait(\"brave\") and battle:attacker_strength() > battle:defender_strength()",
        "settlement:is_province_capital()",
        "faction:is_human() and turn_number() > 10",
        "character:age() >= 50",
        "building:chain() == \"temple\"",
        "unit:category() == \"cavalry\" and unit:experience() > 3",
        "region:public_order() < -20",
        "true"};
    return random.pick(conditions);
}
} // namespace

void SAMPLE_TABLES::add_characters(SAMPLE_CATALOGUE& catalogue)
{
    catalogue.add(
        SAMPLE_TABLE("traits")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("onscreen_name").required().localised("characters"),
                   SAMPLE_FIELD::text("effect_description").localised("characters"),
                   SAMPLE_FIELD::integer("max_level").required().with_default(3),
                   SAMPLE_FIELD::yesno("is_negative").required().with_default(false),
                   SAMPLE_FIELD::text("opposite_trait").refers_to("traits", "key", {"onscreen_name"})})
            .in_code("lpetrov")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const int count = context.count(int(sizeof(TRAITS) / sizeof(TRAITS[0])));
                QStringList keys;
                for (int i = 0; i < count; ++i)
                    keys.append(TRAITS[i][0]);
                for (int i = 0; i < count; ++i)
                {
                    const bool negative = QLatin1String(TRAITS[i][2]) == QLatin1String("true");
                    SAMPLE_ROW& row = rows.add()
                                          .set("key", TRAITS[i][0])
                                          .set("onscreen_name", TRAITS[i][1])
                                          .set("effect_description",
                                               QString("%1 %2 for the men under this character's command.")
                                                   .arg(negative ? "-" : "+")
                                                   .arg(QString::number(context.random().range(1, 4)) +
                                                        (negative ? " morale" : " melee attack")))
                                          .set("max_level", context.random().range(1, 4))
                                          .set("is_negative", negative);
                    if (keys.contains(TRAITS[i][3]))
                        row.set("opposite_trait", TRAITS[i][3]);
                }
            }));

    catalogue.add(
        SAMPLE_TABLE("ancillaries")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("onscreen_name").required().localised("characters"),
                   SAMPLE_FIELD::text("category").required().fixed({"follower", "item"}),
                   SAMPLE_FIELD::of("uid", KFT_UNIQUE_ID).describe("Id kept by saved games"),
                   SAMPLE_FIELD::yesno("unique").with_default(false),
                   SAMPLE_FIELD::text("required_culture").refers_to("cultures", "key", {"onscreen_name"})})
            .in_code("lpetrov")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const QStringList cultures = context.rows("cultures").texts("key");
                const int count = context.count(int(sizeof(ANCILLARIES) / sizeof(ANCILLARIES[0])));
                for (int i = 0; i < count; ++i)
                {
                    SAMPLE_ROW& row =
                        rows.add()
                            .set("key", QString("anc_") + ANCILLARIES[i][0])
                            .set("onscreen_name", ANCILLARIES[i][1])
                            .set("category", ANCILLARIES[i][2])
                            .set("uid", QVariant::fromValue<qulonglong>(
                                            0x1000000000000ULL + context.random().next() % 0xffffffffffULL))
                            .set("unique", context.random().chance(0.2));
                    if (context.random().chance(0.3))
                        row.set("required_culture", context.random().pick(cultures));
                }
            }));

    catalogue.add(
        SAMPLE_TABLE("advice_threads")
            .with({SAMPLE_FIELD::key("key"), SAMPLE_FIELD::text("title").required(),
                   SAMPLE_FIELD::text("text").required().localised("advice").voiced().max_length(1024),
                   SAMPLE_FIELD::integer("priority").with_default(50)})
            .in_code("ohart")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const int count = context.count(int(sizeof(ADVICE) / sizeof(ADVICE[0])));
                for (int i = 0; i < count; ++i)
                {
                    const QString topic = ADVICE[i][0];
                    QString title = topic;
                    title[0] = title[0].toUpper();
                    rows.add()
                        .set("key", "advice_" + topic)
                        .set("title", title.replace('_', ' '))
                        .set("text", ADVICE[i][1])
                        .set("priority", 10 * context.random().range(1, 9));
                }
            }));

    catalogue.add(
        SAMPLE_TABLE("trait_triggers")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("trait").required().refers_to("traits", "key", {"onscreen_name"}),
                   SAMPLE_FIELD::text("event").required().fixed(EVENTS),
                   SAMPLE_FIELD::text("condition").required().max_length(1024),
                   SAMPLE_FIELD::integer("points").required().with_default(1),
                   SAMPLE_FIELD::integer("chance").required().with_default(100)})
            .in_code("lpetrov", false)
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                for (const SAMPLE_ROW& trait : context.rows("traits"))
                    for (int n = 1, count = context.random().range(1, 3); n <= count; ++n)
                        rows.add()
                            .set("key", QString("%1_%2").arg(trait.text("key")).arg(n))
                            .set("trait", trait.text("key"))
                            .set("event", context.random().pick(EVENTS))
                            .set("condition", condition(context.random()))
                            .set("points", context.random().range(1, 2))
                            .set("chance", 5 * context.random().range(1, 20));
            }));

    catalogue.add(SAMPLE_TABLE("ancillary_triggers")
                      .with({SAMPLE_FIELD::key("key"),
                             SAMPLE_FIELD::text("ancillary")
                                 .required()
                                 .refers_to("ancillaries", "key", {"onscreen_name"}),
                             SAMPLE_FIELD::text("event").required().fixed(EVENTS),
                             SAMPLE_FIELD::text("condition").required().max_length(1024),
                             SAMPLE_FIELD::integer("chance").required().with_default(100)})
                      .in_code("lpetrov")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          for (const SAMPLE_ROW& ancillary : context.rows("ancillaries"))
                              for (int n = 1, count = context.random().range(1, 3); n <= count; ++n)
                                  rows.add()
                                      .set("key", QString("%1_%2").arg(ancillary.text("key")).arg(n))
                                      .set("ancillary", ancillary.text("key"))
                                      .set("event", context.random().pick(EVENTS))
                                      .set("condition", condition(context.random()))
                                      .set("chance", 5 * context.random().range(1, 20));
                      }));

    catalogue.add(
        SAMPLE_TABLE("advice_triggers")
            .with(
                {SAMPLE_FIELD::key("key"),
                 SAMPLE_FIELD::text("advice_thread").required().refers_to("advice_threads", "key", {"title"}),
                 SAMPLE_FIELD::text("event").required().fixed(EVENTS),
                 SAMPLE_FIELD::text("condition").required().max_length(1024),
                 SAMPLE_FIELD::integer("priority").with_default(50),
                 SAMPLE_FIELD::yesno("once_per_campaign").with_default(true)})
            .in_code("ohart")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                for (const SAMPLE_ROW& thread : context.rows("advice_threads"))
                    for (int n = 1, count = context.random().range(1, 4); n <= count; ++n)
                        rows.add()
                            .set("key", QString("%1_trigger_%2").arg(thread.text("key")).arg(n))
                            .set("advice_thread", thread.text("key"))
                            .set("event", context.random().pick(EVENTS))
                            .set("condition", condition(context.random()))
                            .set("priority", thread.value("priority"))
                            .set("once_per_campaign", context.random().chance(0.7));
            }));

    catalogue.add(SAMPLE_TABLE("encyclopedia_triggers")
                      .with({SAMPLE_FIELD::key("key"),
                             SAMPLE_FIELD::text("page").required().describe("Page of the encyclopedia"),
                             SAMPLE_FIELD::text("event").required().fixed(EVENTS),
                             SAMPLE_FIELD::text("condition").max_length(1024)})
                      .in_code("ohart")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          QStringList pages;
                          for (const QString& unit : context.rows("land_units").texts("key"))
                              pages.append("units/" + unit);
                          for (const QString& chain : context.rows("building_chains").texts("key"))
                              pages.append("buildings/" + chain);
                          for (const QString& technology : context.rows("technologies").texts("key"))
                              pages.append("technologies/" + technology);
                          for (const QString& page : context.random().sample(pages, context.count(30)))
                              rows.add()
                                  .set("key", "enc_" + SAMPLE_WORDS::slug(page))
                                  .set("page", page)
                                  .set("event", context.random().pick(
                                                    {"PanelOpened", "SettlementSelected", "UnitTrained"}))
                                  .set("condition", condition(context.random()));
                      }));
}
