#include "kor_table_io.h"

#include "case_insensitive_compare_string.h"
#include "kor_database_schema.h"
#include "kor_engine_access.h"
#include "kor_field_data.h"
#include "kor_field_schema.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "kor_table_schema.h"
#include "kor_value_text.h"
#include "kor_xml_output.h"

#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <pugixml.hpp>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>

using namespace KOR_VALUE_TEXT;

namespace
{
const unsigned PARSE_OPTIONS = pugi::parse_escapes | pugi::parse_ws_pcdata_single | pugi::parse_cdata;

// ---------------------------------------------------------------- errors

struct READ_CONTEXT
{
    QString source;
    std::function<QByteArray()> pristine;
    QByteArray pristine_bytes;
    bool pristine_loaded = false;

    QString where(qint64 offset)
    {
        if (!pristine_loaded)
        {
            pristine_bytes = pristine ? pristine() : QByteArray();
            pristine_loaded = true;
        }
        if (offset < 0)
            return source;
        return source + QStringLiteral(", ") + KOR_TABLE_IO::line_and_column(pristine_bytes, offset);
    }
};

// ---------------------------------------------------------------- fields

struct FIELD_INFO
{
    const KOR_FIELD_SCHEMA* schema;
    QByteArray name;
    int slot; // position in a record's field array (name order ignoring case)
    KOR_FIELD_TYPE type;
    // Texts repeat a lot (categories, foreign keys): share one QString per
    // distinct value while there are few of them.
    std::unordered_map<std::string_view, QString> interned;
    bool interning = true;
};

const size_t MAX_INTERNED = 4096;

QString make_text(FIELD_INFO& info, const char* text, size_t length)
{
    if (!info.interning)
        return QString::fromUtf8(text, int(length));
    const std::string_view view(text, length);
    auto it = info.interned.find(view);
    if (it != info.interned.end())
        return it->second;
    QString value = QString::fromUtf8(text, int(length));
    if (info.interned.size() >= MAX_INTERNED)
    {
        info.interning = false;
        info.interned.clear();
    }
    else
    {
        info.interned.emplace(view, value);
    }
    return value;
}

bool convert_value(FIELD_INFO& info, const char* text, QVariant& out, QString& reason)
{
    const size_t length = std::strlen(text);
    if (info.type == KFT_TEXT)
    {
        out = length == 0 ? QString(QLatin1String("")) : make_text(info, text, length);
        return true;
    }
    const char* end = text + length;
    const char* begin = text;
    trim(begin, end);
    if (begin == end)
    {
        out = QVariant();
        return true;
    }
    bool ok = false;
    switch (info.type)
    {
    case KFT_YESNO:
    {
        bool value = false;
        ok = parse_bool(begin, end, value);
        out = value;
        break;
    }
    case KFT_INTEGER:
    case KFT_UNSIGNED_INTEGER:
    case KFT_AUTONUMBER:
    {
        int value = 0;
        ok = parse_int32(begin, end, value) && (info.type != KFT_UNSIGNED_INTEGER || value >= 0);
        out = value;
        break;
    }
    case KFT_SINGLE:
    {
        float value = 0;
        ok = parse_floating(begin, end, value);
        out = value;
        break;
    }
    case KFT_DOUBLE:
    case KFT_DECIMAL:
    {
        double value = 0;
        ok = parse_floating(begin, end, value);
        out = value;
        break;
    }
    case KFT_UNIQUE_ID:
    case KFT_CARD64:
    {
        quint64 value = 0;
        ok = parse_uint64(begin, end, value);
        out = qulonglong(value);
        break;
    }
    case KFT_DATE_TIME:
    {
        // The form the writer gives takes the short way; anything else, and
        // any date the calendar refuses, is left to Qt's ISO reader, whose
        // answer for the short form would be the same. Parsing every date
        // through Qt made it a seventh of reading a large table.
        qint64 msecs = 0;
        if (parse_timestamp(begin, end, msecs, true))
        {
            out = QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC);
            ok = true;
            break;
        }
        const QDateTime value =
            QDateTime::fromString(QString::fromUtf8(begin, int(end - begin)), Qt::ISODateWithMs);
        ok = value.isValid();
        out = value.toUTC();
        break;
    }
    default:
        break;
    }
    if (!ok)
        reason = QStringLiteral("'%1' is not a valid %2 value for field '%3'")
                     .arg(QString::fromUtf8(begin, int(end - begin)),
                          KOR_FIELD_SCHEMA::field_type_to_string(info.type), info.schema->field_name());
    return ok;
}

bool read_approval(const pugi::xml_node& element, KOR_FIELD_DATA* field, QString& reason)
{
    for (pugi::xml_attribute attribute = element.first_attribute(); attribute;
         attribute = attribute.next_attribute())
    {
        const char* name = attribute.name();
        const char* value = attribute.value();
        if (std::strcmp(name, "approval_state") == 0)
        {
            int state = 0;
            if (!parse_int32(value, value + std::strlen(value), state) || state < 0 || state > 2)
            {
                reason = QStringLiteral("approval_state must be 0, 1 or 2, not '%1'")
                             .arg(QString::fromUtf8(value));
                return false;
            }
            field->set_approval_state(state);
        }
        else if (std::strcmp(name, "last_approved_text") == 0)
            field->set_last_approved_text(QString::fromUtf8(value));
        else if (std::strcmp(name, "last_edit_user") == 0)
            field->set_last_edit_user(QString::fromUtf8(value));
        else if (std::strcmp(name, "requires_translation") == 0 ||
                 std::strcmp(name, "requires_recording") == 0)
        {
            bool flag = false;
            if (!parse_bool(value, value + std::strlen(value), flag))
            {
                reason = QStringLiteral("%1 must be true or false, not '%2'")
                             .arg(QString::fromUtf8(name), QString::fromUtf8(value));
                return false;
            }
            if (name[9] == 't')
                field->set_requires_translation(flag);
            else
                field->set_requires_recording(flag);
        }
        else
        {
            reason = QStringLiteral("unknown attribute '%1' of field '%2'")
                         .arg(QString::fromUtf8(name), QString::fromUtf8(element.name()));
            return false;
        }
    }
    return true;
}

