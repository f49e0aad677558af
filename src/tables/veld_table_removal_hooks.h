#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class VELD_DATA;

// What the table launcher asks of other areas after removing a table: delete
// the table's exported binaries, and take the table out of the game's code.
// Those areas install their operations at start-up; each answers its list of
// errors, empty on success.
struct VELD_TABLE_REMOVAL_HOOKS
{
    using OPERATION = std::function<QStringList(VELD_DATA& session, const QString& table_key)>;

    OPERATION delete_binaries;
    OPERATION remove_code;

    // Replaces the installed operations (process-wide).
    static void install(const VELD_TABLE_REMOVAL_HOOKS& hooks);
    static const VELD_TABLE_REMOVAL_HOOKS& installed();

    // The operations, or one error saying the operation is not there yet.
    static QStringList run_delete_binaries(VELD_DATA& session, const QString& table_key);
    static QStringList run_remove_code(VELD_DATA& session, const QString& table_key);
};
