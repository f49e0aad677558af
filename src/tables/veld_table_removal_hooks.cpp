#include "veld_table_removal_hooks.h"

namespace
{
VELD_TABLE_REMOVAL_HOOKS& hooks()
{
    static VELD_TABLE_REMOVAL_HOOKS installed_hooks;
    return installed_hooks;
}
} // namespace

void VELD_TABLE_REMOVAL_HOOKS::install(const VELD_TABLE_REMOVAL_HOOKS& replacement)
{
    hooks() = replacement;
}

const VELD_TABLE_REMOVAL_HOOKS& VELD_TABLE_REMOVAL_HOOKS::installed()
{
    return hooks();
}

QStringList VELD_TABLE_REMOVAL_HOOKS::run_delete_binaries(VELD_DATA& session, const QString& table_key)
{
    if (!hooks().delete_binaries)
        return {QStringLiteral("Deleting the exported binaries of a table is not available yet")};
    return hooks().delete_binaries(session, table_key);
}

QStringList VELD_TABLE_REMOVAL_HOOKS::run_remove_code(VELD_DATA& session, const QString& table_key)
{
    if (!hooks().remove_code)
        return {QStringLiteral("Removing a table from the code is not available yet")};
    return hooks().remove_code(session, table_key);
}