bool is_whitespace_text(const pugi::xml_node& node)
{
    for (const char* p = node.value(); *p; ++p)
        if (!is_blank(*p))
            return false;
    return true;
}

// Destroys records made by the reader that no table owns yet.
struct RECORD_GUARD
{
    std::vector<KOR_RECORD_DATA*> records;
    bool owned_by_table = false;
    ~RECORD_GUARD()
    {
        if (!owned_by_table)
            for (KOR_RECORD_DATA* record : records)
                record->~KOR_RECORD_DATA();
    }
};

// ---------------------------------------------------------------- schema files

struct FIELD_ATTRIBUTE
{
    const char* name;
    KOR_METAFIELD metafield;
    bool boolean;
};

// In the order they are written.
const FIELD_ATTRIBUTE FIELD_ATTRIBUTES[] = {
    {"primary_key", KMF_PRIMARY_KEY, true},
    {"required", KMF_REQUIRED, true},
    {"max_length", KMF_MAX_LENGTH, false},
    {"default", KMF_DEFAULT_VALUE, false},
    {"localised", KMF_LOCALISED, true},
    {"spreadsheet", KMF_SPREADSHEET, false},
    {"foreign_table", KMF_FOREIGN_TABLE, false},
    {"foreign_field", KMF_FOREIGN_FIELD, false},
    {"lookup_fields", KMF_LOOKUP_FIELDS, false},
    {"is_file", KMF_IS_FILE, true},
    {"relative_path", KMF_RELATIVE_PATH, false},
    {"fragment_path", KMF_FRAGMENT_PATH, false},
    {"encyclopaedia_export", KMF_ENCYCLOPAEDIA_EXPORT, true},
    {"agf_from_this_field", KMF_AGF_FROM_THIS_FIELD, true},
    {"agf_towards_this_field", KMF_AGF_TOWARDS_THIS_FIELD, true},
    {"agf_done", KMF_AGF_DONE, true},
    {"startpos_reprocess", KMF_STARTPOS_REPROCESS, true},
    {"campaign_map_reprocess", KMF_CAMPAIGN_MAP_REPROCESS, true},
    {"description", KMF_DESCRIPTION, false},
};

QString attribute_text_of(const KOR_FIELD_SCHEMA& field, KOR_METAFIELD metafield)
{
    const QVariant value = field.get_metafield_value(metafield);
    switch (metafield)
    {
    case KMF_LOOKUP_FIELDS:
        return value.toStringList().join(QLatin1Char(':'));
    case KMF_MAX_LENGTH:
        return value.toInt() < 0 ? QString() : QString::number(value.toInt());
    case KMF_DEFAULT_VALUE:
        return KOR_FIELD_DATA::variant_to_text(value);
    default:
        return value.toString();
    }
}
} // namespace

// ==================================================================== layout

QString KOR_TABLE_IO::table_file_relative(const QString& table_name)
{
    return table_name + QStringLiteral(".xml");
}

QString KOR_TABLE_IO::schema_file_relative(const QString& table_name)
{
    return schema_folder_name() + QLatin1Char('/') + table_name + QStringLiteral(".xml");
}

QString KOR_TABLE_IO::table_file_path(const QString& database_path, const QString& table_name)
{
    return QDir(database_path).filePath(table_file_relative(table_name));
}

QString KOR_TABLE_IO::schema_file_path(const QString& database_path, const QString& table_name)
{
    return QDir(database_path).filePath(schema_file_relative(table_name));
}

bool KOR_TABLE_IO::is_table_file_name(const QString& file_name)
{
    return file_name.endsWith(QLatin1String(".xml")) && !file_name.startsWith(QLatin1String("Veld")) &&
           file_name.size() > 4;
}

QStringList KOR_TABLE_IO::schema_table_names(const QString& database_path)
{
    QStringList names;
    const QDir folder(QDir(database_path).filePath(schema_folder_name()));
    for (const QString& file :
         folder.entryList(QStringList(QStringLiteral("*.xml")), QDir::Files, QDir::Name))
        if (file.endsWith(QLatin1String(".xml")))
            names.append(file.left(file.size() - 4));
    std::sort(names.begin(), names.end());
    return names;
}

QStringList KOR_TABLE_IO::data_table_names(const QString& database_path)
{
    QStringList names;
    for (const QString& file : QDir(database_path).entryList(QDir::Files, QDir::Name))
        if (is_table_file_name(file))
            names.append(file.left(file.size() - 4));
    std::sort(names.begin(), names.end());
    return names;
}

QByteArray KOR_TABLE_IO::validation_file_bytes()
{
    return QByteArrayLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<veld_database format=\"1\"/>\n");
}

bool KOR_TABLE_IO::is_database(QString& error, const QString& database_path)
{
    const QString marker = QDir(database_path).filePath(validation_file_name());
    QFile file(marker);
    if (!QFileInfo(database_path).isDir())
    {
        error = QStringLiteral("'%1' is not a folder").arg(database_path);
        return false;
    }
    if (!file.open(QIODevice::ReadOnly))
    {
        error =
            QStringLiteral("'%1' is not a database: it has no %2").arg(database_path, validation_file_name());
        return false;
    }
    const QByteArray bytes = file.readAll();
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(bytes.constData(), size_t(bytes.size()));
    const pugi::xml_node root = document.document_element();
    if (!result || std::strcmp(root.name(), "veld_database") != 0)
    {
        error = QStringLiteral("%1: not a database marker").arg(marker);
        return false;
    }
    const int format = root.attribute("format").as_int(0);
    if (format < 1 || format > format_version())
    {
        error = QStringLiteral("%1: the database has format %2; this program reads format %3")
                    .arg(marker)
                    .arg(format)
                    .arg(format_version());
        return false;
    }
    return true;
}

int KOR_TABLE_IO::line_of(const QByteArray& bytes, qint64 offset)
{
    const qint64 end = qBound<qint64>(0, offset, bytes.size());
    return 1 + int(std::count(bytes.constData(), bytes.constData() + end, '\n'));
}

QString KOR_TABLE_IO::line_and_column(const QByteArray& bytes, qint64 offset)
{
    const qint64 end = qBound<qint64>(0, offset, bytes.size());
    const int line = line_of(bytes, end);
    const qint64 line_start = bytes.lastIndexOf('\n', int(end) - 1) + 1;
    return QStringLiteral("line %1, column %2").arg(line).arg(end - line_start + 1);
}

