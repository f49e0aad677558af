// The table file reader on arbitrary bytes. Besides not crashing, a table that
// reads must write and read back to the same bytes: whatever the reader
// accepts, the writer reproduces exactly.
//
//   build-fuzz/fuzz/fuzz_kor_table_reader -max_total_time=60 fuzz/engine/corpus

#include "kor_field_schema.h"
#include "kor_table_data.h"
#include "kor_table_io.h"
#include "kor_table_schema.h"

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace
{
std::unique_ptr<KOR_TABLE_SCHEMA> make_schema()
{
    auto schema = std::make_unique<KOR_TABLE_SCHEMA>(QStringLiteral("units"));
    auto add = [&schema](const char* name, KOR_FIELD_TYPE type, bool key) {
        KOR_FIELD_SCHEMA* field = new KOR_FIELD_SCHEMA(QUuid::createUuid());
        field->initialise(key, QString::fromLatin1(name), type, key, QVariant(), -1, false, QString(), QString(),
                          QString(), false, false, false);
        schema->add_field_schema(field);
    };
    add("unit", KFT_TEXT, true);
    add("side", KFT_YESNO, true);
    add("men", KFT_INTEGER, false);
    add("cost", KFT_UNSIGNED_INTEGER, false);
    add("speed", KFT_SINGLE, false);
    add("weight", KFT_DOUBLE, false);
    add("price", KFT_DECIMAL, false);
    add("Label", KFT_TEXT, false);
    add("id", KFT_AUTONUMBER, false);
    add("born", KFT_DATE_TIME, false);
    add("uid", KFT_UNIQUE_ID, false);
    add("mask", KFT_CARD64, false);
    return schema;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::unique_ptr<KOR_TABLE_SCHEMA> schema = make_schema();
    const QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    KOR_TABLE_DATA table(schema.get());
    QString error;
    if (!KOR_TABLE_IO::read_table_bytes(error, bytes, QStringLiteral("input"), *schema, table))
    {
        if (error.isEmpty())
            std::abort(); // a refusal always says why
        return 0;
    }
    const QByteArray written = KOR_TABLE_IO::table_bytes(table);
    KOR_TABLE_DATA again(schema.get());
    if (!KOR_TABLE_IO::read_table_bytes(error, written, QStringLiteral("written"), *schema, again))
        std::abort(); // the writer wrote what the reader refuses
    if (KOR_TABLE_IO::table_bytes(again) != written || again.record_count() != table.record_count())
        std::abort(); // a value changed on its way through a file
    return 0;
}
