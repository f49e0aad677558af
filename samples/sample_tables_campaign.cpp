#include "sample_catalogue.h"
#include "sample_context.h"
#include "sample_tables.h"
#include "sample_words.h"

#include <QDateTime>

namespace
{
struct CAMPAIGN
{
    const char* key;
    const char* name;
    int start_year;
    int turns_per_year;
    bool playable;
    const char* cultures; // blank-separated; empty: every culture
    const char* released;
};

const CAMPAIGN CAMPAIGNS[] = {
    {"main_aurel", "The Aurelian Ascendancy", -280, 4, true, "", "2024-10-08"},
    {"prologue_ember", "Prologue: Embers of the Republic", -301, 12, true, "aurelian thalassan",
     "2024-10-08"},
    {"steppe_khanates", "Khanates of the Endless Steppe", -250, 2, true, "khar veshan", "2025-02-20"},
    {"isles_of_salt", "Isles of Salt", -260, 4, false, "thalassan norl", "2025-06-12"},
};

QString faction_culture(const SAMPLE_CONTEXT& context, const QString& faction)
{
    const SAMPLE_ROW* row = context.rows("factions").find("key", faction);
    return row ? row->text("culture") : QString();
}
} // namespace

void SAMPLE_TABLES::add_campaign(SAMPLE_CATALOGUE& catalogue)
{
    catalogue.add(
        SAMPLE_TABLE("campaigns")
            .with({SAMPLE_FIELD::key("campaign_name"),
                   SAMPLE_FIELD::text("onscreen_name").required().localised("campaign"),
                   SAMPLE_FIELD::yesno("playable").required().with_default(false),
                   SAMPLE_FIELD::integer("start_year")
                       .required()
                       .describe("Negative years are before the founding"),
                   SAMPLE_FIELD::integer("turns_per_year").required().with_default(4),
                   SAMPLE_FIELD::text("map_name").required().file("campaign_maps/"),
                   SAMPLE_FIELD::of("release_date", KFT_DATE_TIME)})
            .in_code("mokafor")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const int count = context.small() ? 2 : int(sizeof(CAMPAIGNS) / sizeof(CAMPAIGNS[0]));
                for (int i = 0; i < count; ++i)
                    rows.add()
                        .set("campaign_name", CAMPAIGNS[i].key)
                        .set("onscreen_name", CAMPAIGNS[i].name)
                        .set("playable", CAMPAIGNS[i].playable)
                        .set("start_year", CAMPAIGNS[i].start_year)
                        .set("turns_per_year", CAMPAIGNS[i].turns_per_year)
                        .set("map_name", QString(CAMPAIGNS[i].key) + "_map")
                        .set("release_date", QDateTime(QDate::fromString(CAMPAIGNS[i].released, Qt::ISODate),
                                                       QTime(10, 0), Qt::UTC));
            }));

    catalogue.add(
        SAMPLE_TABLE("start_pos_factions")
            .with({SAMPLE_FIELD::key("ID", KFT_AUTONUMBER),
                   SAMPLE_FIELD::text("campaign")
                       .required()
                       .refers_to("campaigns", "campaign_name", {"onscreen_name"}),
                   SAMPLE_FIELD::text("faction").required().refers_to("factions", "key", {"screen_name"}),
                   SAMPLE_FIELD::yesno("playable").required().with_default(false),
                   SAMPLE_FIELD::integer("treasury").with_default(2000),
                   SAMPLE_FIELD::yesno("unique").with_default(false).describe(
                       "Kept when a start position is copied over this campaign")})
            .implemented("mokafor", "loc-only")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                int id = 0;
                for (const SAMPLE_ROW& campaign : context.rows("campaigns"))
                {
                    const QString key = campaign.text("campaign_name");
                    QString cultures;
                    for (const CAMPAIGN& known : CAMPAIGNS)
                        if (key == QLatin1String(known.key))
                            cultures = known.cultures;
                    for (const SAMPLE_ROW& faction : context.rows("factions"))
                    {
                        if (!cultures.isEmpty() && !cultures.split(' ').contains(faction.text("culture")))
                            continue;
                        const bool rebel = faction.value("is_rebel").toBool();
                        // A small project keeps every culture's first faction and its rebels.
                        if (context.small() && !rebel && !faction.text("key").endsWith("republic") &&
                            !faction.text("key").endsWith("horde") && !faction.text("key").endsWith("empire"))
                            continue;
                        rows.add()
                            .set("ID", ++id)
                            .set("campaign", key)
                            .set("faction", faction.text("key"))
                            .set("playable", !rebel && (campaign.value("playable").toBool()) &&
                                                 context.random().chance(0.7))
                            .set("treasury", rebel ? 0 : 500 * context.random().range(2, 12))
                            .set("unique", !rebel && context.random().chance(0.1));
                    }
                }
            }));

    catalogue.add(SAMPLE_TABLE("start_pos_characters")
                      .with({SAMPLE_FIELD::key("id", KFT_AUTONUMBER),
                             SAMPLE_FIELD::of("faction", KFT_INTEGER)
                                 .required()
                                 .refers_to("start_pos_factions", "ID", {"faction"}),
                             SAMPLE_FIELD::text("forename").required(), SAMPLE_FIELD::text("surname"),
                             SAMPLE_FIELD::integer("age").required().with_default(30),
                             SAMPLE_FIELD::yesno("is_faction_leader").with_default(false),
                             SAMPLE_FIELD::yesno("is_general").with_default(false),
                             SAMPLE_FIELD::yesno("unique").with_default(false),
                             SAMPLE_FIELD::of("character_uid", KFT_UNIQUE_ID).startpos_reprocess()})
                      .implemented("mokafor", "loc-only")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          int id = 0;
                          SAMPLE_RANDOM& random = context.random();
                          for (const SAMPLE_ROW& faction : context.rows("start_pos_factions"))
                          {
                              const SAMPLE_CULTURE* culture =
                                  context.words().culture(faction_culture(context, faction.text("faction")));
                              const bool rebel = faction.text("faction").endsWith("_rebels");
                              const int count = rebel ? 1 : random.range(2, 4);
                              for (int n = 0; n < count; ++n)
                              {
                                  ++id;
                                  SAMPLE_ROW& row =
                                      rows.add()
                                          .set("id", id)
                                          .set("faction", faction.value("ID"))
                                          .set("forename", context.words().forename(*culture, random))
                                          .set("age", random.range(18, 66))
                                          .set("is_faction_leader", n == 0 && !rebel)
                                          .set("is_general", n == 0 || random.chance(0.6))
                                          .set("unique", n == 0 && !rebel && random.chance(0.5))
                                          .set("character_uid",
                                               QVariant::fromValue<qulonglong>(0x2000000000000ULL +
                                                                               quint64(id) * 7919ULL));
                                  if (random.chance(0.85))
                                      row.set("surname", random.pick(culture->surnames));
                              }
                          }
                      }));

    catalogue.add(SAMPLE_TABLE("start_pos_character_traits")
                      .with({SAMPLE_FIELD::key("character", KFT_INTEGER)
                                 .refers_to("start_pos_characters", "id", {"forename"}),
                             SAMPLE_FIELD::key("trait").refers_to("traits", "key", {"onscreen_name"}),
                             SAMPLE_FIELD::integer("level").required().with_default(1)})
                      .implemented("lpetrov", "loc-only")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          const QStringList traits = context.rows("traits").texts("key");
                          for (const SAMPLE_ROW& character : context.rows("start_pos_characters"))
                              for (const QString& trait :
                                   context.random().sample(traits, context.random().range(0, 3)))
                                  rows.add()
                                      .set("character", character.value("id"))
                                      .set("trait", trait)
                                      .set("level", context.random().range(1, 3));
                      }));

    catalogue.add(
        SAMPLE_TABLE("start_pos_regions")
            .with({SAMPLE_FIELD::key("id", KFT_AUTONUMBER),
                   SAMPLE_FIELD::text("campaign")
                       .required()
                       .refers_to("campaigns", "campaign_name", {"onscreen_name"}),
                   SAMPLE_FIELD::text("region").required().refers_to("regions", "key", {"onscreen_name"}),
                   SAMPLE_FIELD::of("owner", KFT_INTEGER)
                       .required()
                       .refers_to("start_pos_factions", "ID", {"faction"}),
                   SAMPLE_FIELD::integer("population").required(), SAMPLE_FIELD::integer("public_order")})
            .implemented("praman", "loc-only")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                int id = 0;
                const SAMPLE_ROWS& factions = context.rows("start_pos_factions");
                for (const SAMPLE_ROW& campaign : context.rows("campaigns"))
                {
                    const QString key = campaign.text("campaign_name");
                    QMap<QString, QList<int>> owners_by_culture;
                    for (const SAMPLE_ROW& faction : factions)
                        if (faction.text("campaign") == key)
                            owners_by_culture[faction_culture(context, faction.text("faction"))].append(
                                faction.value("ID").toInt());
                    for (const SAMPLE_ROW& region : context.rows("regions"))
                    {
                        const SAMPLE_ROW* province =
                            context.rows("provinces").find("key", region.text("province"));
                        const QList<int> owners = owners_by_culture.value(province->text("culture"));
                        if (owners.isEmpty())
                            continue;
                        rows.add()
                            .set("id", ++id)
                            .set("campaign", key)
                            .set("region", region.text("key"))
                            .set("owner", owners.at(context.random().index(owners.size())))
                            .set("population", 100 * context.random().range(8, 120))
                            .set("public_order", context.random().range(-30, 40));
                    }
                }
            }));

    catalogue.add(SAMPLE_TABLE("start_pos_region_buildings")
                      .with({SAMPLE_FIELD::key("id", KFT_AUTONUMBER),
                             SAMPLE_FIELD::of("region", KFT_INTEGER)
                                 .required()
                                 .refers_to("start_pos_regions", "id", {"region"}),
                             SAMPLE_FIELD::integer("slot").required(),
                             SAMPLE_FIELD::text("building")
                                 .required()
                                 .refers_to("building_levels", "key", {"onscreen_name"}),
                             SAMPLE_FIELD::of("damage", KFT_SINGLE).with_default(0.0f)})
                      .implemented("praman", "loc-only")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          int id = 0;
                          QStringList low_levels;
                          for (const SAMPLE_ROW& level : context.rows("building_levels"))
                              if (level.value("level").toInt() <= 2)
                                  low_levels.append(level.text("key"));
                          for (const SAMPLE_ROW& region : context.rows("start_pos_regions"))
                          {
                              int slot = 0;
                              for (const QString& building :
                                   context.random().sample(low_levels, context.random().range(1, 3)))
                                  rows.add()
                                      .set("id", ++id)
                                      .set("region", region.value("id"))
                                      .set("slot", ++slot)
                                      .set("building", building)
                                      .set("damage", context.random().chance(0.15)
                                                         ? float(context.random().range(1, 9)) / 10.0f
                                                         : 0.0f);
                          }
                      }));

    catalogue.add(
        SAMPLE_TABLE("start_pos_armies")
            .with({SAMPLE_FIELD::key("key").describe(
                       "Copies of a start position append '_' to keep keys apart"),
                   SAMPLE_FIELD::text("campaign")
                       .required()
                       .refers_to("campaigns", "campaign_name", {"onscreen_name"}),
                   SAMPLE_FIELD::of("faction", KFT_INTEGER)
                       .required()
                       .refers_to("start_pos_factions", "ID", {"faction"}),
                   SAMPLE_FIELD::of("general", KFT_INTEGER)
                       .refers_to("start_pos_characters", "id", {"forename"}),
                   SAMPLE_FIELD::of("position", KFT_INTEGER).refers_to("start_pos_regions", "id", {"region"}),
                   SAMPLE_FIELD::text("army_name").localised("campaign")})
            .implemented("mokafor", "loc-only")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                static const QStringList names = {"First Legion", "Northern Host",     "Guard of the Capital",
                                                  "Border Watch", "Army of the River", "Iron Column",
                                                  "Sea Raiders",  "Vanguard"};
                for (const SAMPLE_ROW& faction : context.rows("start_pos_factions"))
                {
                    if (faction.text("faction").endsWith("_rebels"))
                        continue;
                    QList<int> generals;
                    for (const SAMPLE_ROW& character : context.rows("start_pos_characters"))
                        if (character.value("faction") == faction.value("ID") &&
                            character.value("is_general").toBool())
                            generals.append(character.value("id").toInt());
                    QList<int> regions;
                    for (const SAMPLE_ROW& region : context.rows("start_pos_regions"))
                        if (region.value("owner") == faction.value("ID"))
                            regions.append(region.value("id").toInt());
                    const int count = context.random().range(1, 2);
                    for (int n = 1; n <= count; ++n)
                    {
                        SAMPLE_ROW& row =
                            rows.add()
                                .set("key", QString("%1_%2_army_%3")
                                                .arg(faction.text("campaign"), faction.text("faction"))
                                                .arg(n))
                                .set("campaign", faction.text("campaign"))
                                .set("faction", faction.value("ID"))
                                .set("army_name", context.random().pick(names));
                        if (n <= generals.size())
                            row.set("general", generals.at(n - 1));
                        if (!regions.isEmpty())
                            row.set("position", regions.at(context.random().index(regions.size())));
                    }
                }
            }));

    catalogue.add(
        SAMPLE_TABLE("start_pos_army_units")
            .with({SAMPLE_FIELD::key("id", KFT_AUTONUMBER),
                   SAMPLE_FIELD::text("army").required().refers_to("start_pos_armies", "key", {"army_name"}),
                   SAMPLE_FIELD::text("unit").required().refers_to("main_units", "unit", {"land_unit"}),
                   SAMPLE_FIELD::integer("experience").with_default(0),
                   SAMPLE_FIELD::of("strength", KFT_SINGLE).required().with_default(1.0f)})
            .implemented("mokafor", "loc-only")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                int id = 0;
                const SAMPLE_ROWS& factions = context.rows("start_pos_factions");
                for (const SAMPLE_ROW& army : context.rows("start_pos_armies"))
                {
                    const SAMPLE_ROW* faction = nullptr;
                    for (const SAMPLE_ROW& candidate : factions)
                        if (candidate.value("ID") == army.value("faction"))
                            faction = &candidate;
                    const QString culture = faction_culture(context, faction->text("faction"));
                    QStringList units;
                    for (const SAMPLE_ROW& unit : context.rows("main_units"))
                        if (unit.text("culture") == culture && !unit.value("is_naval").toBool())
                            units.append(unit.text("unit"));
                    const int count = context.small() ? 2 : context.random().range(4, 9);
                    for (int n = 0; n < count && !units.isEmpty(); ++n)
                        rows.add()
                            .set("id", ++id)
                            .set("army", army.text("key"))
                            .set("unit", context.random().pick(units))
                            .set("experience", context.random().range(0, 5))
                            .set("strength", float(context.random().range(55, 100)) / 100.0f);
                }
            }));

    catalogue.add(SAMPLE_TABLE("start_pos_diplomacy")
                      .with({SAMPLE_FIELD::key("faction_a", KFT_INTEGER)
                                 .refers_to("start_pos_factions", "ID", {"faction"}),
                             SAMPLE_FIELD::key("faction_b", KFT_INTEGER)
                                 .refers_to("start_pos_factions", "ID", {"faction"}),
                             SAMPLE_FIELD::text("relationship")
                                 .required()
                                 .fixed({"war", "peace", "alliance", "vassal", "trade"}),
                             SAMPLE_FIELD::integer("since_turn").with_default(0)})
                      .implemented("mokafor", "loc-only")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          const SAMPLE_ROWS& factions = context.rows("start_pos_factions");
                          static const QStringList relationships = {"war",      "peace",  "peace",
                                                                    "alliance", "vassal", "trade"};
                          for (int a = 0; a < factions.size(); ++a)
                              for (int b = a + 1; b < factions.size(); ++b)
                              {
                                  if (factions[a].text("campaign") != factions[b].text("campaign") ||
                                      !context.random().chance(context.small() ? 0.5 : 0.25))
                                      continue;
                                  rows.add()
                                      .set("faction_a", factions[a].value("ID"))
                                      .set("faction_b", factions[b].value("ID"))
                                      .set("relationship", context.random().pick(relationships))
                                      .set("since_turn", -context.random().range(0, 20));
                              }
                      }));

    catalogue.add(SAMPLE_TABLE("faction_civil_war_setups")
                      .with({SAMPLE_FIELD::key("key"),
                             SAMPLE_FIELD::text("campaign")
                                 .required()
                                 .refers_to("campaigns", "campaign_name", {"onscreen_name"}),
                             SAMPLE_FIELD::text("primary_faction")
                                 .required()
                                 .refers_to("factions", "key", {"screen_name"}),
                             SAMPLE_FIELD::text("secondary_faction")
                                 .required()
                                 .refers_to("factions", "key", {"screen_name"}),
                             SAMPLE_FIELD::integer("earliest_turn").with_default(20)})
                      .in_code("mokafor")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          // The second faction of a culture splits off from the first.
                          QMap<QString, QStringList> by_culture;
                          for (const SAMPLE_ROW& faction : context.rows("factions"))
                              if (!faction.value("is_rebel").toBool())
                                  by_culture[faction.text("culture")].append(faction.text("key"));
                          for (const SAMPLE_ROW& campaign : context.rows("campaigns"))
                          {
                              const QString key = campaign.text("campaign_name");
                              for (auto it = by_culture.constBegin(); it != by_culture.constEnd(); ++it)
                              {
                                  if (it->size() < 2 || (key != "main_aurel" && context.random().chance(0.6)))
                                      continue;
                                  rows.add()
                                      .set("key", key + "_" + it->at(0) + "_civil_war")
                                      .set("campaign", key)
                                      .set("primary_faction", it->at(0))
                                      .set("secondary_faction", it->at(1))
                                      .set("earliest_turn", 10 * context.random().range(2, 8));
                              }
                          }
                      }));
}