// ==================================================================== tables

bool KOR_TABLE_IO::read_table_file(QString& error, const QString& path, const KOR_TABLE_SCHEMA& schema,
                                   KOR_TABLE_DATA& out, KOR_TABLE_READ_DETAILS* details)
{
    QFile file(path);
    if (!file.exists())
    {
        out = KOR_TABLE_DATA(&schema);
        return true;
    }
    if (!file.open(QIODevice::ReadOnly))
    {
        error = QStringLiteral("%1: cannot be read: %2").arg(path, file.errorString());
        return false;
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
    {
        error = QStringLiteral("%1: cannot be read: %2").arg(path, file.errorString());
        return false;
    }
    file.close();
    // The buffer is parsed in place; an error is located in a fresh read.
    return read_table_buffer(
        error, bytes.data(), size_t(bytes.size()), path,
        [path]() {
            QFile again(path);
            return again.open(QIODevice::ReadOnly) ? again.readAll() : QByteArray();
        },
        schema, out, details);
}

bool KOR_TABLE_IO::read_table_bytes(QString& error, QByteArray bytes, const QString& source_name,
                                    const KOR_TABLE_SCHEMA& schema, KOR_TABLE_DATA& out,
                                    KOR_TABLE_READ_DETAILS* details)
{
    const QByteArray pristine = bytes;
    char* buffer = bytes.data(); // detaches: `pristine` keeps the original
    return read_table_buffer(
        error, buffer, size_t(bytes.size()), source_name, [pristine]() { return pristine; }, schema, out,
        details);
}

namespace
{
class TABLE_READER
{
public:
    TABLE_READER(READ_CONTEXT& context_, const KOR_TABLE_SCHEMA& schema_)
        : context(context_), schema(schema_), loaded(&schema_), pool(KOR_ENGINE_ACCESS::pool(loaded))
    {
        // Field slots: a record's field array is in name order ignoring case.
        field_count = schema.field_count();
        fields.reserve(size_t(field_count));
        QList<QString> sorted_names = schema.column_ordering();
        std::sort(sorted_names.begin(), sorted_names.end(), [](const QString& a, const QString& b) {
            return CASE_INSENSITIVE_COMPARE_STRING::compare(a, b) < 0;
        });
        for (const QString& name : schema.column_ordering())
        {
            FIELD_INFO info;
            info.schema = schema.field_schema_by_name(name);
            info.name = name.toUtf8();
            info.slot = int(sorted_names.indexOf(name));
            info.type = info.schema->field_type();
            fields.push_back(std::move(info));
        }
        for (const QString& name : schema.primary_key_fields())
            key_slots.push_back(int(sorted_names.indexOf(name)));
    }

    // What record->key() gives, from the fields just read: the record's own
    // lookup by name costs more than the rest of its key.
    QString key_of(KOR_RECORD_DATA* record, KOR_FIELD_DATA* const* items) const
    {
        if (key_slots.empty())
            return record->key();
        if (key_slots.size() == 1)
            return items[key_slots.front()]->value_text();
        QString key;
        for (const int slot : key_slots)
            key += items[slot]->value_text();
        return key;
    }

    // Reads the records that are children of `parent`; `base` is the offset
    // in the file of the buffer the nodes were parsed from.
    bool read_records(QString& error, const pugi::xml_node& parent, qint64 base)
    {
        auto where = [this, base](qint64 offset) { return context.where(base + offset); };
        for (pugi::xml_node node = parent.first_child(); node; node = node.next_sibling())
        {
            if (node.type() != pugi::node_element)
            {
                if ((node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) &&
                    !is_whitespace_text(node))
                {
                    error = QStringLiteral("%1: text outside a record").arg(where(node.offset_debug()));
                    return false;
                }
                continue;
            }
            if (std::strcmp(node.name(), "record") != 0)
            {
                error = QStringLiteral("%1: unexpected element <%2> where a <record> belongs")
                            .arg(where(node.offset_debug()), QString::fromUtf8(node.name()));
                return false;
            }
            QUuid uuid;
            qint64 modified = 0;
            for (pugi::xml_attribute attribute = node.first_attribute(); attribute;
                 attribute = attribute.next_attribute())
            {
                if (std::strcmp(attribute.name(), "uuid") == 0)
                {
                    if (!parse_uuid(attribute.value(), uuid) || uuid.isNull())
                    {
                        error = QStringLiteral("%1: '%2' is not a valid uuid")
                                    .arg(where(node.offset_debug()), QString::fromUtf8(attribute.value()));
                        return false;
                    }
                }
                else if (std::strcmp(attribute.name(), "modified") == 0)
                {
                    const char* value = attribute.value();
                    if (!parse_timestamp(value, value + std::strlen(value), modified, false))
                    {
                        error = QStringLiteral(
                                    "%1: '%2' is not a valid modification time (YYYY-MM-DDThh:mm:ss.zzzZ)")
                                    .arg(where(node.offset_debug()), QString::fromUtf8(attribute.value()));
                        return false;
                    }
                }
                else
                {
                    error = QStringLiteral("%1: unknown attribute '%2' of a record")
                                .arg(where(node.offset_debug()), QString::fromUtf8(attribute.name()));
                    return false;
                }
            }
            if (uuid.isNull())
            {
                // Older files may lack uuids; write_out_tables_with_uuids stores these.
                uuid = QUuid::createUuid();
                ++given_uuids;
            }

            KOR_RECORD_DATA* record = KOR_ENGINE_ACCESS::new_pooled_record(pool, &schema, &loaded, uuid);
            guard.records.push_back(record);
            record->set_modification_msecs(modified);
            KOR_FIELD_DATA** items = static_cast<KOR_FIELD_DATA**>(pool.allocate(
                sizeof(KOR_FIELD_DATA*) * size_t(qMax(1, field_count)), alignof(KOR_FIELD_DATA*)));
            std::fill(items, items + field_count, nullptr);
            auto fail_record = [&](const QString& reason, qint64 offset) {
                error = QStringLiteral("%1: %2").arg(where(offset), reason);
                // Only the fields made so far belong to the record.
                int made = 0;
                for (int i = 0; i < field_count; ++i)
                    if (items[i])
                        items[made++] = items[i];
                std::sort(items, items + made, [](KOR_FIELD_DATA* a, KOR_FIELD_DATA* b) {
                    return CASE_INSENSITIVE_COMPARE_STRING::compare(a->field_schema()->field_name(),
                                                                    b->field_schema()->field_name()) < 0;
                });
                KOR_ENGINE_ACCESS::set_pooled_fields(record, items, quint32(made));
                return false;
            };
            // Fields of a record we wrote are in column order: try the next
            // expected one first.
            int expected = 0;
            for (pugi::xml_node element = node.first_child(); element; element = element.next_sibling())
            {
                if (element.type() != pugi::node_element)
                {
                    if ((element.type() == pugi::node_pcdata || element.type() == pugi::node_cdata) &&
                        !is_whitespace_text(element))
                    {
                        return fail_record(QStringLiteral("text outside a field"), element.offset_debug());
                    }
                    continue;
                }
                const char* name = element.name();
                int index = -1;
                if (expected < field_count &&
                    std::strcmp(fields[size_t(expected)].name.constData(), name) == 0)
                    index = expected;
                for (int i = 0; index < 0 && i < field_count; ++i)
                    if (std::strcmp(fields[size_t(i)].name.constData(), name) == 0)
                        index = i;
                for (int i = 0; index < 0 && i < field_count; ++i)
                    if (qstricmp(fields[size_t(i)].name.constData(), name) == 0)
                        index = i;
                if (index < 0)
                    return fail_record(QStringLiteral("field '%1' is not in the schema of table '%2'")
                                           .arg(QString::fromUtf8(name), schema.get_table_name()),
                                       element.offset_debug());
                FIELD_INFO& info = fields[size_t(index)];
                if (items[info.slot])
                    return fail_record(
                        QStringLiteral("field '%1' appears twice in one record").arg(QString::fromUtf8(name)),
                        element.offset_debug());
                // The value is the element's text; a hand-made file may split
                // it into plain text and CDATA sections.
                const pugi::xml_node value_node = element.first_child();
                const char* value = value_node ? value_node.value() : "";
                std::string joined;
                for (pugi::xml_node part = value_node; part; part = part.next_sibling())
                {
                    if (part.type() != pugi::node_pcdata && part.type() != pugi::node_cdata)
                        return fail_record(QStringLiteral("field '%1' holds an element, not a value")
                                               .arg(QString::fromUtf8(name)),
                                           part.offset_debug());
                    if (part != value_node)
                    {
                        if (joined.empty())
                            joined = value_node.value();
                        joined += part.value();
                        value = joined.c_str();
                    }
                }
                KOR_FIELD_DATA* field = KOR_ENGINE_ACCESS::new_pooled_field(pool, info.schema);
                items[info.slot] = field;
                QString reason;
                if (!convert_value(info, value, field->m_value, reason))
                    return fail_record(reason, element.offset_debug());
                if (element.first_attribute() && !read_approval(element, field, reason))
                    return fail_record(reason, element.offset_debug());
                expected = index + 1;
            }
            // Fields a record lacks are empty, so every record has every field.
            for (int i = 0; i < field_count; ++i)
            {
                FIELD_INFO& info = fields[size_t(i)];
                if (!items[info.slot])
                {
                    KOR_FIELD_DATA* field = KOR_ENGINE_ACCESS::new_pooled_field(pool, info.schema);
                    if (info.type == KFT_TEXT)
                        field->m_value = QString(QLatin1String(""));
                    items[info.slot] = field;
                }
            }
            KOR_ENGINE_ACCESS::set_pooled_fields(record, items, quint32(field_count));
            QString key = key_of(record, items);
            if (key.isEmpty())
            {
                error =
                    QStringLiteral("%1: the record has an empty primary key").arg(where(node.offset_debug()));
                return false;
            }
            if (sorted && !entries.empty() && !(entries.back().key < key))
                sorted = false;
            entries.push_back(KOR_RECORD_MAP::ENTRY{std::move(key), record});
            offsets.emplace_back(record, base + node.offset_debug());
        }
        return true;
    }

    // Files the records read in key order and hands them over.
    bool finish(QString& error, KOR_TABLE_DATA& out, KOR_TABLE_READ_DETAILS* details)
    {
        if (!sorted)
            std::stable_sort(
                entries.begin(), entries.end(),
                [](const KOR_RECORD_MAP::ENTRY& a, const KOR_RECORD_MAP::ENTRY& b) { return a.key < b.key; });
        auto offset_of = [this](const KOR_RECORD_DATA* record) {
            for (const auto& entry : offsets)
                if (entry.first == record)
                    return entry.second;
            return qint64(-1);
        };
        for (size_t i = 1; i < entries.size(); ++i)
        {
            if (entries[i - 1].key == entries[i].key)
            {
                error = QStringLiteral("%1: the key '%2' is used by two records (the other at %3)")
                            .arg(context.where(offset_of(entries[i].record)), entries[i].key,
                                 context.where(offset_of(entries[i - 1].record)));
                return false;
            }
        }
        const KOR_RECORD_DATA* duplicate =
            KOR_ENGINE_ACCESS::adopt_sorted_records(loaded, std::move(entries));
        guard.owned_by_table = true;
        if (duplicate)
        {
            error = QStringLiteral("%1: the uuid %2 is used by two records")
                        .arg(context.where(offset_of(duplicate)),
                             duplicate->uuid().toString(QUuid::WithoutBraces));
            return false;
        }
        if (details)
        {
            details->records_given_uuids = given_uuids;
            if (details->want_record_offsets)
            {
                details->record_offsets.clear();
                details->record_offsets.reserve(offsets.size());
                for (const auto& entry : offsets)
                    details->record_offsets.emplace_back(entry.first, entry.second);
            }
        }
        out = std::move(loaded);
        return true;
    }

private:
    READ_CONTEXT& context;
    const KOR_TABLE_SCHEMA& schema;
    std::vector<FIELD_INFO> fields;
    // The key fields' slots, in key order.
    std::vector<int> key_slots;
    int field_count = 0;
    KOR_TABLE_DATA loaded;
    KOR_MEMORY_POOL& pool;
    RECORD_GUARD guard;
    std::vector<KOR_RECORD_MAP::ENTRY> entries;
    std::vector<std::pair<KOR_RECORD_DATA*, qint64>> offsets;
    bool sorted = true;
    int given_uuids = 0;
};

// The start tag of the root element: where it begins and ends, and whether
// it closes itself. False when the text before it is anything but a
// declaration, comments and blanks.
bool find_root_start_tag(const char* buffer, size_t size, size_t& begin, size_t& end, bool& self_closing)
{
    size_t position = 0;
    if (size >= 3 && std::memcmp(buffer, "\xEF\xBB\xBF", 3) == 0)
        position = 3;
    for (;;)
    {
        while (position < size && is_blank(buffer[position]))
            ++position;
        if (position + 1 >= size || buffer[position] != '<')
            return false;
        const std::string_view rest(buffer + position, size - position);
        size_t close = std::string_view::npos;
        if (rest.substr(0, 2) == "<?")
            close = rest.find("?>");
        else if (rest.substr(0, 4) == "<!--")
            close = rest.find("-->");
        else if (rest.substr(0, 2) == "<!")
            return false;
        else
            break;
        if (close == std::string_view::npos)
            return false;
        position += close + 2;
    }
    begin = position;
    char quote = 0;
    for (size_t i = position + 1; i < size; ++i)
    {
        const char c = buffer[i];
        if (quote)
        {
            if (c == quote)
                quote = 0;
        }
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == '<')
            return false;
        else if (c == '>')
        {
            end = i + 1;
            self_closing = buffer[i - 1] == '/';
            return true;
        }
    }
    return false;
}

enum class CHUNKED
{
    DONE,          // read, successfully or with an error in `error`
    NOT_THIS_FILE, // nothing touched: read the whole document instead
    START_OVER     // the buffer was parsed in part: read a fresh copy whole
};

// A table is read a slice of records at a time, so that the parser's tree
// never holds more than a few megabytes: a large table then costs little
// more than its records. Slices end after a "</record>" tag; should one
// fall inside a comment or similar, the slice does not parse and the file is
// read whole instead, which also gives the exact error of a damaged file.
CHUNKED read_in_slices(QString& error, char* buffer, size_t size, READ_CONTEXT& context,
                       const KOR_TABLE_SCHEMA& schema, KOR_TABLE_DATA& out, KOR_TABLE_READ_DETAILS* details)
{
    const size_t SLICE = 4 << 20;
    size_t tag_begin = 0;
    size_t tag_end = 0;
    bool self_closing = false;
    if (!find_root_start_tag(buffer, size, tag_begin, tag_end, self_closing))
        return CHUNKED::NOT_THIS_FILE;
    const std::string_view text(buffer, size);
    if (text.substr(tag_begin, 7) != "<table " && text.substr(tag_begin, 7) != "<table>" &&
        text.substr(tag_begin, 7) != "<table/")
        return CHUNKED::NOT_THIS_FILE;
    size_t records_end = tag_end;
    size_t tail = tag_end;
    if (!self_closing)
    {
        records_end = text.rfind("</table>");
        if (records_end == std::string_view::npos || records_end < tag_end)
            return CHUNKED::NOT_THIS_FILE;
        tail = records_end + 8;
    }
    for (size_t i = tail; i < size; ++i)
        if (!is_blank(buffer[i]))
            return CHUNKED::NOT_THIS_FILE;

    // The root's attributes, from a copy of its start tag.
    std::string root_tag(buffer + tag_begin, tag_end - tag_begin);
    if (!self_closing)
        root_tag.insert(root_tag.size() - 1, "/");
    pugi::xml_document root_document;
    if (!root_document.load_buffer(root_tag.data(), root_tag.size(), PARSE_OPTIONS, pugi::encoding_utf8))
        return CHUNKED::NOT_THIS_FILE;
    const QString file_table = QString::fromUtf8(root_document.document_element().attribute("name").value());
    if (file_table != schema.get_table_name())
    {
        error = QStringLiteral("%1: the file holds table '%2', not '%3'")
                    .arg(context.where(qint64(tag_begin + 1)), file_table, schema.get_table_name());
        return CHUNKED::DONE;
    }

    TABLE_READER reader(context, schema);
    size_t position = tag_end;
    pugi::xml_document document;
    while (position < records_end)
    {
        size_t slice_end = records_end;
        if (records_end - position > SLICE)
        {
            const size_t found = text.find("</record>", position + SLICE);
            if (found != std::string_view::npos && found + 9 <= records_end)
                slice_end = found + 9;
        }
        const pugi::xml_parse_result parsed =
            document.load_buffer_inplace(buffer + position, slice_end - position,
                                         PARSE_OPTIONS | pugi::parse_fragment, pugi::encoding_utf8);
        if (!parsed)
            return CHUNKED::START_OVER;
        if (!reader.read_records(error, document, qint64(position)))
            return CHUNKED::DONE;
        position = slice_end;
    }
    reader.finish(error, out, details);
    return CHUNKED::DONE;
}

bool read_whole_document(QString& error, char* buffer, size_t size, READ_CONTEXT& context,
                         const KOR_TABLE_SCHEMA& schema, KOR_TABLE_DATA& out, KOR_TABLE_READ_DETAILS* details)
{
    pugi::xml_document document;
    const pugi::xml_parse_result parsed =
        document.load_buffer_inplace(buffer, size, PARSE_OPTIONS, pugi::encoding_auto);
    if (!parsed)
    {
        error = QStringLiteral("%1: malformed XML: %2")
                    .arg(context.where(parsed.offset), QString::fromUtf8(parsed.description()));
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (!root || std::strcmp(root.name(), "table") != 0)
    {
        error = QStringLiteral("%1: the file is not a table: its root element is <%2>, not <table>")
                    .arg(context.where(root ? root.offset_debug() : 0), QString::fromUtf8(root.name()));
        return false;
    }
    const QString file_table = QString::fromUtf8(root.attribute("name").value());
    if (file_table != schema.get_table_name())
    {
        error = QStringLiteral("%1: the file holds table '%2', not '%3'")
                    .arg(context.where(root.offset_debug()), file_table, schema.get_table_name());
        return false;
    }
    TABLE_READER reader(context, schema);
    return reader.read_records(error, root, 0) && reader.finish(error, out, details);
}
} // namespace

bool KOR_TABLE_IO::read_table_buffer(QString& error, char* buffer, size_t size, const QString& source_name,
                                     const std::function<QByteArray()>& pristine,
                                     const KOR_TABLE_SCHEMA& schema, KOR_TABLE_DATA& out,
                                     KOR_TABLE_READ_DETAILS* details)
{
    READ_CONTEXT context{source_name, pristine, QByteArray(), false};
    error.clear();
    switch (read_in_slices(error, buffer, size, context, schema, out, details))
    {
    case CHUNKED::DONE:
        return error.isEmpty();
    case CHUNKED::NOT_THIS_FILE:
        return read_whole_document(error, buffer, size, context, schema, out, details);
    case CHUNKED::START_OVER:
        break;
    }
    QByteArray again = pristine ? pristine() : QByteArray();
    return read_whole_document(error, again.data(), size_t(again.size()), context, schema, out, details);
}

namespace
{
// A value that is not an empty one; texts are written by the caller. The
// type is asked once a field by the caller: the calls added up over the
// millions of values of a large table.
void write_value(KOR_XML_OUTPUT& output, const QVariant& value, int type)
{
    switch (type)
    {
    case QMetaType::Float:
    case QMetaType::Double:
    {
        // The texts variant_to_text gives (shortest round trip), without
        // making a QString of each.
        char buffer[40];
        const auto result = type == QMetaType::Float
                                ? std::to_chars(buffer, buffer + sizeof buffer, value.toFloat())
                                : std::to_chars(buffer, buffer + sizeof buffer, value.toDouble());
        output.raw(buffer, result.ptr - buffer);
        break;
    }
    case QMetaType::QDateTime:
    {
        const QDateTime& time = *static_cast<const QDateTime*>(value.constData());
        char buffer[24];
        if (time.isValid() && format_timestamp(time.toMSecsSinceEpoch(), buffer))
            output.raw(buffer, 24);
        else
            output.text(KOR_FIELD_DATA::variant_to_text(value));
        break;
    }
    case QMetaType::Int:
        output.number(value.toInt());
        break;
    case QMetaType::Bool:
        output.raw(value.toBool() ? "true" : "false");
        break;
    case QMetaType::ULongLong:
        output.unsigned_number(value.toULongLong());
        break;
    case QMetaType::LongLong:
        output.number(value.toLongLong());
        break;
    default:
        output.text(KOR_FIELD_DATA::variant_to_text(value));
        break;
    }
}

} // namespace

bool KOR_TABLE_IO::write_table(QString& error, QIODevice& device, const KOR_TABLE_DATA& table)
{
    const KOR_TABLE_SCHEMA* schema = table.table_schema();
    if (!schema)
    {
        error = QStringLiteral("The table has no schema");
        return false;
    }
    KOR_XML_OUTPUT output(&device);
    output.raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<table");
    output.attribute("name", schema->get_table_name());
    output.raw(">\n");
    std::vector<QByteArray> names;
    for (const QString& name : schema->column_ordering())
        names.push_back(name.toUtf8());
    const QList<QString>& columns = schema->column_ordering();
    // Where each column's field stands in a record's field map (name order
    // ignoring case): a lookup by name for every field of every record cost
    // more than writing the value.
    QList<QString> by_name = columns;
    std::sort(by_name.begin(), by_name.end(), [](const QString& a, const QString& b) {
        return CASE_INSENSITIVE_COMPARE_STRING::compare(a, b) < 0;
    });
    std::vector<int> field_slots;
    std::vector<const KOR_FIELD_SCHEMA*> column_schemas;
    for (const QString& name : columns)
    {
        field_slots.push_back(int(by_name.indexOf(name)));
        column_schemas.push_back(schema->field_schema_by_name(name));
    }
    for (const KOR_RECORD_DATA* record : table.records())
    {
        output.raw("  <record uuid=\"");
        char uuid[36];
        format_uuid(record->uuid(), uuid);
        output.raw(uuid, 36);
        output.raw('"');
        if (record->modification_msecs() != 0)
        {
            char modified[24];
            if (format_timestamp(record->modification_msecs(), modified))
            {
                output.raw(" modified=\"");
                output.raw(modified, 24);
                output.raw('"');
            }
            else
            {
                output.attribute("modified", timestamp_text(record->modification_msecs()));
            }
        }
        output.raw(">\n");
        const KOR_FIELD_DATA_MAP& fields = record->field_map();
        const bool complete = fields.size() == columns.size();
        for (int column = 0; column < columns.size(); ++column)
        {
            const KOR_FIELD_DATA* field = complete ? fields.at(field_slots[size_t(column)]) : nullptr;
            if (!field || field->field_schema() != column_schemas[size_t(column)])
                field = record->get_field_data(columns.at(column));
            if (!field)
                continue;
            const QByteArray& name = names[size_t(column)];
            output.raw("    <", 5);
            output.raw(name.constData(), name.size());
            if (field->has_approval_data())
            {
                output.raw(" approval_state=\"");
                output.number(field->approval_state());
                output.raw('"');
                if (!field->last_approved_text().isEmpty())
                    output.attribute("last_approved_text", field->last_approved_text());
                if (!field->last_edit_user().isEmpty())
                    output.attribute("last_edit_user", field->last_edit_user());
                if (field->requires_translation())
                    output.raw(" requires_translation=\"true\"");
                if (field->requires_recording())
                    output.raw(" requires_recording=\"true\"");
            }
            const QVariant& value = field->m_value;
            const int type = value.isValid() ? value.userType() : int(QMetaType::UnknownType);
            const QString* text =
                type == QMetaType::QString ? static_cast<const QString*>(value.constData()) : nullptr;
            if (type == QMetaType::UnknownType || (text && text->isEmpty()))
            {
                output.raw("/>\n", 3);
                continue;
            }
            output.raw('>');
            if (text)
                output.text(*text);
            else
                write_value(output, value, type);
            output.raw("</", 2);
            output.raw(name.constData(), name.size());
            output.raw(">\n", 2);
        }
        output.raw("  </record>\n");
    }
    output.raw("</table>\n");
    return output.flush(error);
}

QByteArray KOR_TABLE_IO::table_bytes(const KOR_TABLE_DATA& table)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QString error;
    write_table(error, buffer, table);
    return bytes;
}

