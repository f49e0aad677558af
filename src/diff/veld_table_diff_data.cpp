#include "veld_table_diff_data.h"

#include "case_insensitive_compare_string.h"
#include "kor_field_data.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_xml_query_interface.h"
#include "veld_diff_data.h"

#include <QDateTime>

#include <cstring>

namespace
{
// Values are compared as the texts QVariant::toString gives. Making those
// texts for every value of two large tables took most of a comparison, so
// equal values of one type, whose texts are necessarily equal, are known
// without them; every other pair is still compared by its texts.
bool values_differ(const KOR_FIELD_DATA* a, const KOR_FIELD_DATA* b)
{
    const QVariant& left = a->value();
    const QVariant& right = b->value();
    const int type = left.userType();
    if (type == right.userType())
    {
        switch (type)
        {
        case QMetaType::UnknownType:
            return false;
        case QMetaType::QString:
            return *static_cast<const QString*>(left.constData()) !=
                   *static_cast<const QString*>(right.constData());
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
            return left != right;
        case QMetaType::Double:
        case QMetaType::Float:
        {
            // The same bits show the same text; 0 and -0 are equal numbers but
            // not equal texts.
            const double x = left.toDouble();
            const double y = right.toDouble();
            if (std::memcmp(&x, &y, sizeof x) == 0)
                return false;
            break;
        }
        case QMetaType::QDateTime:
        {
            const QDateTime& x = *static_cast<const QDateTime*>(left.constData());
            const QDateTime& y = *static_cast<const QDateTime*>(right.constData());
            if (x == y && x.timeSpec() == y.timeSpec() && x.offsetFromUtc() == y.offsetFromUtc())
                return false;
            break;
        }
        default:
            break;
        }
    }
    return left.toString() != right.toString();
}

// The field of the other record with the same name ignoring case: records
// of one table hold their fields in the same order, so the same place is
// tried before a search.
const KOR_FIELD_DATA* same_field(const KOR_FIELD_DATA_MAP& other, int index,
                                 const CASE_INSENSITIVE_COMPARE_STRING& name)
{
    if (index < other.size())
    {
        const KOR_FIELD_DATA* candidate = other.at(index);
        if (CASE_INSENSITIVE_COMPARE_STRING::compare(candidate->field_name(), name.string()) == 0)
            return candidate;
    }
    return other.value(name);
}
} // namespace

VELD_TABLE_DIFF_DATA::VELD_TABLE_DIFF_DATA(VELD_DIFF_DATA* diff_data, const QString& table_name)
    : m_table_name(table_name), m_diff_data(diff_data)
{
    QString error;
    if (diff_data)
    {
        if (KOR_XML_QUERY_INTERFACE* db1 = diff_data->db1_query_interface())
            m_db1_table = db1->get_table_data(error, table_name);
        if (KOR_XML_QUERY_INTERFACE* db2 = diff_data->db2_query_interface())
            m_db2_table = db2->get_table_data(error, table_name);
    }
}

VELD_TABLE_DIFF_DATA::VELD_TABLE_DIFF_DATA(const KOR_TABLE_DATA* db1_table, const KOR_TABLE_DATA* db2_table,
                                           const QString& table_name)
    : m_db1_table(db1_table), m_db2_table(db2_table), m_table_name(table_name)
{
}

bool VELD_TABLE_DIFF_DATA::records_differ(const KOR_RECORD_DATA& db1_record,
                                          const KOR_RECORD_DATA& db2_record)
{
    if (db1_record.field_count() != db2_record.field_count())
        return true;
    const KOR_FIELD_DATA_MAP& fields = db1_record.field_map();
    const KOR_FIELD_DATA_MAP& other = db2_record.field_map();
    for (int index = 0; index < fields.size(); ++index)
    {
        const KOR_FIELD_DATA* field = fields.at(index);
        const KOR_FIELD_DATA* match = same_field(other, index, field->field_name());
        if (!match || values_differ(field, match))
            return true;
    }
    return false;
}

void VELD_TABLE_DIFF_DATA::process_table_diff()
{
    m_records_only_in_db1.clear();
    m_records_only_in_db2.clear();
    m_records_differing.clear();
    // A table one side could not read would otherwise be dereferenced here.
    if (m_db1_table)
    {
        const KOR_RECORD_UUID_INDEX& index = m_db1_table->records_by_uuid();
        for (auto it = index.begin(); it != index.end(); ++it)
        {
            const KOR_RECORD_DATA* other = m_db2_table ? m_db2_table->record_by_uuid(it.key()) : nullptr;
            if (!other)
                m_records_only_in_db1.insert(it.key());
            else if (records_differ(*it.value(), *other))
                m_records_differing.insert(it.key());
        }
    }
    if (m_db2_table)
    {
        const KOR_RECORD_UUID_INDEX& index = m_db2_table->records_by_uuid();
        for (auto it = index.begin(); it != index.end(); ++it)
            if (!m_db1_table || !m_db1_table->record_by_uuid(it.key()))
                m_records_only_in_db2.insert(it.key());
    }
}

QStringList VELD_TABLE_DIFF_DATA::differing_fields(const QUuid& uuid) const
{
    QStringList names;
    const KOR_RECORD_DATA* db1_record = m_db1_table ? m_db1_table->record_by_uuid(uuid) : nullptr;
    const KOR_RECORD_DATA* db2_record = m_db2_table ? m_db2_table->record_by_uuid(uuid) : nullptr;
    if (!db1_record || !db2_record)
        return names;
    const KOR_FIELD_DATA_MAP& fields1 = db1_record->field_map();
    const KOR_FIELD_DATA_MAP& fields2 = db2_record->field_map();
    for (auto it = fields1.begin(); it != fields1.end(); ++it)
    {
        const KOR_FIELD_DATA* match = fields2.value(it.key());
        if (!match || values_differ(it.value(), match))
            names.append(it.key().string());
    }
    for (auto it = fields2.begin(); it != fields2.end(); ++it)
        if (!fields1.contains(it.key()))
            names.append(it.key().string());
    return names;
}
