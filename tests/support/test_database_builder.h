#pragma once

// Small databases for tests, built through the engine's own operations:
//
//   TEST_DATABASE_BUILDER db(folder);
//   db.table("factions", {TEST_FIELD::key("key"), TEST_FIELD::plain("name", KFT_TEXT)})
//     .record("factions", {{"key", "rome"}, {"name", "Rome"}});
//   const KOR_TABLE_DATA* data = db.query_interface().get_table_data(error, "factions");
//
// Every step that fails records its error (error(), ok()) instead of
// stopping, so a test checks once at the end.

#include "kor_field_type.h"
#include "progress_report_list.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <memory>

class KOR_FIELD_SCHEMA;
class KOR_RECORD_DATA;
class KOR_TABLE_SCHEMA;
class KOR_XML_QUERY_INTERFACE;

// One field of a table to build.
struct TEST_FIELD
{
    QString name;
    KOR_FIELD_TYPE type = KFT_TEXT;
    bool primary_key = false;
    bool is_required = false;
    bool is_localised = false;
    QVariant default_value;
    QString foreign_table;
    QString foreign_field;
    QStringList lookup_fields;

    // A required primary key field.
    static TEST_FIELD key(const QString& name, KOR_FIELD_TYPE type = KFT_TEXT);
    static TEST_FIELD plain(const QString& name, KOR_FIELD_TYPE type);
    TEST_FIELD& required();
    TEST_FIELD& localised();
    TEST_FIELD& with_default(const QVariant& value);
    // A relationship; the lookup fields default to the foreign field.
    TEST_FIELD& refers_to(const QString& table, const QString& field,
                          const QStringList& lookups = QStringList());

    KOR_FIELD_SCHEMA* make() const;
};

// The tests keep their name for the shared sink that keeps every report.
using TEST_PROGRESS = PROGRESS_REPORT_LIST;

class TEST_DATABASE_BUILDER
{
public:
    // Makes an empty database in `path` (created if absent) and connects to it.
    explicit TEST_DATABASE_BUILDER(const QString& path, PROGRESS_CALLBACK* progress = nullptr);
    ~TEST_DATABASE_BUILDER();

    KOR_XML_QUERY_INTERFACE& query_interface() { return *m_interface; }
    const QString& path() const { return m_path; }
    bool ok() const { return m_error.isEmpty(); }
    const QString& error() const { return m_error; }

    TEST_DATABASE_BUILDER& table(const QString& name, const QList<TEST_FIELD>& fields);
    // Adds a record (in a transaction of its own) with the given values;
    // other fields take their defaults.
    TEST_DATABASE_BUILDER& record(const QString& table, const QVariantMap& values);
    // Disconnects and connects again, so that everything is read from disk.
    TEST_DATABASE_BUILDER& reconnect();

    static std::unique_ptr<KOR_TABLE_SCHEMA> make_schema(const QString& name,
                                                         const QList<TEST_FIELD>& fields);
    // A detached record of the schema holding the given values.
    static std::unique_ptr<KOR_RECORD_DATA> make_record(const KOR_TABLE_SCHEMA* schema,
                                                        const QVariantMap& values);
    // A copy of a record with some values changed, as an editor sends it.
    static std::unique_ptr<KOR_RECORD_DATA> changed(const KOR_RECORD_DATA* record, const QVariantMap& values);

    // The engine's own operations with the values given, answering its error
    // (empty on success): a new record of table, and an edit of record.
    static QString add_record(KOR_XML_QUERY_INTERFACE& engine, const QString& table,
                              const QVariantMap& values);
    static QString edit_record(KOR_XML_QUERY_INTERFACE& engine, const QString& table, KOR_RECORD_DATA* record,
                               const QVariantMap& values);
    // The text of a field of the record with that key, "<none>" when table,
    // record or field is missing.
    static QString value_text(KOR_XML_QUERY_INTERFACE& engine, const QString& table, const QString& key,
                              const QString& field);
    // The record of table with that key, nullptr when either is missing.
    static KOR_RECORD_DATA* find_record(KOR_XML_QUERY_INTERFACE& engine, const QString& table,
                                        const QString& key);

private:
    void note(const QString& error);

    QString m_path;
    std::unique_ptr<KOR_XML_QUERY_INTERFACE> m_interface;
    QString m_error;
};