// ==================================================================== schemas

QByteArray KOR_TABLE_IO::schema_bytes(const KOR_TABLE_SCHEMA& schema)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    KOR_XML_OUTPUT output(&buffer);
    output.raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<table_schema");
    output.attribute("name", schema.get_table_name());
    if (!schema.table_unique_id().isNull())
        output.attribute("uuid", schema.table_unique_id().toString(QUuid::WithoutBraces));
    if (!schema.agf_special_dependencies().isEmpty())
        output.attribute("agf_special_dependencies", schema.agf_special_dependencies());
    output.raw(">\n");
    for (const QString& name : schema.column_ordering())
    {
        const KOR_FIELD_SCHEMA* field = schema.field_schema_by_name(name);
        output.raw("  <field");
        output.attribute("name", field->field_name());
        if (!field->field_unique_id().isNull())
            output.attribute("uuid", field->field_unique_id().toString(QUuid::WithoutBraces));
        output.attribute("type", KOR_FIELD_SCHEMA::field_type_to_string(field->field_type()));
        for (const FIELD_ATTRIBUTE& attribute : FIELD_ATTRIBUTES)
        {
            if (attribute.boolean)
            {
                if (field->get_metafield_value(attribute.metafield).toBool())
                    output.attribute(attribute.name, QStringLiteral("true"));
                continue;
            }
            const QString text = attribute_text_of(*field, attribute.metafield);
            if (!text.isEmpty())
                output.attribute(attribute.name, text);
        }
        QStringList fixed = field->fixed_column_values().values();
        if (fixed.isEmpty())
        {
            output.raw("/>\n");
            continue;
        }
        std::sort(fixed.begin(), fixed.end());
        output.raw(">\n");
        for (const QString& value : fixed)
        {
            output.raw("    <fixed_value>");
            output.text(value);
            output.raw("</fixed_value>\n");
        }
        output.raw("  </field>\n");
    }
    output.raw("</table_schema>\n");
    QString error;
    output.flush(error);
    return bytes;
}

