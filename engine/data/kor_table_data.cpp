#include "kor_table_data.h"

#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_memory_pool.h"
#include "kor_record_data.h"
#include "kor_table_schema.h"

#include <atomic>
#include <limits>

namespace
{
// One count for all tables: a generation is never seen twice.
quint64 next_generation()
{
    static std::atomic<quint64> last{0};
    return ++last;
}
} // namespace

KOR_TABLE_DATA::KOR_TABLE_DATA(const KOR_TABLE_SCHEMA* table_schema)
    : m_table_schema(table_schema), m_generation(next_generation())
{
}

KOR_TABLE_DATA::KOR_TABLE_DATA(const KOR_TABLE_DATA& other)
    : m_table_schema(other.m_table_schema), m_generation(next_generation())
{
    copy_records_from(other);
}

KOR_TABLE_DATA& KOR_TABLE_DATA::operator=(const KOR_TABLE_DATA& other)
{
    if (this != &other)
    {
        destroy_records();
        m_table_schema = other.m_table_schema;
        copy_records_from(other);
    }
    return *this;
}

KOR_TABLE_DATA::KOR_TABLE_DATA(KOR_TABLE_DATA&& other) noexcept
    : m_table_schema(other.m_table_schema), m_generation(next_generation())
{
    *this = std::move(other);
}

KOR_TABLE_DATA& KOR_TABLE_DATA::operator=(KOR_TABLE_DATA&& other) noexcept
{
    if (this == &other)
        return *this;
    destroy_records();
    m_table_schema = other.m_table_schema;
    m_records.m_entries.swap(other.m_records.m_entries);
    std::swap(m_records_by_uuid.m_slots, other.m_records_by_uuid.m_slots);
    std::swap(m_records_by_uuid.m_capacity, other.m_records_by_uuid.m_capacity);
    std::swap(m_records_by_uuid.m_size, other.m_records_by_uuid.m_size);
    std::swap(m_pool, other.m_pool);
    m_retired.swap(other.m_retired);
    for (KOR_RECORD_DATA* record : m_records)
        record->m_table_data = this;
    for (KOR_RECORD_DATA* record : m_retired)
        record->m_table_data = this;
    changed();
    other.changed();
    return *this;
}

KOR_TABLE_DATA::~KOR_TABLE_DATA()
{
    destroy_records();
}

void KOR_TABLE_DATA::destroy_records()
{
    auto destroy = [](KOR_RECORD_DATA* record)
    {
        if (record->is_pooled())
            record->~KOR_RECORD_DATA();
        else
            delete record;
    };
    for (KOR_RECORD_DATA* record : m_records)
        destroy(record);
    for (KOR_RECORD_DATA* record : m_retired)
        destroy(record);
    m_records.clear();
    m_records_by_uuid.clear();
    m_retired.clear();
    delete m_pool;
    m_pool = nullptr;
    changed();
}

void KOR_TABLE_DATA::copy_records_from(const KOR_TABLE_DATA& other)
{
    m_records.m_entries.reserve(other.m_records.m_entries.size());
    m_records_by_uuid.reserve(quint32(other.record_count()));
    for (const KOR_RECORD_MAP::ENTRY& entry : other.m_records.m_entries)
    {
        KOR_RECORD_DATA* copy = new KOR_RECORD_DATA(*entry.record, this, false);
        copy->m_in_table = true;
        m_records.m_entries.push_back(KOR_RECORD_MAP::ENTRY{entry.key, copy});
        m_records_by_uuid.insert(copy);
    }
    changed();
}

void KOR_TABLE_DATA::changed()
{
    m_generation = next_generation();
    if (std::atomic_load(&m_search_index))
        std::atomic_store(&m_search_index, std::shared_ptr<const void>());
}

std::shared_ptr<const void> KOR_TABLE_DATA::search_index() const
{
    return std::atomic_load(&m_search_index);
}

void KOR_TABLE_DATA::set_search_index(std::shared_ptr<const void> index) const
{
    std::atomic_store(&m_search_index, std::move(index));
}

QString KOR_TABLE_DATA::table_name() const
{
    return m_table_schema ? m_table_schema->get_table_name() : QString();
}

int KOR_TABLE_DATA::next_autonumber(const QString& field_name) const
{
    auto cached = m_autonumber_cache.constFind(field_name);
    if (cached != m_autonumber_cache.constEnd() && cached->first == m_generation)
        return cached->second;
    const bool known = m_table_schema && m_table_schema->field_schema_by_name(field_name);
    qint64 largest = 0;
    bool found = known;
    for (const KOR_RECORD_DATA* record : m_records)
    {
        const KOR_FIELD_DATA* field = record->get_field_data(field_name);
        if (!field)
            continue;
        found = true;
        bool ok = false;
        const qint64 value = field->m_value.toLongLong(&ok);
        if (ok && value > largest)
            largest = value;
    }
    const int next = found ? int(qMin<qint64>(largest + 1, std::numeric_limits<int>::max())) : 0;
    m_autonumber_cache.insert(field_name, qMakePair(m_generation, next));
    return next;
}

bool KOR_TABLE_DATA::add_record(KOR_RECORD_DATA* record, QString* error)
{
    auto fail = [error](const QString& text)
    {
        if (error)
            *error = text;
        return false;
    };
    if (!record)
        return fail(QStringLiteral("No record given"));
    if (record->m_in_table)
        return fail(QStringLiteral("The record belongs to a table already"));
    if (record->m_uuid.isNull())
        record->m_uuid = QUuid::createUuid();
    const QString key = record->key();
    if (key.isEmpty())
        return fail(QStringLiteral("Empty primary keys are not allowed"));
    if (m_records.contains(key))
        return fail(QStringLiteral("Key '%1' exists already in table '%2'").arg(key, table_name()));
    if (m_records_by_uuid.contains(record->m_uuid))
        return fail(QStringLiteral("A record with the uuid %1 exists already in table '%2'")
                        .arg(record->m_uuid.toString(QUuid::WithoutBraces), table_name()));
    m_records.insert(key, record);
    m_records_by_uuid.insert(record);
    record->m_table_data = this;
    record->m_in_table = true;
    changed();
    return true;
}

KOR_RECORD_DATA* KOR_TABLE_DATA::take_record(const QUuid& uuid)
{
    KOR_RECORD_DATA* record = m_records_by_uuid.value(uuid);
    if (!record)
        return nullptr;
    // The record's values may have changed since it was filed: find its entry
    // by identity when its key no longer leads there.
    QString key = record->key();
    if (m_records.value(key) != record)
    {
        for (const KOR_RECORD_MAP::ENTRY& entry : m_records.m_entries)
            if (entry.record == record)
                key = entry.key;
    }
    m_records.remove(key);
    m_records_by_uuid.remove(uuid);
    record->m_in_table = false;
    changed();
    if (record->is_pooled())
    {
        // Pooled storage cannot be handed out: give the caller a heap copy.
        KOR_RECORD_DATA* copy = new KOR_RECORD_DATA(*record, this, false);
        m_retired.push_back(record);
        return copy;
    }
    return record;
}

bool KOR_TABLE_DATA::remove_record(const QUuid& uuid)
{
    KOR_RECORD_DATA* record = take_record(uuid);
    delete record;
    return record != nullptr;
}

void KOR_TABLE_DATA::clear()
{
    destroy_records();
}
