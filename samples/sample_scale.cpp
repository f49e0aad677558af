#include "sample_scale.h"

#include "kor_field_data.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "sample_catalogue.h"
#include "sample_context.h"

#include <QDateTime>

namespace
{
const char* const DOMAINS[] = {"effect_bundle",    "battle_map_set",  "audio_event",    "animation_set",
                               "particle_effect",  "ui_tooltip",      "ai_personality", "weather_profile",
                               "camera_preset",    "terrain_variant", "loading_screen", "achievement",
                               "mission_template", "dilemma_choice",  "incident",       "ritual",
                               "pooled_resource",  "character_skill", "skill_node",     "banner_variant"};

struct FIELD_TEMPLATE
{
    const char* name;
    KOR_FIELD_TYPE type;
    const char* foreign_table;
    const char* lookup;
};

const FIELD_TEMPLATE FIELDS[] = {
    {"value", KFT_INTEGER, nullptr, nullptr},
    {"weight", KFT_SINGLE, nullptr, nullptr},
    {"multiplier", KFT_DOUBLE, nullptr, nullptr},
    {"cost", KFT_DECIMAL, nullptr, nullptr},
    {"enabled", KFT_YESNO, nullptr, nullptr},
    {"priority", KFT_UNSIGNED_INTEGER, nullptr, nullptr},
    {"label", KFT_TEXT, nullptr, nullptr},
    {"notes", KFT_TEXT, nullptr, nullptr},
    {"created", KFT_DATE_TIME, nullptr, nullptr},
    {"uid", KFT_UNIQUE_ID, nullptr, nullptr},
    {"mask", KFT_CARD64, nullptr, nullptr},
    {"faction", KFT_TEXT, "factions", "screen_name"},
    {"unit", KFT_TEXT, "land_units", "onscreen_name"},
    {"region", KFT_TEXT, "regions", "onscreen_name"},
};

QVariant value_of(const FIELD_TEMPLATE& field, SAMPLE_CONTEXT& context, int row)
{
    SAMPLE_RANDOM& random = context.random();
    if (field.foreign_table)
        return random.pick(context.rows(field.foreign_table).texts("key"));
    switch (field.type)
    {
    case KFT_INTEGER:
        return random.range(-500, 5000);
    case KFT_SINGLE:
        return float(random.range(0, 1000)) / 100.0f;
    case KFT_DOUBLE:
        return double(random.range(0, 100000)) / 1000.0;
    case KFT_DECIMAL:
        return double(random.range(0, 4000)) / 4.0;
    case KFT_YESNO:
        return random.chance(0.7);
    case KFT_UNSIGNED_INTEGER:
        return random.range(0, 100);
    case KFT_DATE_TIME:
        return QDateTime::fromMSecsSinceEpoch(context.past_msecs(900), Qt::UTC);
    case KFT_UNIQUE_ID:
        return QVariant::fromValue<qulonglong>(0x3000000000000ULL + quint64(row));
    case KFT_CARD64:
        return QVariant::fromValue<qulonglong>(random.next() & 0xffffffffffULL);
    default:
        return QStringLiteral("%1 %2").arg(QString::fromLatin1(field.name)).arg(row);
    }
}

bool fill_big_table(QString& error, SAMPLE_CONTEXT& context, const KOR_TABLE_SCHEMA& schema,
                    KOR_TABLE_DATA& out, int rows)
{
    const QStringList units = context.rows("main_units").texts("unit");
    const QStringList factions = context.rows("factions").texts("key");
    if (units.isEmpty() || factions.isEmpty())
    {
        error = QStringLiteral("needs the rows of main_units and factions");
        return false;
    }
    const KOR_FIELD_SCHEMA* key = schema.field_schema_by_name("key");
    const KOR_FIELD_SCHEMA* unit = schema.field_schema_by_name("unit");
    const KOR_FIELD_SCHEMA* faction = schema.field_schema_by_name("faction");
    const KOR_FIELD_SCHEMA* turn = schema.field_schema_by_name("turn");
    const KOR_FIELD_SCHEMA* strength = schema.field_schema_by_name("strength");
    const KOR_FIELD_SCHEMA* kills = schema.field_schema_by_name("kills");
    const KOR_FIELD_SCHEMA* won = schema.field_schema_by_name("won");
    const KOR_FIELD_SCHEMA* recorded = schema.field_schema_by_name("recorded");
    SAMPLE_RANDOM& random = context.random();
    const qint64 today = SAMPLE_CONTEXT::today_msecs();
    for (int i = 1; i <= rows; ++i)
    {
        // Keys in ascending order: each record is filed at the end of the table.
        auto* record = new KOR_RECORD_DATA(&schema, &out, random.uuid());
        record->add_field_data(key, QStringLiteral("s%1").arg(i, 7, 10, QLatin1Char('0')));
        record->add_field_data(unit, units.at(random.index(units.size())));
        record->add_field_data(faction, factions.at(random.index(factions.size())));
        record->add_field_data(turn, random.range(1, 300));
        record->add_field_data(strength, float(random.range(0, 100)) / 100.0f);
        record->add_field_data(kills, random.range(0, 250));
        record->add_field_data(won, random.chance(0.5));
        const qint64 when = today - qint64(random.range(0, 90 * 24 * 3600)) * 1000;
        record->add_field_data(recorded, QDateTime::fromMSecsSinceEpoch(when, Qt::UTC));
        record->set_modification_msecs(when);
        if (!out.add_record(record, &error))
        {
            delete record;
            return false;
        }
    }
    return true;
}
} // namespace