bool KOR_TABLE_IO::read_schema_bytes(QString& error, QByteArray bytes, const QString& source_name,
                                     std::unique_ptr<KOR_TABLE_SCHEMA>& out)
{
    const QByteArray pristine = bytes;
    READ_CONTEXT context{source_name, [pristine]() { return pristine; }, QByteArray(), false};
    pugi::xml_document document;
    const pugi::xml_parse_result parsed =
        document.load_buffer_inplace(bytes.data(), size_t(bytes.size()), PARSE_OPTIONS, pugi::encoding_auto);
    if (!parsed)
    {
        error = QStringLiteral("%1: malformed XML: %2")
                    .arg(context.where(parsed.offset), QString::fromUtf8(parsed.description()));
        return false;
    }
    const pugi::xml_node root = document.document_element();
    if (!root || std::strcmp(root.name(), "table_schema") != 0)
    {
        error = QStringLiteral("%1: the file is not a table schema: its root element is <%2>")
                    .arg(context.where(root ? root.offset_debug() : 0), QString::fromUtf8(root.name()));
        return false;
    }
    auto schema = std::make_unique<KOR_TABLE_SCHEMA>(QString::fromUtf8(root.attribute("name").value()));
    if (!KOR_FIELD_SCHEMA::is_valid_name(schema->get_table_name()))
    {
        error = QStringLiteral("%1: '%2' is not a valid table name")
                    .arg(context.where(root.offset_debug()), schema->get_table_name());
        return false;
    }
    for (pugi::xml_attribute attribute = root.first_attribute(); attribute;
         attribute = attribute.next_attribute())
    {
        const char* name = attribute.name();
        if (std::strcmp(name, "name") == 0)
            continue;
        if (std::strcmp(name, "uuid") == 0)
        {
            QUuid uuid;
            if (!parse_uuid(attribute.value(), uuid))
            {
                error = QStringLiteral("%1: '%2' is not a valid uuid")
                            .arg(context.where(root.offset_debug()), QString::fromUtf8(attribute.value()));
                return false;
            }
            schema->set_table_unique_id(uuid);
        }
        else if (std::strcmp(name, "agf_special_dependencies") == 0)
            schema->set_agf_special_dependencies(QString::fromUtf8(attribute.value()));
        else
        {
            error = QStringLiteral("%1: unknown attribute '%2' of a table schema")
                        .arg(context.where(root.offset_debug()), QString::fromUtf8(name));
            return false;
        }
    }
    for (pugi::xml_node node = root.first_child(); node; node = node.next_sibling())
    {
        if (node.type() != pugi::node_element)
        {
            if (!is_whitespace_text(node))
            {
                error = QStringLiteral("%1: text outside a field").arg(context.where(node.offset_debug()));
                return false;
            }
            continue;
        }
        if (std::strcmp(node.name(), "field") != 0)
        {
            error = QStringLiteral("%1: unexpected element <%2> where a <field> belongs")
                        .arg(context.where(node.offset_debug()), QString::fromUtf8(node.name()));
            return false;
        }
        auto field = std::make_unique<KOR_FIELD_SCHEMA>();
        const QString field_name = QString::fromUtf8(node.attribute("name").value());
        if (!KOR_FIELD_SCHEMA::is_valid_name(field_name))
        {
            error = QStringLiteral("%1: '%2' is not a valid field name")
                        .arg(context.where(node.offset_debug()), field_name);
            return false;
        }
        field->set_metafield_value(KMF_FIELD_NAME, field_name);
        QString default_text;
        bool has_default = false;
        for (pugi::xml_attribute attribute = node.first_attribute(); attribute;
             attribute = attribute.next_attribute())
        {
            const char* name = attribute.name();
            const QString value = QString::fromUtf8(attribute.value());
            if (std::strcmp(name, "name") == 0)
                continue;
            if (std::strcmp(name, "uuid") == 0)
            {
                QUuid uuid;
                if (!parse_uuid(attribute.value(), uuid))
                {
                    error = QStringLiteral("%1: '%2' is not a valid uuid")
                                .arg(context.where(node.offset_debug()), value);
                    return false;
                }
                field->set_field_unique_id(uuid);
                continue;
            }
            if (std::strcmp(name, "type") == 0)
            {
                const KOR_FIELD_TYPE type = KOR_FIELD_SCHEMA::string_to_field_type(value);
                if (type == KFT_NONE)
                {
                    error = QStringLiteral("%1: field '%2' has the unknown type '%3'")
                                .arg(context.where(node.offset_debug()), field_name, value);
                    return false;
                }
                field->set_metafield_value(KMF_FIELD_TYPE, int(type));
                continue;
            }
            const FIELD_ATTRIBUTE* known = nullptr;
            for (const FIELD_ATTRIBUTE& candidate : FIELD_ATTRIBUTES)
                if (std::strcmp(candidate.name, name) == 0)
                    known = &candidate;
            if (!known)
            {
                error = QStringLiteral("%1: unknown attribute '%2' of field '%3'")
                            .arg(context.where(node.offset_debug()), QString::fromUtf8(name), field_name);
                return false;
            }
            if (known->boolean)
            {
                bool flag = false;
                if (!parse_bool(attribute.value(), attribute.value() + std::strlen(attribute.value()), flag))
                {
                    error = QStringLiteral("%1: %2 of field '%3' must be true or false, not '%4'")
                                .arg(context.where(node.offset_debug()), QString::fromUtf8(name), field_name,
                                     value);
                    return false;
                }
                field->set_metafield_value(known->metafield, flag);
            }
            else if (known->metafield == KMF_DEFAULT_VALUE)
            {
                default_text = value;
                has_default = true;
            }
            else if (!field->set_metafield_value(known->metafield, value))
            {
                error =
                    QStringLiteral("%1: '%2' is not a valid %3 of field '%4'")
                        .arg(context.where(node.offset_debug()), value, QString::fromUtf8(name), field_name);
                return false;
            }
        }
        if (field->field_type() == KFT_NONE)
        {
            error = QStringLiteral("%1: field '%2' has no type")
                        .arg(context.where(node.offset_debug()), field_name);
            return false;
        }
        if (has_default)
        {
            QVariant value;
            QString reason;
            if (!KOR_RECORD_DATA::convert_string_to_type(reason, value, field->field_type(), default_text))
                value = default_text; // kept as written; the schema check reports it
            field->set_metafield_value(KMF_DEFAULT_VALUE, value);
        }
        QSet<QString> fixed;
        for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling())
        {
            if (child.type() != pugi::node_element)
            {
                if (!is_whitespace_text(child))
                {
                    error = QStringLiteral("%1: text inside field '%2'")
                                .arg(context.where(child.offset_debug()), field_name);
                    return false;
                }
                continue;
            }
            if (std::strcmp(child.name(), "fixed_value") != 0)
            {
                error = QStringLiteral("%1: unexpected element <%2> in field '%3'")
                            .arg(context.where(child.offset_debug()), QString::fromUtf8(child.name()),
                                 field_name);
                return false;
            }
            fixed.insert(QString::fromUtf8(child.child_value()));
        }
        field->set_fixed_column_values(fixed);
        if (field->field_unique_id().isNull())
            field->set_field_unique_id(QUuid::createUuid());
        KOR_FIELD_SCHEMA* raw = field.release();
        if (!schema->add_field_schema(raw))
        {
            delete raw;
            error = QStringLiteral("%1: the field name '%2' is used twice")
                        .arg(context.where(node.offset_debug()), field_name);
            return false;
        }
    }
    if (schema->table_unique_id().isNull())
        schema->set_table_unique_id(QUuid::createUuid());
    out = std::move(schema);
    return true;
}

