#include "sample_catalogue.h"
#include "sample_context.h"
#include "sample_tables.h"
#include "sample_words.h"

#include <QSet>

namespace
{
struct FACTION
{
    const char* key;
    const char* culture;
    const char* name;
    bool rebel;
};

const FACTION FACTIONS[] = {
    {"aur_republic", "aurelian", "Aurelian Republic", false},
    {"aur_gens_valeria", "aurelian", "Gens Valeria", false},
    {"aur_gens_corvina", "aurelian", "Gens Corvina", false},
    {"aur_rebels", "aurelian", "Aurelian Rebels", true},
    {"khar_ashen_horde", "khar", "Ashen Horde", false},
    {"khar_sky_khanate", "khar", "Sky Khanate", false},
    {"khar_tollan_clans", "khar", "Tollan Clans", false},
    {"khar_rebels", "khar", "Kharid Rebels", true},
    {"vesh_empire", "veshan", "Veshani Empire", false},
    {"vesh_satrapy_ardhan", "veshan", "Satrapy of Ardhan", false},
    {"vesh_zarin_league", "veshan", "Zarin League", false},
    {"vesh_rebels", "veshan", "Veshani Rebels", true},
    {"norl_haldvik", "norl", "Haldvik Jarldom", false},
    {"norl_skagheim", "norl", "Skagheim", false},
    {"norl_raven_kin", "norl", "Raven Kin", false},
    {"norl_rebels", "norl", "Norlund Rebels", true},
    {"thal_korythos", "thalassan", "Korythos", false},
    {"thal_melian_league", "thalassan", "Melian League", false},
    {"thal_naxarchy", "thalassan", "Naxarchy of the Isles", false},
    {"thal_rebels", "thalassan", "Thalassan Rebels", true},
    {"sund_kingdom", "sundari", "Sundari Kingdom", false},
    {"sund_keme_nomarchs", "sundari", "Nomarchs of Keme", false},
    {"sund_meret_temple", "sundari", "Temple of Meret", false},
    {"sund_rebels", "sundari", "Sundari Rebels", true},
};

const char* const HORDE_TYPES[][3] = {
    {"steppe_horde_camp", "Wandering Camp", "1.25"},
    {"steppe_horde_war_band", "War Band", "1.6"},
    {"steppe_horde_great_yurt", "Great Yurt", "0.9"},
    {"steppe_horde_caravan", "Trade Caravan", "1.1"},
};
} // namespace

