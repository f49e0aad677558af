#include "kor_record_merge.h"

#include "case_insensitive_compare_string.h"
#include "kor_field_data.h"
#include "kor_record_data.h"
#include "kor_table_data.h"

#include <QMap>
#include <QSet>

#include <algorithm>

namespace
{
const KOR_FIELD_DATA* field_of(const KOR_RECORD_DATA* record, const QString& name)
{
    return record ? record->get_field_data(name) : nullptr;
}

bool is_blank(const KOR_FIELD_DATA* field)
{
    return !field ||
           ((!field->value().isValid() || field->value_text().isEmpty()) && !field->has_approval_data());
}

// Gives a record the field as another record has it, or takes it away.
void set_field(KOR_RECORD_DATA* record, const QString& name, const KOR_FIELD_DATA* source)
{
    if (!source)
    {
        record->remove_field_data(name);
        return;
    }
    if (KOR_FIELD_DATA* target = record->get_field_data(name))
        *target = *source;
    else
        record->insert_field_data(new KOR_FIELD_DATA(*source));
}

QString key_of(const KOR_RECORD_DATA* first, const KOR_RECORD_DATA* second, const KOR_RECORD_DATA* third)
{
    for (const KOR_RECORD_DATA* record : {first, second, third})
    {
        if (record)
            return record->key();
    }
    return QString();
}
} // namespace

QString KOR_RECORD_MERGE::text_of(const KOR_FIELD_DATA* field)
{
    return field ? field->value_text() : QStringLiteral("<none>");
}

bool KOR_RECORD_MERGE::fields_equal(const KOR_FIELD_DATA* first, const KOR_FIELD_DATA* second)
{
    if (!first || !second)
        return is_blank(first) && is_blank(second);
    return first->value().isValid() == second->value().isValid() &&
           first->value_text() == second->value_text() && first->approval_data_equals(*second);
}

QStringList KOR_RECORD_MERGE::field_names(const KOR_RECORD_DATA* first, const KOR_RECORD_DATA* second,
                                          const KOR_RECORD_DATA* third)
{
    QMap<CASE_INSENSITIVE_COMPARE_STRING, QString> names;
    for (const KOR_RECORD_DATA* record : {first, second, third})
    {
        if (!record)
            continue;
        for (auto it = record->field_map().begin(); it != record->field_map().end(); ++it)
        {
            if (!names.contains(it.key()))
                names.insert(it.key(), it.key().string());
        }
    }
    return names.values();
}

bool KOR_RECORD_MERGE::records_equal(const KOR_RECORD_DATA* first, const KOR_RECORD_DATA* second)
{
    if (!first || !second)
        return first == second;
    for (const QString& name : field_names(first, second))
    {
        if (!fields_equal(first->get_field_data(name), second->get_field_data(name)))
            return false;
    }
    return true;
}

bool KOR_RECORD_MERGE::merge(QString& error, const KOR_TABLE_SCHEMA* schema, const KOR_TABLE_DATA* base,
                             const KOR_TABLE_DATA& yours, const KOR_TABLE_DATA& theirs, RESULT& result)
{
    result = RESULT();
    auto merged = std::make_unique<KOR_TABLE_DATA>(schema);

    QSet<QUuid> uuids;
    for (const KOR_TABLE_DATA* table : {base, &yours, &theirs})
    {
        if (!table)
            continue;
        for (auto it = table->records_by_uuid().begin(); it != table->records_by_uuid().end(); ++it)
            uuids.insert(it.value()->uuid());
    }
    QList<QUuid> ordered = uuids.values();
    std::sort(ordered.begin(), ordered.end());

    QVector<KOR_RECORD_DATA*> kept;
    auto keep = [&](const KOR_RECORD_DATA* source) {
        KOR_RECORD_DATA* copy = new KOR_RECORD_DATA(*source, merged.get());
        kept.append(copy);
        return copy;
    };

    for (const QUuid& uuid : qAsConst(ordered))
    {
        const KOR_RECORD_DATA* b = base ? base->record_by_uuid(uuid) : nullptr;
        const KOR_RECORD_DATA* y = yours.record_by_uuid(uuid);
        const KOR_RECORD_DATA* t = theirs.record_by_uuid(uuid);
        const QString key = key_of(y, t, b);
        const bool your_change = !records_equal(y, b);
        const bool their_change = !records_equal(t, b);

        if (!y && !t)
        {
            if (b)
                ++result.deleted;
            continue;
        }
        if (!y || !t)
        {
            const KOR_RECORD_DATA* present = y ? y : t;
            const bool present_changed = y ? your_change : their_change;
            if (!b)
            {
                // Added on one side.
                keep(present);
                ++(y ? result.from_yours : result.from_theirs);
                continue;
            }
            if (!present_changed)
            {
                // Deleted on one side, untouched on the other.
                ++result.deleted;
                continue;
            }
            // Deleted on one side, changed on the other: the change stays.
            keep(present);
            ++(y ? result.from_yours : result.from_theirs);
            result.conflicts.append(CONFLICT{
                uuid, key, QString(), QString(), y ? QStringLiteral("changed") : QStringLiteral("deleted"),
                t ? QStringLiteral("changed") : QStringLiteral("deleted"),
                y ? QStringLiteral("kept the local record; the depot had deleted it")
                  : QStringLiteral("kept the depot's changed record; it was deleted locally")});
            continue;
        }
        if (!your_change)
        {
            keep(t);
            if (their_change)
                ++result.from_theirs;
            continue;
        }
        if (!their_change)
        {
            keep(y);
            ++result.from_yours;
            continue;
        }
        // Changed on both sides: field by field, starting from the depot's.
        KOR_RECORD_DATA* record = keep(t);
        for (const QString& name : field_names(b, y, t))
        {
            const KOR_FIELD_DATA* bf = field_of(b, name);
            const KOR_FIELD_DATA* yf = field_of(y, name);
            const KOR_FIELD_DATA* tf = field_of(t, name);
            if (fields_equal(yf, bf) || fields_equal(yf, tf))
                continue;
            set_field(record, name, yf);
            if (!fields_equal(tf, bf))
                result.conflicts.append(CONFLICT{uuid, key, name, text_of(bf), text_of(yf), text_of(tf),
                                                 QStringLiteral("kept the local value")});
        }
        if (y->modification_msecs() > record->modification_msecs())
            record->set_modification_msecs(y->modification_msecs());
        ++result.from_yours;
        ++result.from_theirs;
    }

    for (int i = 0; i < kept.size(); ++i)
    {
        QString problem;
        KOR_RECORD_DATA* record = kept.at(i);
        if (!merged->add_record(record, &problem))
        {
            const KOR_RECORD_DATA* holder = merged->record_by_key(record->key());
            error =
                QStringLiteral("key '%1' is used by two different records (%2 and %3): merge them by hand")
                    .arg(record->key(), holder ? holder->uuid().toString() : QStringLiteral("?"),
                         record->uuid().toString());
            for (int j = i; j < kept.size(); ++j)
                delete kept.at(j);
            return false;
        }
    }
    std::sort(result.conflicts.begin(), result.conflicts.end(), [](const CONFLICT& a, const CONFLICT& b) {
        return a.key != b.key ? a.key < b.key : a.field < b.field;
    });
    result.merged = std::move(merged);
    return true;
}
