#include "sample_catalogue.h"
#include "sample_context.h"
#include "sample_tables.h"
#include "sample_words.h"

#include <QDateTime>
#include <QSet>

namespace
{
struct UNIT_TYPE
{
    const char* name;
    const char* category;
    int men;
    int melee;
    int armour;
    int cost;
    double speed;
};

const UNIT_TYPE UNIT_TYPES[] = {
    {"Spearmen", "infantry", 160, 24, 35, 380, 3.6},
    {"Swordsmen", "infantry", 120, 36, 40, 620, 3.8},
    {"Shield Wall", "infantry", 120, 28, 60, 700, 3.2},
    {"Axe Warriors", "infantry", 120, 40, 25, 560, 4.0},
    {"Veteran Guard", "infantry", 100, 44, 55, 1100, 3.7},
    {"Hill Skirmishers", "infantry", 160, 18, 15, 300, 4.4},
    {"Archers", "missile", 120, 12, 15, 420, 3.9},
    {"Slingers", "missile", 120, 10, 10, 280, 4.1},
    {"Javelinmen", "missile", 120, 16, 20, 340, 4.2},
    {"Horse Archers", "missile", 80, 14, 20, 820, 9.5},
    {"Light Riders", "cavalry", 80, 22, 20, 520, 10.5},
    {"Lancers", "cavalry", 80, 30, 40, 900, 9.0},
    {"Heavy Cavalry", "cavalry", 60, 34, 70, 1350, 7.8},
    {"Scorpion Battery", "artillery", 24, 6, 10, 640, 2.5},
    {"Onager", "artillery", 16, 4, 10, 980, 2.0},
    {"Bireme", "naval", 90, 20, 30, 700, 6.0},
    {"Trireme", "naval", 150, 26, 40, 1200, 6.8},
    {"Fire Ship", "naval", 60, 10, 10, 500, 7.2},
    {"General's Bodyguard", "general", 40, 38, 60, 1400, 8.5},
};

const char* const ABILITIES[][3] = {
    {"shield_wall", "Shield Wall", "Locks shields: far harder to break by missiles, but slower."},
    {"testudo", "Tortoise", "Shields overhead and to every side; very slow, nearly proof against arrows."},
    {"rally", "Rally", "Routing units nearby return to the fight."},
    {"fire_arrows", "Fire Arrows", "Burning missiles that shake morale and set wooden gates alight."},
    {"wedge", "Wedge", "A charge formation that drives deep into enemy lines."},
    {"feigned_retreat", "Feigned Retreat", "The unit flees to draw pursuers into a trap."},
    {"stakes", "Stakes", "Sharpened stakes before the line break any cavalry charge."},
    {"hidden", "Hidden", "The unit stays out of sight in woods and tall grass."},
    {"circle", "Skirmish Circle", "Riders circle and shoot without pause."},
    {"war_cry", "War Cry", "Frightens nearby enemies for a short time."},
    {"brace", "Brace", "Spears set against the charge."},
    {"rowing_speed", "Ramming Speed", "Oars at full stroke for a ramming attack."},
    {"double_time", "Double Time", "Faster march at the cost of fatigue."},
    {"inspire", "Inspire", "The general's presence steadies the men."},
    {"loose_formation", "Loose Formation", "Spread out to suffer less from missiles."},
    {"volley", "Volley", "Every missile unit in range fires together."},
};

const char* const TECHNOLOGIES[][3] = {
    {"military", "Drilled Formations", "Units keep their ranks in battle."},
    {"military", "Forged Iron", "Better weapons for the heavy infantry."},
    {"military", "Siegecraft", "Siege engines can be built in the field."},
    {"military", "Stirrups", "Cavalry charges hit harder."},
    {"military", "Professional Army", "Soldiers serve for pay, not only for plunder."},
    {"military", "Composite Bows", "Archers shoot further."},
    {"military", "Scale Armour", "Armour for the elite troops."},
    {"military", "Field Fortifications", "Armies may fortify their camps."},
    {"military", "Signal Fires", "Reinforcements arrive sooner."},
    {"military", "Standing Legions", "Armies cost less upkeep in peace."},
    {"civic", "Irrigation", "More food from every field."},
    {"civic", "Aqueducts", "Cities may grow beyond their wells."},
    {"civic", "Coinage", "Trade income rises."},
    {"civic", "Written Law", "Public order improves in every province."},
    {"civic", "Road Building", "Armies march faster on your land."},
    {"civic", "Granaries", "Food keeps through the winter."},
    {"civic", "Public Baths", "Cities are healthier and happier."},
    {"civic", "Philosophy", "Research speeds up."},
    {"civic", "Tax Census", "Taxes are collected in full."},
    {"civic", "Temple Rites", "The gods favour your people."},
    {"naval", "Shipwrights", "Ships are built faster."},
    {"naval", "Harbour Chains", "Ports resist blockade."},
    {"naval", "Star Navigation", "Fleets may cross open sea."},
    {"naval", "Bronze Rams", "Rams deal more damage."},
    {"naval", "Grain Fleets", "Food can be shipped between provinces."},
    {"naval", "Lighthouses", "Trade routes by sea are safer."},
};

const char* const BUILDING_CHAINS[][6] = {
    {"barracks", "military", "Training Ground", "Barracks", "Military Academy", "Great Fortress"},
    {"stables", "military", "Paddock", "Stables", "Horse Breeder", "Royal Stud"},
    {"archery_range", "military", "Archery Butts", "Archery Range", "Bowyers' Guild", nullptr},
    {"farm", "economy", "Fields", "Irrigated Fields", "Great Estates", "Granary Estates"},
    {"market", "economy", "Bazaar", "Market", "Trade Hall", "Grand Emporium"},
    {"temple", "religion", "Shrine", "Temple", "Great Temple", "Sanctuary of the Gods"},
    {"walls", "defence", "Palisade", "Stone Walls", "Great Walls", nullptr},
    {"port", "naval", "Fishing Jetty", "Harbour", "Naval Dockyard", "Great Harbour"},
    {"mine", "economy", "Quarry", "Mine", "Deep Mine", nullptr},
    {"library", "culture", "Scriptorium", "Library", "Great Library", nullptr},
};

// "a Kharid", "an Aurelian".
QString with_article(const QString& word)
{
    return (QStringLiteral("AEIOU").contains(word.left(1)) ? QStringLiteral("an ") : QStringLiteral("a ")) + word;
}

QString unit_description(const UNIT_TYPE& type, const QString& adjective)
{
    const QString category = QString::fromLatin1(type.category);
    if (category == QLatin1String("infantry"))
        return QString("%1 foot soldiers who hold the line against all but the heaviest charge.")
            .arg(adjective);
    if (category == QLatin1String("missile"))
        return QString("%1 skirmishers who wear down the enemy before the lines meet.").arg(adjective);
    if (category == QLatin1String("cavalry"))
        return QString("%1 horsemen, swift to strike at flanks and routing enemies.").arg(adjective);
    if (category == QLatin1String("artillery"))
        return QString("%1 engineers with engines that batter walls and break formations.").arg(adjective);
    if (category == QLatin1String("naval"))
        return QString("%1 warship crewed by marines and rowers.").arg(with_article(adjective)).replace(0, 1, "A");
    return QString("The sworn guard of %1 general, chosen from the best.").arg(with_article(adjective));
}
} // namespace

