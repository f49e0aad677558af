#include "table_model_test_database.h"

#include "kor_field_data.h"
#include "kor_record_data.h"
#include "kor_table_data.h"
#include "test_database_builder.h"
#include "test_helpers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace
{
TEST_FIELD key_part(const QString& name)
{
    TEST_FIELD field = TEST_FIELD::plain(name, KFT_TEXT);
    field.primary_key = true;
    return field;
}

QString build_sample(const QString& path)
{
    using F = TEST_FIELD;
    TEST_DATABASE_BUILDER db(path);
    db.table("factions", {F::key("key"), F::plain("name", KFT_TEXT).required(), F::plain("rank", KFT_INTEGER),
                          F::plain("loyalty", KFT_UNSIGNED_INTEGER)})
        .table("units",
               {F::key("unit"), F::plain("faction", KFT_TEXT).refers_to("factions", "key", {"name"}),
                F::plain("cost", KFT_INTEGER), F::plain("speed", KFT_SINGLE), F::plain("weight", KFT_DOUBLE),
                F::plain("active", KFT_YESNO).with_default(true), F::plain("serial", KFT_AUTONUMBER),
                F::plain("uid", KFT_UNIQUE_ID), F::plain("tag", KFT_CARD64), F::plain("made", KFT_DATE_TIME),
                F::plain("notes", KFT_TEXT)})
        .table("regiments",
               {F::key("regiment", KFT_INTEGER), F::plain("unit", KFT_TEXT).refers_to("units", "unit")})
        .table("armies", {F::key("army"), F::plain("unit_faction", KFT_TEXT).refers_to("units", "faction")})
        .table("pairs", {key_part("left"), key_part("right"), F::plain("note", KFT_TEXT)})
        .record("factions", {{"key", "rome"}, {"name", "Rome"}, {"rank", 1}})
        .record("factions", {{"key", "carthage"}, {"name", "Carthage"}, {"rank", 2}})
        .record("factions", {{"key", "sparta"}, {"name", "Sparta"}, {"rank", 3}})
        .record("units",
                {{"unit", "hastati"}, {"faction", "rome"}, {"cost", 10}, {"serial", 1}, {"uid", 101ull}})
        .record("units",
                {{"unit", "velites"}, {"faction", "rome"}, {"cost", 20}, {"serial", 2}, {"uid", 102ull}})
        .record("units",
                {{"unit", "archers"}, {"faction", "carthage"}, {"cost", 30}, {"serial", 3}, {"uid", 103ull}})
        .record("regiments", {{"regiment", 1}, {"unit", "hastati"}})
        .record("armies", {{"army", "first"}, {"unit_faction", "rome"}})
        .record("pairs", {{"left", "a"}, {"right", "b"}})
        .record("pairs", {{"left", "a"}, {"right", "c"}})
        .record("pairs", {{"left", ""}, {"right", "q"}});
    return db.error();
}

const QString& sample_path(QString& error)
{
    static QTemporaryDir folder;
    static const QString path = folder.filePath(QStringLiteral("db"));
    static const QString build_error = build_sample(path);
    error = build_error;
    return path;
}
} // namespace

TABLE_MODEL_TEST_DATABASE::TABLE_MODEL_TEST_DATABASE() : m_path(m_folder.filePath(QStringLiteral("db")))
{
    const QString& sample = sample_path(m_error);
    if (!ok())
        return;
    // The sample is built once a process and copied for each test: building
    // goes through a committed transaction a record.
    if (!ORBIN_TEST::copy_folder(sample, m_path))
    {
        m_error = QStringLiteral("Cannot copy the sample database to ") + m_path;
        return;
    }
    m_engine.reset(new RECORDING_QUERY_INTERFACE);
    m_error = m_engine->connect_without_merge(m_path, false);
}

QString TABLE_MODEL_TEST_DATABASE::value_on_disk(const QString& table, const QString& key,
                                                 const QString& field) const
{
    KOR_XML_QUERY_INTERFACE reader(nullptr, QString(), false, false);
    if (!reader.connect_without_merge(m_path, false).isEmpty())
        return QStringLiteral("<no database>");
    return TEST_DATABASE_BUILDER::value_text(reader, table, key, field);
}

int TABLE_MODEL_TEST_DATABASE::record_count_on_disk(const QString& table) const
{
    KOR_XML_QUERY_INTERFACE reader(nullptr, QString(), false, false);
    if (!reader.connect_without_merge(m_path, false).isEmpty())
        return -1;
    QString error;
    const KOR_TABLE_DATA* data = reader.get_table_data(error, table);
    return data ? data->record_count() : -1;
}

bool TABLE_MODEL_TEST_DATABASE::set_modification_times(const QString& table, const QStringList& times)
{
    if (!m_engine->disconnect().isEmpty())
        return false;
    QFile file(m_path + QLatin1Char('/') + table + QStringLiteral(".xml"));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QString text = QString::fromUtf8(file.readAll());
    file.close();
    const QRegularExpression record(QStringLiteral("<record uuid=\"([^\"]+)\"( modified=\"[^\"]*\")?>"));
    QString rewritten;
    int position = 0;
    int index = 0;
    auto match = record.globalMatch(text);
    while (match.hasNext())
    {
        const QRegularExpressionMatch found = match.next();
        rewritten += text.midRef(position, found.capturedStart() - position);
        const QString time = index < times.size() ? times.at(index) : QString();
        rewritten += QStringLiteral("<record uuid=\"") + found.captured(1) + QLatin1Char('"') +
                     (time.isEmpty() ? QString() : QStringLiteral(" modified=\"") + time + QLatin1Char('"')) +
                     QLatin1Char('>');
        position = found.capturedEnd();
        ++index;
    }
    rewritten += text.midRef(position);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    file.write(rewritten.toUtf8());
    file.close();
    return m_engine->connect_without_merge(m_path, false).isEmpty();
}