void SAMPLE_TABLES::add_world(SAMPLE_CATALOGUE& catalogue)
{
    catalogue.add(
        SAMPLE_TABLE("languages")
            .with({SAMPLE_FIELD::key("key").max_length(8).describe(
                       "Language code, as the localisation files name it"),
                   SAMPLE_FIELD::text("full_name").required().describe("The language's name in itself"),
                   SAMPLE_FIELD::yesno("enabled").with_default(true), SAMPLE_FIELD::integer("sort_order")})
            .implemented("ivarga", "loc-only")
            .rows([](SAMPLE_CONTEXT&, SAMPLE_ROWS& rows) {
                QStringList codes = {"all", "en"};
                codes += SAMPLE_WORDS::translated_languages();
                int order = 0;
                for (const QString& code : qAsConst(codes))
                    rows.add()
                        .set("key", code)
                        .set("full_name", SAMPLE_WORDS::language_name(code))
                        .set("enabled", code != "pl")
                        .set("sort_order", order++);
            }));

    catalogue.add(
        SAMPLE_TABLE("cultures")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("onscreen_name").required().localised("factions").encyclopaedia(),
                   SAMPLE_FIELD::text("climate")
                       .required()
                       .fixed({"temperate", "arid", "frozen", "tropical", "steppe"})
                       .describe("Decides the terrain sets used for battle maps"),
                   SAMPLE_FIELD::text("music_theme").file("audio/music/"),
                   SAMPLE_FIELD::integer("sort_order")})
            .in_code("mokafor")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                int order = 0;
                for (const SAMPLE_CULTURE& culture : context.words().cultures())
                    rows.add()
                        .set("key", culture.key)
                        .set("onscreen_name", culture.adjective)
                        .set("climate", culture.climate)
                        .set("music_theme", "theme_" + culture.key + ".ogg")
                        .set("sort_order", order++);
            }));

    catalogue.add(SAMPLE_TABLE("steppe_horde_types")
                      .with({SAMPLE_FIELD::key("key"),
                             SAMPLE_FIELD::text("onscreen_name").required().localised("factions"),
                             SAMPLE_FIELD::of("mobility", KFT_SINGLE)
                                 .required()
                                 .describe("Campaign movement multiplier")})
                      .implemented("tbrandt", "non-pack")
                      .rows([](SAMPLE_CONTEXT&, SAMPLE_ROWS& rows) {
                          for (const auto& type : HORDE_TYPES)
                              rows.add()
                                  .set("key", type[0])
                                  .set("onscreen_name", type[1])
                                  .set("mobility", QString::fromLatin1(type[2]).toFloat());
                      }));

    catalogue.add(
        SAMPLE_TABLE("factions")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("screen_name").required().localised("factions").encyclopaedia(),
                   SAMPLE_FIELD::text("culture").required().refers_to("cultures", "key", {"onscreen_name"}),
                   SAMPLE_FIELD::yesno("is_rebel").required().with_default(false),
                   SAMPLE_FIELD::text("horde_type")
                       .refers_to("steppe_horde_types", "key", {"onscreen_name"})
                       .describe("Only for factions that live in hordes"),
                   SAMPLE_FIELD::integer("primary_colour_r"), SAMPLE_FIELD::integer("primary_colour_g"),
                   SAMPLE_FIELD::integer("primary_colour_b"),
                   SAMPLE_FIELD::text("flag_path").file("ui/flags/").max_length(128)})
            .in_code("mokafor")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const QStringList hordes = context.rows("steppe_horde_types").texts("key");
                for (const FACTION& faction : FACTIONS)
                {
                    SAMPLE_ROW& row =
                        rows.add()
                            .set("key", faction.key)
                            .set("screen_name", faction.name)
                            .set("culture", faction.culture)
                            .set("is_rebel", faction.rebel)
                            .set("primary_colour_r", context.random().range(20, 235))
                            .set("primary_colour_g", context.random().range(20, 235))
                            .set("primary_colour_b", context.random().range(20, 235))
                            .set("flag_path", QString("ui/flags/%1/mon_64.png").arg(faction.key));
                    if (QLatin1String(faction.culture) == QLatin1String("khar") && !faction.rebel)
                        row.set("horde_type", context.random().pick(hordes));
                }
            }));

    catalogue.add(
        SAMPLE_TABLE("provinces")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("onscreen_name").required().localised("regions"),
                   SAMPLE_FIELD::text("culture").refers_to("cultures", "key", {"onscreen_name"})})
            .in_code("praman", false)
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                QSet<QString> taken;
                const int per_culture = context.small() ? 1 : 3;
                for (const SAMPLE_CULTURE& culture : context.words().cultures())
                    for (int i = 0; i < per_culture; ++i)
                    {
                        const QString name = context.words().place(culture, context.random());
                        const QString key = SAMPLE_CONTEXT::unique(taken, "prov_" + culture.prefix + "_" +
                                                                              SAMPLE_WORDS::slug(name));
                        rows.add().set("key", key).set("onscreen_name", name).set("culture", culture.key);
                    }
            }));

    catalogue.add(
        SAMPLE_TABLE("regions")
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("onscreen_name").required().localised("regions"),
                   SAMPLE_FIELD::text("province").required().refers_to("provinces", "key", {"onscreen_name"}),
                   SAMPLE_FIELD::text("climate").required().fixed(
                       {"temperate", "arid", "frozen", "tropical", "steppe"}),
                   SAMPLE_FIELD::yesno("is_coastal").with_default(false),
                   SAMPLE_FIELD::yesno("is_province_capital"),
                   SAMPLE_FIELD::of("map_colour", KFT_CARD64)
                       .describe("Colour of the region on the lookup map")})
            .in_code("praman")
            .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                QSet<QString> taken;
                quint64 colour = 0x10203;
                for (const SAMPLE_ROW& province : context.rows("provinces"))
                {
                    const SAMPLE_CULTURE* culture = context.words().culture(province.text("culture"));
                    const int count = context.small() ? 1 : context.random().range(3, 5);
                    for (int i = 0; i < count; ++i)
                    {
                        const QString name = context.words().place(*culture, context.random());
                        colour += quint64(context.random().range(1, 0x30405));
                        rows.add()
                            .set("key", SAMPLE_CONTEXT::unique(taken, culture->prefix + "_" +
                                                                          SAMPLE_WORDS::slug(name)))
                            .set("onscreen_name", name)
                            .set("province", province.text("key"))
                            .set("climate", culture->climate)
                            .set("is_coastal", context.random().chance(0.35))
                            .set("is_province_capital", i == 0)
                            .set("map_colour", QVariant::fromValue<qulonglong>(colour & 0xffffff));
                    }
                }
            }));
}
