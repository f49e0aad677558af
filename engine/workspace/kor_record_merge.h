#pragma once

#include <QString>
#include <QStringList>
#include <QUuid>
#include <QVector>

#include <memory>

class KOR_FIELD_DATA;
class KOR_RECORD_DATA;
class KOR_TABLE_DATA;
class KOR_TABLE_SCHEMA;

// Three-way merge of one table: base is the revision the local copy was
// made from, yours the local table, theirs the depot's newest. Records are
// matched by uuid and their fields merged one by one:
//
// - a field changed on one side only takes that side's value;
// - a field changed on both sides to the same value takes it;
// - a field changed on both sides to different values is a conflict, and
//   the local value wins (the depot's value stays in the depot's history
//   and is reported);
// - a record deleted on one side and unchanged on the other goes; deleted
//   on one side and changed on the other, the changed record stays
//   (reported);
// - records added on either side stay.
//
// Two different records that end up with the same key cannot both be kept:
// the merge of that table fails and nothing is decided for it.
class KOR_RECORD_MERGE
{
public:
    struct CONFLICT
    {
        QUuid uuid;
        QString key;
        QString field; // empty for a conflict of a whole record
        QString base_text;
        QString your_text;
        QString their_text;
        QString resolution;
    };

    struct RESULT
    {
        std::unique_ptr<KOR_TABLE_DATA> merged;
        QVector<CONFLICT> conflicts; // in key order
        int from_theirs = 0;         // records whose depot change was taken
        int from_yours = 0;          // records whose local change was kept
        int deleted = 0;             // records the merge removed
    };

    // All three tables should be read with `schema`; base may be null (a
    // table new on both sides). False with a message when the merge cannot
    // be made.
    static bool merge(QString& error, const KOR_TABLE_SCHEMA* schema, const KOR_TABLE_DATA* base,
                      const KOR_TABLE_DATA& yours, const KOR_TABLE_DATA& theirs, RESULT& result);

    // A missing field equals a field with no value and no approval data.
    static bool fields_equal(const KOR_FIELD_DATA* first, const KOR_FIELD_DATA* second);
    static bool records_equal(const KOR_RECORD_DATA* first, const KOR_RECORD_DATA* second);
    // Field names of two or three records, without repeats (case ignored), sorted.
    static QStringList field_names(const KOR_RECORD_DATA* first, const KOR_RECORD_DATA* second,
                                   const KOR_RECORD_DATA* third = nullptr);
    static QString text_of(const KOR_FIELD_DATA* field);
};
