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
    TEST_DATABASE_BUILDER db(path);
    db.table(QStringLiteral("factions"), {TEST_FIELD::key(QStringLiteral("key")),
                                          TEST_FIELD::plain(QStringLiteral("name"), KFT_TEXT).required(),
                                          TEST_FIELD::plain(QStringLiteral("rank"), KFT_INTEGER),
                                          TEST_FIELD::plain(QStringLiteral("loyalty"), KFT_UNSIGNED_INTEGER)})
        .table(QStringLiteral("units"),
               {TEST_FIELD::key(QStringLiteral("unit")),
                TEST_FIELD::plain(QStringLiteral("faction"), KFT_TEXT)
                    .refers_to(QStringLiteral("factions"), QStringLiteral("key"), {QStringLiteral("name")}),
                TEST_FIELD::plain(QStringLiteral("cost"), KFT_INTEGER),
                TEST_FIELD::plain(QStringLiteral("speed"), KFT_SINGLE),
                TEST_FIELD::plain(QStringLiteral("weight"), KFT_DOUBLE),
                TEST_FIELD::plain(QStringLiteral("active"), KFT_YESNO).with_default(true),
                TEST_FIELD::plain(QStringLiteral("serial"), KFT_AUTONUMBER),
                TEST_FIELD::plain(QStringLiteral("uid"), KFT_UNIQUE_ID),
                TEST_FIELD::plain(QStringLiteral("tag"), KFT_CARD64),
                TEST_FIELD::plain(QStringLiteral("made"), KFT_DATE_TIME),
                TEST_FIELD::plain(QStringLiteral("notes"), KFT_TEXT)})
        .table(QStringLiteral("regiments"), {TEST_FIELD::key(QStringLiteral("regiment"), KFT_INTEGER),
                                             TEST_FIELD::plain(QStringLiteral("unit"), KFT_TEXT)
                                                 .refers_to(QStringLiteral("units"), QStringLiteral("unit"))})
        .table(QStringLiteral("armies"), {TEST_FIELD::key(QStringLiteral("army")),
                                          TEST_FIELD::plain(QStringLiteral("unit_faction"), KFT_TEXT)
                                              .refers_to(QStringLiteral("units"), QStringLiteral("faction"))})
        .table(QStringLiteral("pairs"), {key_part(QStringLiteral("left")), key_part(QStringLiteral("right")),
                                         TEST_FIELD::plain(QStringLiteral("note"), KFT_TEXT)})
        .record(QStringLiteral("factions"), {{"key", "rome"}, {"name", "Rome"}, {"rank", 1}})
        .record(QStringLiteral("factions"), {{"key", "carthage"}, {"name", "Carthage"}, {"rank", 2}})
        .record(QStringLiteral("factions"), {{"key", "sparta"}, {"name", "Sparta"}, {"rank", 3}})
        .record(
            QStringLiteral("units"),
            {{"unit", "hastati"}, {"faction", "rome"}, {"cost", 10}, {"serial", 1}, {"uid", qulonglong(101)}})
        .record(
            QStringLiteral("units"),
            {{"unit", "velites"}, {"faction", "rome"}, {"cost", 20}, {"serial", 2}, {"uid", qulonglong(102)}})
        .record(QStringLiteral("units"), {{"unit", "archers"},
                                          {"faction", "carthage"},
                                          {"cost", 30},
                                          {"serial", 3},
                                          {"uid", qulonglong(103)}})
        .record(QStringLiteral("regiments"), {{"regiment", 1}, {"unit", "hastati"}})
        .record(QStringLiteral("armies"), {{"army", "first"}, {"unit_faction", "rome"}})
        .record(QStringLiteral("pairs"), {{"left", "a"}, {"right", "b"}})
        .record(QStringLiteral("pairs"), {{"left", "a"}, {"right", "c"}})
        .record(QStringLiteral("pairs"), {{"left", ""}, {"right", "q"}});
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