void SAMPLE_TABLES::add_military(SAMPLE_CATALOGUE& catalogue)
{
    catalogue.add(
        SAMPLE_TABLE("unit_abilities")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("onscreen_name").required().localised("units"),
                   SAMPLE_FIELD::text("tooltip").localised("units"),
                   SAMPLE_FIELD::of("cooldown", KFT_SINGLE).with_default(30.0f).describe("Seconds"),
                   SAMPLE_FIELD::integer("duration").describe("Seconds; 0 lasts until switched off"),
                   SAMPLE_FIELD::yesno("passive").with_default(false)})
            .in_code("tbrandt")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const int count = context.count(int(sizeof(ABILITIES) / sizeof(ABILITIES[0])));
                for (int i = 0; i < count; ++i)
                    rows.add()
                        .set("key", ABILITIES[i][0])
                        .set("onscreen_name", ABILITIES[i][1])
                        .set("tooltip", ABILITIES[i][2])
                        .set("cooldown", float(context.random().range(2, 12) * 5))
                        .set("duration", context.random().chance(0.3) ? 0 : context.random().range(10, 60))
                        .set("passive", context.random().chance(0.2));
            }));

    catalogue.add(
        SAMPLE_TABLE("land_units")
            .with(
                {SAMPLE_FIELD::key("key"),
                 SAMPLE_FIELD::text("onscreen_name").required().localised("units").encyclopaedia(),
                 SAMPLE_FIELD::text("short_description").localised("units").max_length(512),
                 SAMPLE_FIELD::text("category")
                     .required()
                     .fixed({"infantry", "missile", "cavalry", "artillery", "naval", "general"}),
                 SAMPLE_FIELD::integer("men").required().with_default(120),
                 SAMPLE_FIELD::of("morale", KFT_UNSIGNED_INTEGER).required().with_default(40),
                 SAMPLE_FIELD::of("speed", KFT_SINGLE).required().describe("Metres a second on open ground"),
                 SAMPLE_FIELD::of("mass", KFT_DOUBLE).describe("Kilograms per soldier with kit"),
                 SAMPLE_FIELD::integer("melee_attack").required(), SAMPLE_FIELD::integer("armour").required(),
                 SAMPLE_FIELD::integer("charge_bonus"),
                 SAMPLE_FIELD::of("ability_flags", KFT_CARD64)
                     .describe("Bit set of the unit's innate traits"),
                 SAMPLE_FIELD::text("icon").file("ui/units/icons/").agf_from()})
            .in_code("tbrandt")
            .agf("unit_variants")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                SAMPLE_RANDOM& random = context.random();
                for (const SAMPLE_CULTURE& culture : context.words().cultures())
                {
                    QList<int> types;
                    for (int i = 0; i < int(sizeof(UNIT_TYPES) / sizeof(UNIT_TYPES[0])); ++i)
                        if (!context.small() || i % 9 == 0)
                            types.append(i);
                    for (int index : qAsConst(types))
                    {
                        const UNIT_TYPE& type = UNIT_TYPES[index];
                        const bool veteran = !context.small() && random.chance(0.12);
                        for (int tier = 0; tier < (veteran ? 2 : 1); ++tier)
                        {
                            QString name = culture.adjective + " " + QString::fromLatin1(type.name);
                            QString key = culture.prefix + "_" + SAMPLE_WORDS::slug(type.name);
                            if (tier == 1)
                            {
                                name = "Veteran " + name;
                                key += "_veteran";
                            }
                            const double scale = tier == 1 ? 1.25 : 1.0;
                            rows.add()
                                .set("key", key)
                                .set("onscreen_name", name)
                                .set("short_description", unit_description(type, culture.adjective))
                                .set("category", type.category)
                                .set("men", type.men)
                                .set("morale", random.range(30, 70) + tier * 10)
                                .set("speed", float(qRound(type.speed * random.real(9.0, 11.0))) / 10.0f)
                                .set("mass", double(random.range(7000, 11000)) / 100.0)
                                .set("melee_attack", int(type.melee * scale) + random.range(-3, 3))
                                .set("armour", int(type.armour * scale) + random.range(-5, 5))
                                .set("charge_bonus", random.range(5, 40))
                                .set("ability_flags",
                                     QVariant::fromValue<qulonglong>(random.next() & 0xffff00ff00ULL))
                                .set("icon", key + ".png");
                        }
                    }
                }
            }));

    catalogue.add(
        SAMPLE_TABLE("main_units")
            .with(
                {SAMPLE_FIELD::key("unit"),
                 SAMPLE_FIELD::text("land_unit").required().refers_to("land_units", "key", {"onscreen_name"}),
                 SAMPLE_FIELD::text("culture").required().refers_to("cultures", "key", {"onscreen_name"}),
                 SAMPLE_FIELD::integer("cost").required(),
                 SAMPLE_FIELD::of("upkeep_cost", KFT_DECIMAL).required(),
                 SAMPLE_FIELD::integer("min_men_per_ship").with_default(0),
                 SAMPLE_FIELD::yesno("is_naval").required().with_default(false),
                 SAMPLE_FIELD::text("weight").required().fixed({"light", "medium", "heavy", "very_heavy"}),
                 SAMPLE_FIELD::of("tier", KFT_UNSIGNED_INTEGER).required().with_default(1),
                 SAMPLE_FIELD::yesno("recruitable").with_default(true),
                 SAMPLE_FIELD::of("last_balance_pass", KFT_DATE_TIME)
                     .describe("When balancing last touched the unit")})
            .in_code("tbrandt")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                SAMPLE_RANDOM& random = context.random();
                for (const SAMPLE_ROW& land : context.rows("land_units"))
                {
                    const QString key = land.text("key");
                    const QString category = land.text("category");
                    const int men = land.value("men").toInt();
                    const int armour = land.value("armour").toInt();
                    QString weight = armour > 55 ? "heavy" : armour > 30 ? "medium" : "light";
                    if (category == "artillery")
                        weight = "very_heavy";
                    const int cost = men * (armour + land.value("melee_attack").toInt()) / 14 + 120;
                    SAMPLE_ROW& row =
                        rows.add()
                            .set("unit", key)
                            .set("land_unit", key)
                            .set("culture", context.words().culture_of_prefix(key.section('_', 0, 0))->key)
                            .set("cost", cost - cost % 10)
                            .set("upkeep_cost", double(cost / 5) + double(random.range(0, 3)) * 0.25)
                            .set("min_men_per_ship",
                                 category == "naval" ? 0 : qMin(men, 5 * random.range(1, 3)))
                            .set("is_naval", category == "naval")
                            .set("weight", weight)
                            .set("tier", key.endsWith("_veteran") ? 3 : random.range(1, 2))
                            .set("recruitable", category != "general");
                    if (random.chance(0.6))
                        row.set("last_balance_pass",
                                QDateTime::fromMSecsSinceEpoch(context.past_msecs(400), Qt::UTC));
                }
            }));

    catalogue.add(
        SAMPLE_TABLE("land_units_to_abilities")
            .with({SAMPLE_FIELD::key("land_unit").refers_to("land_units", "key", {"onscreen_name"}),
                   SAMPLE_FIELD::key("ability").refers_to("unit_abilities", "key", {"onscreen_name"}),
                   SAMPLE_FIELD::yesno("starts_enabled").with_default(true)})
            .in_code("tbrandt")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const QStringList abilities = context.rows("unit_abilities").texts("key");
                for (const SAMPLE_ROW& land : context.rows("land_units"))
                    for (const QString& ability :
                         context.random().sample(abilities, context.random().range(1, 3)))
                        rows.add()
                            .set("land_unit", land.text("key"))
                            .set("ability", ability)
                            .set("starts_enabled", context.random().chance(0.8));
            }));

    catalogue.add(SAMPLE_TABLE("units_to_factions")
                      .with({SAMPLE_FIELD::key("unit").refers_to("main_units", "unit", {"land_unit"}),
                             SAMPLE_FIELD::key("faction").refers_to("factions", "key", {"screen_name"}),
                             SAMPLE_FIELD::yesno("allowed").required().with_default(true),
                             SAMPLE_FIELD::yesno("exclusive").with_default(false)})
                      .in_code("tbrandt")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          for (const SAMPLE_ROW& faction : context.rows("factions"))
                          {
                              const QString culture = faction.text("culture");
                              for (const SAMPLE_ROW& unit : context.rows("main_units"))
                              {
                                  if (unit.text("culture") != culture || context.random().chance(0.25))
                                      continue;
                                  rows.add()
                                      .set("unit", unit.text("unit"))
                                      .set("faction", faction.text("key"))
                                      .set("allowed", true)
                                      .set("exclusive", context.random().chance(0.05));
                              }
                          }
                      }));

    catalogue.add(
        SAMPLE_TABLE("technologies")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("onscreen_name").required().localised("technologies").encyclopaedia(),
                   SAMPLE_FIELD::text("short_description").localised("technologies"),
                   SAMPLE_FIELD::text("tree").required().fixed({"military", "civic", "naval"}),
                   SAMPLE_FIELD::integer("tier").required(),
                   SAMPLE_FIELD::integer("research_points").required(),
                   SAMPLE_FIELD::text("required_technology")
                       .refers_to("technologies", "key", {"onscreen_name"}),
                   SAMPLE_FIELD::text("icon").file("ui/technologies/")})
            .in_code("hlindqvist")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const int count = context.count(int(sizeof(TECHNOLOGIES) / sizeof(TECHNOLOGIES[0])));
                QMap<QString, QString> last_of_tree;
                QMap<QString, int> tier_of_tree;
                for (int i = 0; i < count; ++i)
                {
                    const QString tree = TECHNOLOGIES[i][0];
                    const QString key = "tech_" + tree + "_" + SAMPLE_WORDS::slug(TECHNOLOGIES[i][1]);
                    const int tier = ++tier_of_tree[tree];
                    SAMPLE_ROW& row =
                        rows.add()
                            .set("key", key)
                            .set("onscreen_name", TECHNOLOGIES[i][1])
                            .set("short_description", TECHNOLOGIES[i][2])
                            .set("tree", tree)
                            .set("tier", tier)
                            .set("research_points", 200 * tier + 50 * context.random().range(0, 6))
                            .set("icon", key + ".png");
                    if (last_of_tree.contains(tree) && context.random().chance(0.8))
                        row.set("required_technology", last_of_tree.value(tree));
                    last_of_tree.insert(tree, key);
                }
            }));

    catalogue.add(
        SAMPLE_TABLE("technologies_to_factions")
            .with({SAMPLE_FIELD::key("technology").refers_to("technologies", "key", {"onscreen_name"}),
                   SAMPLE_FIELD::key("faction").refers_to("factions", "key", {"screen_name"}),
                   SAMPLE_FIELD::yesno("starts_researched").with_default(false)})
            .in_code("hlindqvist")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                for (const SAMPLE_ROW& faction : context.rows("factions"))
                {
                    if (faction.value("is_rebel").toBool())
                        continue;
                    for (const SAMPLE_ROW& technology : context.rows("technologies"))
                    {
                        if (context.random().chance(0.3))
                            continue;
                        rows.add()
                            .set("technology", technology.text("key"))
                            .set("faction", faction.text("key"))
                            .set("starts_researched", technology.value("tier").toInt() == 1);
                    }
                }
            }));

    catalogue.add(SAMPLE_TABLE("building_chains")
                      .with({SAMPLE_FIELD::key("key"),
                             SAMPLE_FIELD::text("onscreen_name").required().localised("buildings"),
                             SAMPLE_FIELD::text("category")
                                 .required()
                                 .fixed({"military", "economy", "religion", "defence", "naval", "culture"})})
                      .in_code("praman")
                      .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                          const int count =
                              context.count(int(sizeof(BUILDING_CHAINS) / sizeof(BUILDING_CHAINS[0])));
                          for (int i = 0; i < count; ++i)
                              rows.add()
                                  .set("key", BUILDING_CHAINS[i][0])
                                  .set("onscreen_name", BUILDING_CHAINS[i][3])
                                  .set("category", BUILDING_CHAINS[i][1]);
                      }));

    catalogue.add(
        SAMPLE_TABLE("building_levels")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("chain").required().refers_to("building_chains", "key",
                                                                    {"onscreen_name"}),
                   SAMPLE_FIELD::integer("level").required(),
                   SAMPLE_FIELD::text("onscreen_name").required().localised("buildings").encyclopaedia(),
                   SAMPLE_FIELD::integer("cost").required(),
                   SAMPLE_FIELD::integer("turns").required().with_default(2),
                   SAMPLE_FIELD::of("upkeep", KFT_DECIMAL),
                   SAMPLE_FIELD::text("required_technology")
                       .refers_to("technologies", "key", {"onscreen_name"})})
            .in_code("praman")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const QStringList technologies = context.rows("technologies").texts("key");
                for (const SAMPLE_ROW& chain : context.rows("building_chains"))
                {
                    const QString key = chain.text("key");
                    int index = 0;
                    while (QString::fromLatin1(BUILDING_CHAINS[index][0]) != key)
                        ++index;
                    for (int level = 1; level <= 4 && BUILDING_CHAINS[index][level + 1]; ++level)
                    {
                        SAMPLE_ROW& row =
                            rows.add()
                                .set("key", key + "_" + QString::number(level))
                                .set("chain", key)
                                .set("level", level)
                                .set("onscreen_name", BUILDING_CHAINS[index][level + 1])
                                .set("cost", level * level * 300 + 100 * context.random().range(0, 4))
                                .set("turns", level + 1)
                                .set("upkeep", double(level * 15) + 2.5 * context.random().range(0, 3));
                        if (level >= 3 && !technologies.isEmpty())
                            row.set("required_technology", context.random().pick(technologies));
                    }
                }
            }));
}
