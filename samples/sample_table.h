#pragma once

#include "sample_field.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class KOR_TABLE_DATA;
class KOR_TABLE_SCHEMA;
class SAMPLE_CONTEXT;
class SAMPLE_RANDOM;
class SAMPLE_ROWS;

// One table of the sample database: its fields, how the game treats it (the
// record it gets in TExc_ImplementedTables) and the generator of its rows.
//
//     SAMPLE_TABLE("cultures")
//         .with({SAMPLE_FIELD::key("key"), SAMPLE_FIELD::text("onscreen_name").localised("factions")})
//         .in_code("mireille")
//         .rows([](SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows) { ... });
//
// A generator sees the rows of every table generated before its own (the
// catalogue's order) through the context, and draws from a random stream of
// its own table.
class SAMPLE_TABLE
{
public:
    typedef std::function<void(SAMPLE_CONTEXT& context, SAMPLE_ROWS& rows)> GENERATOR;
    // For tables too large to hold as rows first (a million records): fills
    // the engine's table directly. False with the reason on failure.
    typedef std::function<bool(QString& error, SAMPLE_CONTEXT& context, const KOR_TABLE_SCHEMA& schema,
                               KOR_TABLE_DATA& out)>
        BULK_GENERATOR;

    explicit SAMPLE_TABLE(const QString& name = QString());

    SAMPLE_TABLE& with(const QList<SAMPLE_FIELD>& fields);
    // The game reads the table through generated code in the source tree:
    // "non-pack", implemented. `versioned` false leaves the code as it was
    // before tables carried a version.
    SAMPLE_TABLE& in_code(const QString& designer, bool versioned = true);
    // Implemented by the game without code of its own (start positions,
    // steppe tables), or only localised.
    SAMPLE_TABLE& implemented(const QString& designer, const QString& destination_pack);
    // A table of the tools, not of the game.
    SAMPLE_TABLE& tool_table(const QString& designer);
    SAMPLE_TABLE& agf(const QString& special_dependencies);
    // The rows are made from the other tables (bookkeeping, translations):
    // generated after every ordinary table has its final content.
    SAMPLE_TABLE& describing_others();
    SAMPLE_TABLE& rows(const GENERATOR& generator);
    SAMPLE_TABLE& bulk_rows(const BULK_GENERATOR& generator);

    const QString& name() const { return m_name; }
    const QList<SAMPLE_FIELD>& fields() const { return m_fields; }
    const SAMPLE_FIELD* field(const QString& name) const;
    QStringList key_fields() const;
    QStringList localised_fields() const;

    bool is_implemented() const { return m_implemented; }
    const QString& destination_pack() const { return m_destination_pack; }
    const QString& designer() const { return m_designer; }
    // Generated code of its own in the game's source tree. Tables of the steppe
    // library are implemented there, not in the tree this tool edits.
    bool has_code() const
    {
        return m_implemented && m_destination_pack == QLatin1String("non-pack") &&
               !m_name.startsWith(QLatin1String("steppe_"));
    }
    bool versioned() const { return m_versioned; }
    bool describes_others() const { return m_describes_others; }
    const GENERATOR& generator() const { return m_generator; }
    const BULK_GENERATOR& bulk_generator() const { return m_bulk_generator; }

    // The engine's schema of the table. Table and field uuids are drawn from
    // `random`, so one seed gives the same schema files.
    std::unique_ptr<KOR_TABLE_SCHEMA> make_schema(SAMPLE_RANDOM& random) const;

private:
    QString m_name;
    QList<SAMPLE_FIELD> m_fields;
    bool m_implemented = false;
    QString m_destination_pack = QStringLiteral("loc-only");
    QString m_designer;
    bool m_versioned = true;
    QString m_agf;
    bool m_describes_others = false;
    GENERATOR m_generator;
    BULK_GENERATOR m_bulk_generator;
};