const char* SAMPLE_SCALE::big_table_name()
{
    return "unit_stat_samples";
}

void SAMPLE_SCALE::add_tables(SAMPLE_CATALOGUE& catalogue, int table_count, int big_table_rows)
{
    const int domain_count = int(sizeof(DOMAINS) / sizeof(DOMAINS[0]));
    const int field_count = int(sizeof(FIELDS) / sizeof(FIELDS[0]));
    QStringList made;
    for (int index = 1; index <= table_count; ++index)
    {
        const QString name = QStringLiteral("%1_%2")
                                 .arg(DOMAINS[(index - 1) % domain_count])
                                 .arg(index, 3, 10, QLatin1Char('0'));
        // The shape of a table follows from its index, so that the
        // catalogue is the same whatever the seed; only the rows vary.
        QList<SAMPLE_FIELD> fields = {SAMPLE_FIELD::key("key")};
        QList<int> chosen;
        for (int f = 0; f < field_count; ++f)
            if ((index * 7 + f * 13) % 5 < 3 || f == index % field_count)
                chosen.append(f);
        for (int f : qAsConst(chosen))
        {
            SAMPLE_FIELD field = SAMPLE_FIELD::of(FIELDS[f].name, FIELDS[f].type);
            if (FIELDS[f].foreign_table)
                field.refers_to(FIELDS[f].foreign_table, "key", {FIELDS[f].lookup});
            if (f % 3 == 0)
                field.required();
            fields.append(field);
        }
        const QString parent =
            index % 4 == 0 && !made.isEmpty() ? made.at((index * 31) % made.size()) : QString();
        if (!parent.isEmpty())
            fields.append(SAMPLE_FIELD::text("parent").refers_to(parent, "key", {"key"}));
        catalogue.add(SAMPLE_TABLE(name).with(fields).tool_table("kmori").rows(
            [chosen, parent](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) {
                const QStringList parents =
                    parent.isEmpty() ? QStringList() : context.rows(parent).texts("key");
                const int count = context.random().range(10, 120);
                for (int row = 1; row <= count; ++row)
                {
                    SAMPLE_ROW& out =
                        rows.add().set("key", QStringLiteral("entry_%1").arg(row, 4, 10, QLatin1Char('0')));
                    for (int f : chosen)
                        out.set(FIELDS[f].name, value_of(FIELDS[f], context, row));
                    if (!parents.isEmpty() && context.random().chance(0.8))
                        out.set("parent", context.random().pick(parents));
                }
            }));
        made.append(name);
    }
    if (big_table_rows <= 0)
        return;
    catalogue.add(
        SAMPLE_TABLE(big_table_name())
            .with({SAMPLE_FIELD::key("key"),
                   SAMPLE_FIELD::text("unit").required().refers_to("main_units", "unit", {"land_unit"}),
                   SAMPLE_FIELD::text("faction").required().refers_to("factions", "key", {"screen_name"}),
                   SAMPLE_FIELD::integer("turn").required(), SAMPLE_FIELD::of("strength", KFT_SINGLE),
                   SAMPLE_FIELD::integer("kills"), SAMPLE_FIELD::yesno("won"),
                   SAMPLE_FIELD::of("recorded", KFT_DATE_TIME)})
            .tool_table("tbrandt")
            .bulk_rows([big_table_rows](QString& error, SAMPLE_CONTEXT& context,
                                        const KOR_TABLE_SCHEMA& schema, KOR_TABLE_DATA& out) {
                return fill_big_table(error, context, schema, out, big_table_rows);
            }));
}