bool KOR_TABLE_IO::read_schema_file(QString& error, const QString& path,
                                    std::unique_ptr<KOR_TABLE_SCHEMA>& out)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
    {
        error = QStringLiteral("%1: cannot be read: %2").arg(path, file.errorString());
        return false;
    }
    return read_schema_bytes(error, file.readAll(), path, out);
}

bool KOR_TABLE_IO::read_database_schema(QString& error, const QString& database_path,
                                        KOR_DATABASE_SCHEMA& out, QStringList* warnings)
{
    out.clear();
    const QStringList names = schema_table_names(database_path);
    for (const QString& name : names)
    {
        const QString path = schema_file_path(database_path, name);
        std::unique_ptr<KOR_TABLE_SCHEMA> schema;
        if (!read_schema_file(error, path, schema))
            return false;
        if (schema->get_table_name() != name)
        {
            error = QStringLiteral("%1: the file describes table '%2'; its name says '%3'")
                        .arg(path, schema->get_table_name(), name);
            return false;
        }
        if (!out.add_table_schema(schema.get()))
        {
            error = QStringLiteral("%1: a table of the same name, ignoring case, exists already").arg(path);
            return false;
        }
        schema.release();
    }
    out.rebuild_relations();
    if (warnings)
    {
        for (const QString& table : data_table_names(database_path))
            if (!out.table_schema(table))
                warnings->append(QStringLiteral("%1: the table file has no schema and is ignored")
                                     .arg(table_file_path(database_path, table)));
        for (const KOR_TABLE_SCHEMA* schema : out.table_schemas())
        {
            for (const KOR_FIELD_SCHEMA* field : schema->field_schemas())
            {
                if (field->source_table().isEmpty())
                    continue;
                const KOR_TABLE_SCHEMA* foreign = out.table_schema(field->source_table());
                if (!foreign)
                    warnings->append(
                        QStringLiteral("%1.%2 refers to the unknown table '%3'")
                            .arg(schema->get_table_name(), field->field_name(), field->source_table()));
                else if (!field->dependency()->second.isEmpty() &&
                         !foreign->field_schema_by_name(field->dependency()->second))
                    warnings->append(QStringLiteral("%1.%2 refers to the unknown field '%3.%4'")
                                         .arg(schema->get_table_name(), field->field_name(),
                                              field->source_table(), field->dependency()->second));
            }
        }
    }
    return true;
}
