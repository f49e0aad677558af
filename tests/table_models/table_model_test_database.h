#pragma once

#include "recording_query_interface.h"

#include <QTemporaryDir>
#include <QVariant>

#include <memory>

// A small database for the table model tests, built through the engine and
// connected through a RECORDING_QUERY_INTERFACE:
//
//   factions  key* | name (required) | rank (integer) | loyalty (unsigned)
//             carthage, rome, sparta
//   units     unit* | faction -> factions.key (shows name) | cost (integer) |
//             speed (single) | weight (double) | active (yesno) |
//             serial (autonumber) | uid (unique id) | tag (card64) |
//             made (date-time) | notes (text)
//             archers (carthage, 30), hastati (rome, 10), velites (rome, 20)
//   regiments regiment* (integer) | unit -> units.unit        1 -> hastati
//   armies    army* | unit_faction -> units.faction          first -> rome
//   pairs     left* | right* (neither required) | note       (a, b), (a, c), ("", q)
//
// So factions.key is referenced by units; units.unit by regiments; and
// units.faction both refers to factions and is referenced by armies.
class TABLE_MODEL_TEST_DATABASE
{
public:
    TABLE_MODEL_TEST_DATABASE();

    bool ok() const { return m_error.isEmpty(); }
    const QString& error() const { return m_error; }
    const QString& path() const { return m_path; }
    RECORDING_QUERY_INTERFACE& engine() { return *m_engine; }

    // A field of a record as the files on disk hold it, read through a
    // fresh interface; "<none>" when the record or field is not there.
    QString value_on_disk(const QString& table, const QString& key, const QString& field) const;
    int record_count_on_disk(const QString& table) const;

    // Rewrites the modification times of a table's records on disk, in key
    // order ("" for a record without one, else "YYYY-MM-DDThh:mm:ss.zzzZ"),
    // and connects again.
    bool set_modification_times(const QString& table, const QStringList& times);

private:
    QTemporaryDir m_folder;
    QString m_path;
    std::unique_ptr<RECORDING_QUERY_INTERFACE> m_engine;
    QString m_error;
};
