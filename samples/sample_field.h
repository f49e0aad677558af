#pragma once

#include "kor_field_type.h"

#include <QString>
#include <QStringList>
#include <QUuid>
#include <QVariant>

class KOR_FIELD_SCHEMA;

// One field of a sample table, described declaratively:
//
//     SAMPLE_FIELD::key("key"),
//     SAMPLE_FIELD::text("onscreen_name").required().localised("units"),
//     SAMPLE_FIELD::text("category").required().fixed({"infantry", "cavalry"}),
//     SAMPLE_FIELD::text("land_unit").required().refers_to("land_units", "key", {"onscreen_name"}),
//
// `make` turns it into the engine's field schema.
class SAMPLE_FIELD
{
public:
    // A required primary key field.
    static SAMPLE_FIELD key(const QString& name, KOR_FIELD_TYPE type = KFT_TEXT);
    static SAMPLE_FIELD of(const QString& name, KOR_FIELD_TYPE type);
    static SAMPLE_FIELD text(const QString& name) { return of(name, KFT_TEXT); }
    static SAMPLE_FIELD integer(const QString& name) { return of(name, KFT_INTEGER); }
    static SAMPLE_FIELD yesno(const QString& name) { return of(name, KFT_YESNO); }

    SAMPLE_FIELD& required();
    SAMPLE_FIELD& primary();
    SAMPLE_FIELD& localised(const QString& spreadsheet);
    // Spoken lines: the localisable field is offered to the voice-over script form.
    SAMPLE_FIELD& voiced();
    SAMPLE_FIELD& with_default(const QVariant& value);
    SAMPLE_FIELD& max_length(int length);
    // A relationship; an empty foreign field means the foreign table's first key.
    SAMPLE_FIELD& refers_to(const QString& table, const QString& field = QString(),
                            const QStringList& lookups = QStringList());
    SAMPLE_FIELD& fixed(const QStringList& values);
    SAMPLE_FIELD& file(const QString& relative_path);
    SAMPLE_FIELD& describe(const QString& description);
    SAMPLE_FIELD& encyclopaedia();
    SAMPLE_FIELD& agf_from();
    SAMPLE_FIELD& startpos_reprocess();

    // A new field schema with that uuid; the caller owns it.
    KOR_FIELD_SCHEMA* make(const QUuid& uuid) const;

    QString name;
    KOR_FIELD_TYPE type = KFT_TEXT;
    bool is_key = false;
    bool is_required = false;
    QString spreadsheet; // localised when not empty
    bool for_vo = false;
    QVariant default_value;
    int length = -1;
    QString foreign_table;
    QString foreign_field;
    QStringList lookup_fields;
    QStringList fixed_values;
    bool is_file = false;
    QString relative_path;
    QString description;
    bool encyclopaedia_export = false;
    bool agf_from_this_field = false;
    bool startpos = false;

    bool is_localised() const { return !spreadsheet.isEmpty(); }
};
